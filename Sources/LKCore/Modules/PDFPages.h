#pragma once

// Reading and changing finished PDF files.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"

namespace lk {

class PDFPagesError : public Error {
  using Error::Error;
};

// A word on a page, in points from the upper left corner of the page.
struct PDFWord {
  std::string text;  // UTF-8
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  bool endsLine = false;  // otherwise a blank follows in the text, or the next word at once
  bool spaceAfter = true;
};

struct PDFPage {
  double width = 0;  // points
  double height = 0;
  std::vector<PDFWord> words;  // in the order of the text
};

struct PDFDestination {
  size_t page = 0;  // from 0
  double left = 0;  // points from the upper left corner
  double top = 0;
};

struct PDFOutlineEntry {
  std::string title;  // UTF-8, one line
  int level = 1;      // 1 is the outermost
  PDFDestination destination;
};

// What the document says of itself.
struct PDFProperties {
  std::string title;
  std::string author;
  std::string language;  // "en-US"; empty: none
  std::string date;      // "D:20260314120000Z"; empty: none
};

// All throw PDFPagesError for bytes that are no PDF, and ModuleError.

size_t pdfPageCount(std::string_view pdf);

// The pages with their words.
std::vector<PDFPage> pdfPages(std::string_view pdf);

// Named destinations, as links to "#NAME" have left them.
std::map<std::string, PDFDestination, std::less<>> pdfDestinations(std::string_view pdf);

// The file with pages `first` and following replaced by all the pages of another; links and
// destinations to the pages that stay, and from the new pages to them, hold.
std::string pdfWithPages(std::string_view pdf, size_t first, std::string_view replacement);

// The file with an outline nested by level in place of any it has, shown on opening, and with the
// properties. Links to "file:", "javascript:" and other launching actions are taken out. No
// entries: no outline. The same input gives the same bytes.
std::string finishedPDF(std::string_view pdf, const std::vector<PDFOutlineEntry>& outline,
                        const PDFProperties& properties);

}  // namespace lk
