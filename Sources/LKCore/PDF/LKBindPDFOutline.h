#pragma once

// The outline (bookmarks) of a bound book: its headings, from its HTML, and where they stand in its
// PDF.
//
//     const auto headings = LKBindPDFOutline::headingsFromHTML(html);
//     pdf = LKBindPDFOutline::addingOutline(pdf, headings);
//
// Positions are the document's named destinations where a heading has an identifier that the PDF
// knows, and else the next place behind the last one whose lines read as the heading.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Modules/PDFPages.h"

namespace lk::LKBindPDFOutline {

struct Heading {
  std::string text;  // one line, without markup, references decoded; may be empty
  int level = 1;     // 1 to 6
  std::string identifier = {};
  bool opensContents = false;  // the title of the contents list

  bool operator==(const Heading&) const = default;
};

// What a search leaves out at the edges of every page: the running heads and feet. Points.
struct MarginBands {
  double top = 0;
  double bottom = 0;
};

// A heading's element in the HTML, in UTF-8 bytes.
struct HeadingTag {
  int level = 1;
  size_t start = 0;       // of the opening tag
  size_t attributes = 0;  // behind its name
  size_t content = 0;     // behind the opening tag
  size_t end = 0;         // of the content
};

// The elements h1 to h6 that are closed, in their order, none within another. Linear.
std::vector<HeadingTag> headingTags(std::string_view html);

// The headings of those elements.
std::vector<Heading> headingsFromHTML(std::string_view html);

// Without tags; a line break is a blank.
std::string stripTags(std::string_view html);

// What to look for, best first: the whole text, then its beginning in eight and in four words.
std::vector<std::string> searchQueries(std::string_view text);

// A place in the order of the text.
struct Place {
  size_t page = 0;  // from 0
  size_t word = 0;  // on the page

  auto operator<=>(const Place&) const = default;
};

struct FoundText {
  Place first;
  Place behind;  // the last word
};

// The words of pages, made fit for searching once.
class PageTexts {
 public:
  PageTexts(std::vector<PDFPage> pages, MarginBands bands);

  // The first place at or behind `from` where a line begins with the query and, for `wholeLines`,
  // one ends with it. Blanks, line ends, case, accents and hyphens at a line's end make no
  // difference. Never within running heads.
  std::optional<FoundText> locate(std::string_view query, Place from, bool wholeLines) const;

  const PDFWord& word(Place place) const { return pages_[place.page].words[place.word]; }

 private:
  struct Page {
    std::vector<PDFWord> words;   // without the bands
    std::string joined;           // folded, nothing between the words
    std::vector<size_t> offsets;  // where each word begins in it, and its end
  };

  std::vector<Page> pages_;
};

// Where each heading stands; nothing for one that is not found. Throws as PDFPages.h.
std::vector<std::optional<PDFDestination>> locations(std::string_view pdf,
                                                     const std::vector<Heading>& headings,
                                                     MarginBands bands = {});

// The entries of headings that have a location and a text.
std::vector<PDFOutlineEntry> entries(const std::vector<Heading>& headings,
                                     const std::vector<std::optional<PDFDestination>>& locations);

// The PDF with the outline of the headings; unchanged when none could be located.
std::string addingOutline(std::string_view pdf, const std::vector<Heading>& headings,
                          MarginBands bands = {});

}  // namespace lk::LKBindPDFOutline
