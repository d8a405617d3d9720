// What the options of `lk bind` make of a preset.

#include "LarkspireCLI/Commands/BindSpecOptions.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CommandLine.h"
#include "LarkspireCLI/Commands/BindCommand.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {
namespace {

// The options are separated by "|".
LKBindSpec specOf(const std::string& options) {
  std::vector<std::string> words = {"bind"};
  if (!options.empty()) {
    for (const std::string_view word : text::split(options, '|')) words.emplace_back(word);
  }
  const Request request = LK::parseAsRoot(words);
  return buildSpec(dynamic_cast<const BindCommand&>(*std::get<CommandRun>(request).command));
}

void setPage(LKBindSpec& spec, LKBindPageSize size, double widthIn, double heightIn) {
  spec.page.size = size;
  spec.page.widthIn = widthIn;
  spec.page.heightIn = heightIn;
}

struct OptionCase {
  std::string options;
  std::function<void(LKBindSpec&)> change;  // of the standard manuscript
};

TEST(BindOptions, changeWhatTheyNameAndNothingElse) {
  const std::vector<OptionCase> cases = {
      {"", [](auto&) {}},
      {"--style|Standard|--paragraphs|default|--page|letter", [](auto&) {}},
      {"--style|paperback", [](auto& spec) { spec = LKBindSpec::iOSPaperback(); }},
      {"--style|plain", [](auto& spec) { spec = LKBindSpec::iOSPlain(); }},
      {"--style|paperback|--page|letter",
       [](auto& spec) {
         spec = LKBindSpec::iOSPaperback();
         setPage(spec, LKBindPageSize::letter, 8.5, 11);
       }},
      {"--style|plain|--chapter-heading|numbers-and-titles",
       [](auto& spec) {
         spec = LKBindSpec::iOSPlain();
         spec.headings.h1.prefix = "Chapter {n}\n{title}";
       }},
      {"--chapter-heading|Numbers", [](auto& spec) { spec.headings.h1.prefix = "Chapter {n}"; }},
      {"--chapter-heading|titles", [](auto& spec) { spec.headings.h1.prefix = "{title}"; }},
      {"--paragraph-style|commonmark",
       [](auto& spec) { spec.filters.paragraphStyle = LKBindParagraphStyle::commonmark; }},
      {"--header-footer|agent-submission",
       [](auto& spec) { spec.headerFooter.style = LKBindHeaderFooterStyle::agentSubmission; }},
      {"--header-footer|none",
       [](auto& spec) { spec.headerFooter.style = LKBindHeaderFooterStyle::none; }},
      {"--paragraphs|block",
       [](auto& spec) {
         spec.typography.firstLineIndentIn = 0;
         spec.typography.paragraphSpacingPt = 8;
       }},
      {"--paragraphs|indented", [](auto&) {}},
      {"--style|plain|--paragraphs|indented",
       [](auto& spec) {
         spec = LKBindSpec::iOSPlain();
         spec.typography.firstLineIndentIn = 0.25;
         spec.typography.paragraphSpacingPt = 0;
       }},
      {"--footnotes|end-of-book",
       [](auto& spec) { spec.filters.footnotePlacement = LKBindFootnotePlacement::endOfBook; }},
      {"--footnotes|end-of-chapter",
       [](auto& spec) { spec.filters.footnotePlacement = LKBindFootnotePlacement::endOfChapter; }},
      {"--tasks|KEEP", [](auto& spec) { spec.filters.stripTasks = LKBindStripTasks::keep; }},
      {"--tasks|strip", [](auto&) {}},
      {"--tasks|metadata",
       [](auto& spec) { spec.filters.stripTasks = LKBindStripTasks::metadata; }},
      {"--page|legal|--orientation|landscape|--margin|tight",
       [](auto& spec) {
         setPage(spec, LKBindPageSize::legal, 8.5, 14);
         spec.page.orientation = LKBindOrientation::landscape;
         spec.page.marginIn = {0.25, 0.25, 0.25, 0.25};
       }},
      {"--margin|narrow",
       [](auto& spec) {
         spec.page.marginIn = {0.5, 0.5, 0.5, 0.5};
       }},
      {"--margin|wide",
       [](auto& spec) {
         spec.page.marginIn = {1.5, 1.5, 1.5, 1.5};
       }},
      {"--page|A4", [](auto& spec) { setPage(spec, LKBindPageSize::a4, 8.27, 11.69); }},
      {"--page|a5", [](auto& spec) { setPage(spec, LKBindPageSize::a5, 5.83, 8.27); }},
      {"--page|b5", [](auto& spec) { setPage(spec, LKBindPageSize::b5, 6.93, 9.84); }},
      {"--page|TRADE-6X9",
       [](auto& spec) { setPage(spec, LKBindPageSize::tradePaperback6x9, 6, 9); }},
      {"--page|mass-market",
       [](auto& spec) { setPage(spec, LKBindPageSize::massMarket425x7, 4.25, 7); }},
      {"--theme|GitHub", [](auto& spec) { spec.theme = "github"; }},
  };
  for (const OptionCase& each : cases) {
    LKBindSpec expected = LKBindSpec::iOSStandardManuscript();
    each.change(expected);
    EXPECT_EQ(specOf(each.options).encodedJSON(), expected.encodedJSON()) << each.options;
  }
}

TEST(BindOptions, haveOtherWordsForTheSame) {
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases = {
      {"--paragraph-style|larkspire", {"larkspire-native", "larkspireNative"}},
      {"--header-footer|published-book", {"publishedbook", "Book"}},
      {"--header-footer|agent-submission", {"agentsubmission", "agent", "Shunn"}},
      {"--paragraphs|indented", {"indent"}},
      {"--paragraphs|block", {"technical", "techdoc"}},
      {"--footnotes|per-page", {"perpage", "page", "bottom"}},
      {"--footnotes|end-of-book", {"endofbook", "book-end", "book", "endnotes"}},
      {"--footnotes|end-of-chapter", {"endofchapter", "chapter-end", "chapter"}},
      {"--page|trade-6x9", {"trade6x9"}},
      {"--page|mass-market", {"massmarket"}},
  };
  for (const auto& [known, others] : cases) {
    const std::string option = known.substr(0, known.find('|') + 1);
    for (const std::string& other : others)
      EXPECT_EQ(specOf(option + other), specOf(known)) << other;
  }
}

TEST(BindOptions, refuseAWordThatTheyDoNotKnow) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"--style", "style 'Vast'. Use standard, paperback, or plain."},
      {"--chapter-heading", "chapter-heading 'Vast'. Use numbers-and-titles, numbers, or titles."},
      {"--paragraph-style", "paragraph-style 'Vast'. Use larkspire or commonmark."},
      {"--header-footer", "header-footer 'Vast'. Use published-book, agent-submission, or none."},
      {"--paragraphs", "paragraphs 'Vast'. Use indented, block, or inherit."},
      {"--footnotes", "footnotes 'Vast'. Use per-page, end-of-book, or end-of-chapter."},
      {"--tasks", "tasks mode 'Vast'. Use keep, strip, or metadata."},
      {"--margin", "margin 'Vast'. Use standard, narrow, wide, or tight."},
      {"--orientation", "orientation 'Vast'. Use portrait or landscape."},
      {"--page", "page size 'Vast'. Use letter, legal, a4, a5, b5, trade-6x9, or mass-market."},
  };
  for (const auto& [option, message] : cases) {
    try {
      specOf(option + "|Vast");
      ADD_FAILURE() << option;
    } catch (const CLIError& error) {
      EXPECT_EQ(error.message(), "Unknown " + message);
    }
  }
}

}  // namespace
}  // namespace lk
