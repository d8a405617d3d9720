#pragma once

// A book's HTML made ready for a print engine.

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/PDF/LKBindPDFOutline.h"

namespace lk::PrintedPage {

struct Document {
  std::string html;
  std::vector<LKBindPDFOutline::Heading> headings;  // each with an identifier
  std::string contentsEnd;                          // the identifier of the contents' last line
};

// With sources of pictures as "larkspire-asset:///PATH", a language, an identifier in every heading
// and links to them all, hidden at the end: a browser keeps only destinations that something links
// to. Links with other addresses than http, https, mailto, tel, larkspire and "#NAME", and elements
// that lead elsewhere (base, meta), are gone. `language` is for a document that has none.
Document document(std::string_view html, std::string_view language);

// The document with one more style sheet, which comes last.
std::string withSheet(std::string_view html, std::string_view sheet);

// Rules for paper alone: nothing leaves the page, which would make a browser shrink all of them;
// the pages before the first chapter are front matter.
std::string paperSheet();

// The rules that set numbers in the contents: `values` are those of `content`, one for each heading
// that the contents list ("bind-toc-..."), empty for none.
std::string numbersSheet(const std::vector<LKBindPDFOutline::Heading>& headings,
                         const std::vector<std::string>& values);

// A title page for engines that lay out no flexible boxes; `textHeightIn` in inches.
std::string plainTitlePageSheet(const LKBindTitlePage& title, double textHeightIn);

}  // namespace lk::PrintedPage
