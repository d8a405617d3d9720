#include "LarkspireCLI/Commands/BindSpecOptions.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Commands/BindCommand.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

namespace {

// The words of an option, in lower case, and what they stand for.
template <typename Value>
using Meanings = std::vector<std::pair<std::string_view, Value>>;

// `kind` and `accepted` are for the message about a word that is not there.
template <typename Value>
Value meaningOf(const std::string& typed, const Meanings<Value>& meanings, const std::string& kind,
                const std::string& accepted) {
  const std::string word = text::lowercased(typed);
  const auto found = std::ranges::find(meanings, word, &Meanings<Value>::value_type::first);
  if (found != meanings.end()) return found->second;
  throw CLIError::general("Unknown " + kind + " '" + typed + "'. Use " + accepted + ".");
}

LKBindSpec presetOf(const std::string& style) {
  using Preset = LKBindSpec (*)();
  return meaningOf<Preset>(style,
                           {{"standard", LKBindSpec::iOSStandardManuscript},
                            {"paperback", LKBindSpec::iOSPaperback},
                            {"plain", LKBindSpec::iOSPlain}},
                           "style", "standard, paperback, or plain")();
}

std::string chapterTemplate(const std::string& chapterHeading) {
  return meaningOf<std::string>(chapterHeading,
                                {{"numbers-and-titles", "Chapter {n}\n{title}"},
                                 {"numbers", "Chapter {n}"},
                                 {"titles", "{title}"}},
                                "chapter-heading", "numbers-and-titles, numbers, or titles");
}

LKBindParagraphStyle paragraphStyleOf(const std::string& typed) {
  return meaningOf<LKBindParagraphStyle>(
      typed,
      {{"larkspire", LKBindParagraphStyle::larkspireNative},
       {"larkspire-native", LKBindParagraphStyle::larkspireNative},
       {"larkspirenative", LKBindParagraphStyle::larkspireNative},
       {"commonmark", LKBindParagraphStyle::commonmark}},
      "paragraph-style", "larkspire or commonmark");
}

LKBindHeaderFooterStyle headerFooterOf(const std::string& typed) {
  constexpr auto kBook = LKBindHeaderFooterStyle::publishedBook;
  constexpr auto kAgent = LKBindHeaderFooterStyle::agentSubmission;
  return meaningOf<LKBindHeaderFooterStyle>(typed,
                                            {{"published-book", kBook},
                                             {"publishedbook", kBook},
                                             {"book", kBook},
                                             {"agent-submission", kAgent},
                                             {"agentsubmission", kAgent},
                                             {"agent", kAgent},
                                             {"shunn", kAgent},
                                             {"none", LKBindHeaderFooterStyle::none}},
                                            "header-footer",
                                            "published-book, agent-submission, or none");
}

LKBindFootnotePlacement footnotePlacementOf(const std::string& typed) {
  constexpr auto kPage = LKBindFootnotePlacement::perPage;
  constexpr auto kBook = LKBindFootnotePlacement::endOfBook;
  constexpr auto kChapter = LKBindFootnotePlacement::endOfChapter;
  return meaningOf<LKBindFootnotePlacement>(typed,
                                            {{"per-page", kPage},
                                             {"perpage", kPage},
                                             {"page", kPage},
                                             {"bottom", kPage},
                                             {"end-of-book", kBook},
                                             {"endofbook", kBook},
                                             {"book-end", kBook},
                                             {"book", kBook},
                                             {"endnotes", kBook},
                                             {"end-of-chapter", kChapter},
                                             {"endofchapter", kChapter},
                                             {"chapter-end", kChapter},
                                             {"chapter", kChapter}},
                                            "footnotes",
                                            "per-page, end-of-book, or end-of-chapter");
}

LKBindStripTasks stripTasksOf(const std::string& typed) {
  return meaningOf<LKBindStripTasks>(typed,
                                     {{"keep", LKBindStripTasks::keep},
                                      {"strip", LKBindStripTasks::lines},
                                      {"metadata", LKBindStripTasks::metadata}},
                                     "tasks mode", "keep, strip, or metadata");
}

// A layout takes the measure of the preset; where that has none, the paperback's indent and the
// plain style's gap.
void layOutParagraphs(const std::string& typed, LKBindTypography& typography) {
  enum class Layout { indented, block, inherit };
  const auto layout = meaningOf<Layout>(typed,
                                        {{"indented", Layout::indented},
                                         {"indent", Layout::indented},
                                         {"block", Layout::block},
                                         {"technical", Layout::block},
                                         {"techdoc", Layout::block},
                                         {"inherit", Layout::inherit},
                                         {"default", Layout::inherit}},
                                        "paragraphs", "indented, block, or inherit");
  double& indent = typography.firstLineIndentIn;
  double& gap = typography.paragraphSpacingPt;
  if (layout == Layout::indented) {
    if (indent <= 0) indent = LKBindSpec::iOSPaperback().typography.firstLineIndentIn;
    gap = 0;
  } else if (layout == Layout::block) {
    if (gap <= 0) gap = LKBindSpec::iOSPlain().typography.paragraphSpacingPt;
    indent = 0;
  }
}

struct PageGeometry {
  LKBindPageSize size = LKBindPageSize::letter;
  double widthIn = 0;
  double heightIn = 0;
};

PageGeometry pageGeometry(const std::string& forPage) {
  constexpr PageGeometry kTrade = {LKBindPageSize::tradePaperback6x9, 6, 9};
  constexpr PageGeometry kMassMarket = {LKBindPageSize::massMarket425x7, 4.25, 7};
  return meaningOf<PageGeometry>(forPage,
                                 {{"letter", {LKBindPageSize::letter, 8.5, 11}},
                                  {"legal", {LKBindPageSize::legal, 8.5, 14}},
                                  {"a4", {LKBindPageSize::a4, 8.27, 11.69}},
                                  {"a5", {LKBindPageSize::a5, 5.83, 8.27}},
                                  {"b5", {LKBindPageSize::b5, 6.93, 9.84}},
                                  {"trade-6x9", kTrade},
                                  {"trade6x9", kTrade},
                                  {"mass-market", kMassMarket},
                                  {"massmarket", kMassMarket}},
                                 "page size",
                                 "letter, legal, a4, a5, b5, trade-6x9, or mass-market");
}

LKBindMargins marginsOf(const std::string& typed) {
  return meaningOf<LKBindMargins>(typed,
                                  {{"standard", LKBindMargins::standard()},
                                   {"narrow", LKBindMargins::narrow()},
                                   {"wide", LKBindMargins::wide()},
                                   {"tight", LKBindMargins::tight()}},
                                  "margin", "standard, narrow, wide, or tight");
}

LKBindOrientation orientationOf(const std::string& typed) {
  return meaningOf<LKBindOrientation>(
      typed,
      {{"portrait", LKBindOrientation::portrait}, {"landscape", LKBindOrientation::landscape}},
      "orientation", "portrait or landscape");
}

void setPage(const BindCommand& command, LKBindPage& page) {
  if (command.page) {
    const PageGeometry geometry = pageGeometry(*command.page);
    page.size = geometry.size;
    page.widthIn = geometry.widthIn;
    page.heightIn = geometry.heightIn;
  }
  page.orientation = orientationOf(command.orientation);
  page.marginIn = marginsOf(command.margin);
}

LKBindSpec specInFile(const std::string& file) {
  try {
    return LKBindSpec::decode(readFile(file));
  } catch (const JsonError& error) {
    throw CLIError::general(file + ": " + error.description());
  } catch (const Error& error) {  // the file's own, which names it, or of a version to come
    throw CLIError::general(error.description());
  }
}

}  // namespace

LKBindSpec buildSpec(const BindCommand& command) {
  if (command.specFile) return specInFile(*command.specFile);
  LKBindSpec spec = presetOf(command.style);
  if (command.chapterHeading) spec.headings.h1.prefix = chapterTemplate(*command.chapterHeading);
  spec.filters.paragraphStyle = paragraphStyleOf(command.paragraphStyle);
  spec.headerFooter.style = headerFooterOf(command.headerFooter);
  layOutParagraphs(command.paragraphs, spec.typography);
  spec.filters.footnotePlacement = footnotePlacementOf(command.footnotes);
  if (command.tasks) spec.filters.stripTasks = stripTasksOf(*command.tasks);
  setPage(command, spec.page);
  if (command.theme) spec.theme = text::lowercased(*command.theme);
  return spec;
}

}  // namespace lk
