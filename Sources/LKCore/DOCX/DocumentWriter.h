#pragma once

// The text of a book as the main part of a Word document.

#include <string>
#include <vector>

#include "LKCore/Bind/BookPieces.h"
#include "LKCore/DOCX/BlockWriter.h"
#include "LKCore/DOCX/PackageParts.h"

namespace lk::word {

// The texts of a title page that no note has written; empty ones are left out.
struct GeneratedTitlePage {
  std::string title;
  std::string subtitle;
  std::string author;
};

class DocumentWriter {
 public:
  DocumentWriter(const LKBindSpec& spec, BlockWriter& blocks, FootnotePool& notes);

  // The whole part. The title page stands where no piece is one.
  std::string documentXML(const std::vector<BookPiece>& pieces,
                          const GeneratedTitlePage& titlePage);

 private:
  void addFront(const BookPiece& piece, const std::vector<BodyBlock>& blocks);
  void addTitlePage(const GeneratedTitlePage& titlePage);
  void addMain(const BookPiece& piece, const std::vector<BodyBlock>& blocks);
  void addHeading(const BookPiece& piece);
  void beginPiece(const BookPiece& piece);
  void breakPage();
  void closeSection(bool nextIsOnNewPage);
  std::string sectionProperties() const;
  std::string contentsXML() const;

  const LKBindSpec& spec_;
  BlockWriter& blocks_;
  FootnotePool& notes_;
  PageMeasures page_;
  std::string xml_;
  bool needsPage_ = false;  // what comes next begins a page
  bool isFirstSection_ = true;
  bool isSectionOnNewPage_ = true;
};

}  // namespace lk::word
