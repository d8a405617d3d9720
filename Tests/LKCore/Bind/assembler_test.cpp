// From notes to a manuscript: keywords, tokens, filters, labels, roles and books, by tables.

#include "LKCore/Bind/LKBindAssembler.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Bind/LKBindFilter.h"
#include "LKCore/Bind/LKBindNoteChoice.h"
#include "LKCore/Bind/LKBindRoleKeywords.h"
#include "LKCore/Bind/LKBindTokenResolver.h"
#include "Support/Growth.h"

namespace lk {
namespace {

struct BindCase {
  std::string name, text, expected;
};

void expectBindCases(const std::vector<BindCase>& cases,
                     const std::function<std::string(const std::string&)>& pass) {
  for (const BindCase& row : cases) EXPECT_EQ(pass(row.text), row.expected) << row.name;
}

LKBindNoteInput bindNote(std::string title, std::string body,
                         LKBindNoteRole role = LKBindNoteRole::chapter) {
  return {std::move(title), std::move(body), role};
}

std::string assembled(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec = {}) {
  return LKBindAssembler::assemble(notes, spec, {.tagName = "novel", .author = "Ann Lee"});
}

const std::string kBreak = "\n<div class=\"bind-pagebreak\"></div>\n\n";

TEST(BindRoles, AreReadFromWords) {
  expectBindCases({{"folded", "Kapítel: Anfang", "chapter|Anfang"},
                   {"wide colon", "第：x", "none"},
                   {"wide colon with keyword", " 章 ： 二 : 三", "chapter|二 : 三"},
                   {"korean", "앞:", "front-matter|"},
                   {"skip", "ÜBERSPRINGEN: x", "skip|x"},
                   {"no colon", "Part One", "none"},
                   {"number", "Chapter 2: x", "none"},
                   {"empty", ": x", "none"}},
                  [](const std::string& heading) {
                    const auto match = LKBindRoleKeywords::matchKeywordPrefix(heading);
                    return match ? std::string(rawValue(match->role)) + "|" + match->title : "none";
                  });
  EXPECT_TRUE(LKBindRoleKeywords::bodyUsesRoleKeywords("x\n # Part : One"));
  EXPECT_FALSE(LKBindRoleKeywords::bodyUsesRoleKeywords("## Part: One\n# Kapítel: x"));
  EXPECT_EQ(LKBindNoteRoles::parse(" Title-Page "), LKBindNoteRole::titlePage);
  EXPECT_EQ(LKBindNoteRoles::parse("Chapters"), LKBindNoteRole::book);
  EXPECT_FALSE(LKBindNoteRoles::parse("titlePage"));
}

TEST(BindTokens, AreExpanded) {
  LKBindTokenContext context;
  context.chapterNumber = 21;
  context.chapterTitle = "Dawn";
  context.partNumber = 4000;
  context.tagName = "work/my-long_NOVEL";
  context.author = "Ann van Lee ";
  context.date = Day{2026, 3, 14}.utcMidnight();
  context.locale = "en_US";
  expectBindCases(
      {{"numbers", "{n} {n_roman_upper} {n_roman_lower} {n_word}", "21 XXI xxi Twenty-One"},
       {"beyond roman", "{part_n} {part_n_roman_upper}", "4000 {part_n_roman_upper}"},
       {"missing", "{notetitle} {wordcount} {page}", "{notetitle} {wordcount} {page}"},
       {"unknown", "{nonsense} {} {a", "{nonsense} {} {a"},
       {"braces", "{{x}} {{{n}}} }", "{x} {21} }"},
       {"tag", "{tag_name}|{tag_display_name}|{tag_leaf}",
        "work/my-long_NOVEL|My Long Novel|my-long_NOVEL"},
       {"author", "{author}|{author_surname}", "Ann van Lee |Lee"},
       {"date", "{date_iso}", "2026-03-14"}},
      [&](const std::string& text) { return LKBindTokenResolver::resolve(text, context); });
  context.isTitled = true;
  context.tagName = "Catch-22 of the iPhone";
  EXPECT_EQ(LKBindTokenResolver::resolve("{tag_display_name}", context), context.tagName);
  context.author = "";
  EXPECT_EQ(LKBindTokenResolver::resolve("{author}{author_surname}", context),
            "{author}{author_surname}");
  EXPECT_EQ(LKBindTokenResolver::numberSpelledOut(21, "de_DE"), "einundzwanzig");
  EXPECT_EQ(LKBindTokenResolver::romanNumeral(3999), "MMMCMXCIX");
  EXPECT_FALSE(LKBindTokenResolver::romanNumeral(0));
}

TEST(BindFilter, TakesOutWhatIsForTheWriter) {
  const LKBindFilters defaults;
  expectBindCases(
      {{"comment", "a<!-- x\n#y -->b\n", "ab\n"},
       {"two on a line", "<!--1-->a<!--2-->b", "ab"},
       {"open comment", "a <!-- b", "a <!-- b"},
       {"comment in code", "```\n<!-- x -->\n```\n", "```\n<!-- x -->\n```\n"},
       {"tasks", "a\n\t- [/] b\n- [?] c\n- [x] d", "a\n- [?] c"},
       {"task in code", "```\n- [ ] a\n```", "```\n- [ ] a\n```"},
       {"tags", "#a/b-c x #d1.", " x ."},
       {"no tags", "C#x &#x27; [a](#b) http://a/#b `#c` ## H #1",
        "C#x &#x27; [a](#b) http://a/#b `#c` ## H #1"},
       {"tags of HTML", "<a href=\"#b\">#c</a> 1<2 #d <b #e", "<a href=\"#b\"></a> 1<2  <b "},
       {"tag in code", "````x\n#a\n```\n#b\n````\n#c", "````x\n#a\n```\n#b\n````\n"},
       {"properties", "---\nid: 1\ntags:\n  - a\n---\nb", "b"},
       {"scene break first", "---\nIt was late\n---\nb", "---\nIt was late\n---\nb"}},
      [&](const std::string& body) { return LKBindFilter::apply(body, defaults); });
  EXPECT_EQ(LKBindFilter::applyTaskFilter("  - [ ] a  due:1 b id:x\nc due:1\n",
                                          LKBindStripTasks::metadata),
            "- [ ] a b\nc due:1\n");
  EXPECT_EQ(LKBindFilter::applyTaskFilter("- [ ] a\n", LKBindStripTasks::keep), "- [ ] a\n");
  LKBindFilters kept;
  kept.stripComments = kept.stripTags = kept.stripFrontmatter = kept.renderMermaid = false;
  EXPECT_EQ(
      LKBindFilter::apply("<!--c-->#t\n```mermaid\ng\n```\n````\n```mermaid\n```\n````", kept),
      "<!--c-->#t\n*(diagram — view on Mac)*\n````\n```mermaid\n```\n````");
}

TEST(BindAssembler, SplitsBodies) {
  using LKBindAssembler::SplitBody;
  EXPECT_EQ(LKBindAssembler::splitFirstH1("\n# A \nb\n"), (SplitBody{"A", "b\n"}));
  EXPECT_EQ(LKBindAssembler::splitFirstH1("## A\n# B"), (SplitBody{std::nullopt, "## A\n# B"}));
  EXPECT_EQ(LKBindAssembler::parseBookBody("p\n# Part: I\n# Dawn\n\n```\n# no\n```\n# Skip: s"),
            (LKBindAssembler::BookBody{"p\n",
                                       {{LKBindNoteRole::part, "I", ""},
                                        {LKBindNoteRole::chapter, "Dawn", "\n```\n# no\n```\n"},
                                        {LKBindNoteRole::skip, "s", ""}}}));
  EXPECT_FALSE(LKBindAssembler::bodyContainsRolePrefixH1("```\n# Part: x\n```\n## Part: x"));
}

TEST(BindAssembler, PutsNotesByTheirRoles) {
  const std::string first = "<h1 class=\"bind-chapter\">Chapter 1<br>";
  const std::string second = "<h1 class=\"bind-chapter\">Chapter 2<br>";
  EXPECT_EQ(assembled({}), "");
  EXPECT_EQ(assembled({bindNote("Dawn", "text")}), first + "Dawn</h1>\n\ntext\n");
  EXPECT_EQ(assembled({bindNote("n", "# A\nx"), bindNote("s", "y", LKBindNoteRole::skip),
                       bindNote("m", "# \nz")}),
            first + "A</h1>\n\nx\n" + kBreak + second + "m</h1>\n\nz\n");
  EXPECT_EQ(assembled({bindNote("n", "# A\nx"), bindNote("1", "# H\ns", LKBindNoteRole::scene),
                       bindNote("2", "t", LKBindNoteRole::scene)}),
            first + "A</h1>\n\nx\n\ns\n\n---\n\nt\n");
  EXPECT_EQ(assembled({bindNote("e", "# E\ne", LKBindNoteRole::endMatter),
                       bindNote("p", "# P\np", LKBindNoteRole::plain),
                       bindNote("f", "f", LKBindNoteRole::frontMatter),
                       bindNote("t", "t", LKBindNoteRole::titlePage)}),
            "<div class=\"bind-titlepage\">\n\nt\n</div>\n" + kBreak +
                "<div class=\"bind-titlepage\">\n\nf\n</div>\n" + kBreak + "# P\np\n" + kBreak +
                "# E\ne\n");
  EXPECT_EQ(assembled({bindNote("One", "x", LKBindNoteRole::part), bindNote("A", "y")}),
            "<h1 class=\"bind-part\">Part I<br>One</h1>\n\nx\n" + kBreak + first + "A</h1>\n\ny\n");
}

TEST(BindAssembler, TakesABookApart) {
  const std::string book = assembled(
      {bindNote("b", "pre\n# Anhang: Thanks\nt\n# Part: One\n# Dawn\nx\n# skip: no\nz\n# 章：二"),
       bindNote("n", "last")});
  EXPECT_EQ(book, "<div class=\"bind-titlepage\">\n\npre\n</div>\n" + kBreak +
                      "<h1 class=\"bind-part\">Part I<br>One</h1>\n\n\n" + kBreak.substr(1) +
                      "<h1 class=\"bind-chapter\">Chapter 1<br>Dawn</h1>\n\nx\n" + kBreak +
                      "<h1 class=\"bind-chapter\">Chapter 2<br>二</h1>\n\n\n" + kBreak.substr(1) +
                      "<h1 class=\"bind-chapter\">Chapter 3<br>n</h1>\n\nlast\n" + kBreak +
                      "# Thanks\n\nt\n");
}

TEST(BindAssembler, WritesTitlesThatStayTitles) {
  LKBindSpec spec;
  spec.headings.h1.prefix = "{title}";
  spec.headings.h1.pageBreakBefore = false;
  const std::string open = "<h1 class=\"bind-chapter\">";
  expectBindCases(
      {{"HTML", "</h1><script>\"'&amp;", "&lt;/h1&gt;&lt;script&gt;&quot;&#39;&amp;amp;"},
       {"links", "Ask [[A&B]] [[x", "Ask A&amp;B &#91;[x"},
       {"dialect", "a ==b== ::c:: [^1] due:x", "a &#61;=b&#61;= &#58;:c&#58;: &#91;^1] due&#58;x"},
       {"plain signs", "A: 1=1 @home", "A: 1=1 @home"}},
      [&](const std::string& title) {
        const std::string text = assembled({bindNote(title, "")}, spec);
        return text.substr(open.size(), text.find("</h1>\n") - open.size());
      });
  spec.headings.h1.prefix = spec.headings.h1.suffix = "";
  EXPECT_EQ(assembled({bindNote("A", "x")}, spec), open + "A</h1>\n\nx\n");
}

TEST(BindAssembler, KeepsNotesApart) {
  LKBindSpec spec;
  spec.headings.h1.prefix = "{title}";
  spec.headings.h1.pageBreakBefore = false;
  const std::string b = "\n<h1 class=\"bind-chapter\">B</h1>\n\n";
  const std::vector<BindCase> openings = {
      {"fence", "````\nx", "````\nx\n````\n"},
      {"tildes", "~~~\nx\n```", "~~~\nx\n```\n~~~\n"},
      {"fence further in", "\t```c\nx\n```", "```c\nx\n```\n"},
      {"fence's end further in", "- a\n\t```\n\tx\n\t\t```", "- a\n\t```\n\tx\n\t```\n"},
      {"open fence further in", "\t```\nx", "```\nx\n```\n"},
      {"comment", "<!-- a -->\n<!-- x", "\n&lt;!-- x\n"},
      {"element", "<PRE>\n</Pre>\n <pre class='a'>x\n<predator>",
       "<PRE>\n</Pre>\n &lt;pre class='a'>x\n<predator>\n"},
      {"instruction", "<?php\n<![CDATA[ x", "&lt;?php\n&lt;![CDATA[ x\n"},
      {"comment in code", "```\n<!-- x\n```", "```\n<!-- x\n```\n"}};
  for (const BindCase& row : openings) {
    EXPECT_EQ(assembled({bindNote("A", row.text), bindNote("B", "y")}, spec),
              "<h1 class=\"bind-chapter\">A</h1>\n\n" + row.expected + b + "y\n")
        << row.name;
  }
}

TEST(BindAssembler, GivesEachNoteItsFootnotes) {
  const auto bodies = [](const std::vector<std::string>& texts) {
    std::vector<LKBindNoteInput> notes;
    for (const std::string& text : texts) {
      notes.push_back(bindNote("", text, LKBindNoteRole::scene));
    }
    return assembled(notes);
  };
  const std::string gap = "\n---\n\n";
  EXPECT_EQ(bodies({"a[^1]\n[^1]: A", "b[^1] [^1-2]\n```\n[^1]\n```\n[^1]: B", "c[^1]\n[^1]: C"}),
            "a[^1]\n[^1]: A\n" + gap + "b[^1-3] [^1-2]\n```\n[^1]\n```\n[^1-3]: B\n" + gap +
                "c[^1-4]\n[^1-4]: C\n");
  // What a note refers to without defining it is text there, and no other note's footnote.
  EXPECT_EQ(bodies({"a[^x]\n[^x]: A", "b[^x]"}), "a[^x-2]\n[^x-2]: A\n" + gap + "b[^x]\n");
}

TEST(BindNoteChoice, BringsInAndLeavesOut) {
  LKBindSpec spec;
  spec.frontMatter.copyrightNote = "Rights";
  spec.frontMatter.epigraphNote = "Motto";
  spec.frontMatter.includeNotesWithTag = "front";
  spec.backMatter.aboutAuthorNote = "Ann";
  spec.filters.skipNotesTagged = "#Draft";
  const LKBindNoteChoice::Source source = {
      .noteTitled = [](std::string_view title) -> std::optional<LKBindNoteInput> {
        if (title == "Nobody") return std::nullopt;
        return LKBindNoteInput{std::string(title), "b", LKBindNoteRole::chapter, {"draft"}};
      },
      .notesTagged =
          [](std::string_view tag) {
            return std::vector<LKBindNoteInput>{
                {"Foreword", "b", LKBindNoteRole::plain, {std::string(tag)}},
                {"Late", "b", LKBindNoteRole::plain, {"draft/old"}}};
          }};
  const std::vector<LKBindNoteInput> book =
      LKBindNoteChoice::notesOfBook({{"Motto", "b"},
                                     {"One", "b"},
                                     {"Two", "b", LKBindNoteRole::part, {"draft"}},
                                     {"Motto", "other"},
                                     {"Three", "b", LKBindNoteRole::part, {"drafts"}}},
                                    spec, source);
  std::string titles;
  for (const LKBindNoteInput& note : book) {
    titles += note.noteTitle + " " + std::string(rawValue(note.role)) + "\n";
  }
  EXPECT_EQ(titles,
            "Rights front-matter\nMotto front-matter\nForeword front-matter\nOne chapter\n"
            "Motto chapter\nThree part\nAnn end-matter\n");
  spec.frontMatter.dedicationNote = "Nobody";
  try {
    LKBindNoteChoice::notesOfBook({}, spec, source);
    FAIL() << "a note that is not there was found";
  } catch (const LKBindError& error) {
    EXPECT_EQ(
        error.description(),
        "The bind spec names the note 'Nobody' as its dedication_note, but the collection has "
        "no note of that title.");
  }
}

TEST(BindAssembler, IsLinear) {
  for (const char* unit :
       {"<!--", "#a`", "[^1]\n[^1]: a\n", "# Part: x\n", "```mermaid\n", "- [ ] a\n", "{title}"}) {
    EXPECT_LE(test::growth(unit, 100'000,
                           [](const std::string& text) {
                             assembled({bindNote(text.substr(0, 1'000), text)});
                           }),
              8)
        << unit;
  }
}

}  // namespace
}  // namespace lk
