#pragma once

// Blocks of a note as the paragraphs and tables of a Word document.

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/DOCX/BodyBlocks.h"
#include "LKCore/DOCX/DocumentMeasures.h"
#include "LKCore/DOCX/DocumentRuns.h"

namespace lk::word {

// An entry of the contents.
struct ContentsEntry {
  std::string title;
  std::string bookmark;
  int depth = 1;  // 1 to 3
};

// A numbered list of its own, so that its numbers begin anew; 1 and 2 are those that every document
// has.
struct NumberedRun {
  int numId = 2;
  int64_t start = 1;
};

class BlockWriter {
 public:
  BlockWriter(const LKBindSpec& spec, const LKBindDiagrams& diagrams, FootnotePool& notes,
              ImageRegistry& images);

  // How the paragraphs of a title page and of all else stand.
  enum class Flow { body, centered };

  // Appends the blocks; the first paragraph has no indent.
  void append(std::string& xml, const std::vector<BodyBlock>& blocks, Flow flow = Flow::body);
  void appendSceneBreak(std::string& xml);
  // A paragraph of a style, with a bookmark when it has an entry in the contents.
  void appendHeading(std::string& xml, std::string_view style, std::string_view runs,
                     std::string_view title, int depth, bool isOnNewPage);
  // The definitions that nothing refers to.
  void appendLooseNotes(std::string& xml);

  const std::vector<ContentsEntry>& contents() const { return contents_; }
  const std::vector<NumberedRun>& numberedRuns() const { return numberedRuns_; }
  // Parts are the first level of the contents, if the book has any.
  void setHasParts(bool hasParts) { hasParts_ = hasParts; }
  bool hasParts() const { return hasParts_; }

 private:
  void take(std::string& xml, const BodyBlocks::Prose& prose);
  void take(std::string& xml, const BodyBlocks::BulletedList& list);
  void take(std::string& xml, const BodyBlocks::NumberedList& list);
  void take(std::string& xml, const BodyBlocks::BlockQuote& quote);
  void take(std::string& xml, const BodyBlocks::SubHeading& heading);
  void take(std::string& xml, const BodyBlocks::FootnoteDefinition& note);
  void take(std::string& xml, const BodyBlocks::Table& table);
  void take(std::string& xml, const BodyBlocks::CodeBlock& code);
  void take(std::string& xml, const BodyBlocks::Image& image);
  void take(std::string& xml, const BodyBlocks::SceneBreak& sceneBreak);

  void appendBodyParagraph(std::string& xml, std::string_view text);
  void appendItems(std::string& xml, const std::vector<DOCXListItem>& items);
  int numberedRun(int64_t start);
  void appendQuoteParagraph(std::string& xml, std::string_view text, const RunFormat& format);
  void appendRow(std::string& xml, const BodyBlocks::Table& table, size_t row);
  void appendPicture(std::string& xml, const EmbeddedImage* image, std::string_view alt,
                     const LKInlineImage& requested);
  bool appendDiagram(std::string& xml, const BodyBlocks::CodeBlock& code);
  bool isListed(int level) const;

  const LKBindSpec& spec_;
  const LKBindDiagrams& diagrams_;
  FootnotePool& notes_;
  ImageRegistry& images_;
  PageMeasures page_;
  RunSources sources_;
  Flow flow_ = Flow::body;
  bool indentsNext_ = false;
  bool hasParts_ = false;
  std::vector<ContentsEntry> contents_;
  std::vector<NumberedRun> numberedRuns_;
  int nextNumId_ = 2;
};

}  // namespace lk::word
