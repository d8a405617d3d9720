// From a manuscript to a page: contents, paragraphs, diagrams, footnotes, styles, and what hostile
// texts may not do.

#include "LKCore/Bind/LKBindEngine.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/Bind/BookPasses.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Bind/LKBindCSSGenerator.h"
#include "LKCore/Bind/LKBindSyntaxHighlighter.h"
#include "LKCore/Bind/LKBindThemes.h"
#include "LKCore/Bind/ProseLines.h"
#include "Support/Growth.h"

namespace lk {
namespace {

const LKBindSubject kSubject = {.tagName = "my-novel", .author = "Ann Lee", .locale = "C"};

std::string pageOf(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec = {}) {
  return LKBindEngine::bind(notes, spec, kSubject);
}

std::string bodyOf(const std::string& page) {
  const std::string open = "\n<body>\n";
  const size_t start = page.find(open) + open.size();
  return page.substr(start, page.rfind("\n</body>") - start);
}

bool hasText(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

TEST(BindEngine, MakesOnePage) {
  const std::string page = pageOf({{"Dawn", "It **was**.\nLate."}});
  EXPECT_TRUE(
      page.starts_with("<!DOCTYPE html>\n<html>\n<head>\n<meta charset=\"utf-8\">\n"
                       "<title>My Novel</title>\n<style>\n@page {\n"));
  EXPECT_TRUE(page.ends_with("\n</body>\n</html>"));
  EXPECT_EQ(bodyOf(page),
            "<h1 class=\"bind-chapter\">Chapter 1<br>Dawn</h1>\n"
            "<p>It <strong>was</strong>.</p>\n<p>Late.</p>\n");
  LKBindSpec joined;
  joined.filters.paragraphStyle = LKBindParagraphStyle::commonmark;
  EXPECT_TRUE(hasText(pageOf({{"Dawn", "a\nb"}}, joined), "<p>a\nb</p>"));
  EXPECT_EQ(bodyOf(pageOf({})), "");
  LKBindSubject german = kSubject;
  german.locale = "de_DE";
  EXPECT_TRUE(hasText(LKBindEngine::bind({}, {}, german), "<html lang=\"de-DE\">"));
  // A scene break at the very start is no block of properties.
  EXPECT_TRUE(hasText(pageOf({{"", "---\nkept\n---\nx", LKBindNoteRole::plain}}), "<p>kept</p>"));
}

TEST(BindEngine, ListsHeadings) {
  LKBindSpec spec;
  spec.frontMatter.tableOfContents = {.include = true, .title = "In & out"};
  spec.headings.h1.prefix = "{title}";
  const std::vector<LKBindNoteInput> notes = {
      {"A <b>: [[B]]", "```\n<h1 class=\"bind-part\">\n```"},
      {"Two", "", LKBindNoteRole::part},
      {"C", ""}};
  const auto entry = [](const std::string& kind, const std::string& id, const std::string& title) {
    return "<li class=\"bind-toc-entry bind-toc-entry-" + kind + "\"><a href=\"#bind-toc-" + kind +
           "-" + id + "\">" + title + "</a><span class=\"toc-page\" data-target-id=\"bind-toc-" +
           kind + "-" + id + "\"></span></li>\n";
  };
  const std::string first = "<h1 class=\"bind-chapter\" id=\"bind-toc-chapter-1\">A &lt;b&gt;: B";
  const std::string body = bodyOf(pageOf(notes, spec));
  EXPECT_TRUE(body.starts_with(
      "<nav class=\"bind-toc\" aria-label=\"Contents\">\n"
      "<h1 class=\"bind-toc-title\">In &amp; out</h1>\n<ol class=\"bind-toc-list\">\n" +
      entry("chapter", "1", "A &lt;b&gt;: B") + entry("part", "1", "Part I Two") +
      entry("chapter", "2", "C") + "</ol>\n</nav>\n" + first))
      << body;
  spec.frontMatter.tableOfContents.maxDepth = 1;
  EXPECT_FALSE(hasText(bodyOf(pageOf(notes, spec)), "bind-toc-chapter"));
  spec.headings.part.includeInToc = false;
  EXPECT_FALSE(hasText(bodyOf(pageOf(notes, spec)), "<nav"));
}

TEST(BindEngine, MakesLinesParagraphs) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"a\nb\n\nc", "a\n\nb\n\nc"},
      {"- a\nb\n  c", "- a\n\nb\n\nc"},
      {"- a\n  b\n\tc\n1. d\n2) e", "- a\n  b\n\tc\n1. d\n2) e"},
      {"> a\n> b\nc", "> a\n> b\n\nc"},
      {"a | b\n--- | ---\n1 | 2\nc", "a | b\n--- | ---\n1 | 2\n\nc"},
      {"```\na\nb\n```\nc\nd", "```\na\nb\n```\n\nc\n\nd"},
      {"<div>\na\nb\n\nc\nd\n</div>", "<div>\na\nb\n\nc\n\nd\n</div>"},
      {"<pre>\na\n\nb\nc\n</pre>\n\nd\ne", "<pre>\na\n\nb\nc\n</pre>\n\nd\n\ne"},
      {"<em>a</em> b\nc", "<em>a</em> b\n\nc"},
      {"[^1]: a\n\tb\nc", "[^1]: a\n\tb\n\nc"},
      {"# a\nb\n===\n---\n*c*\n    d", "# a\n\nb\n===\n---\n\n*c*\n\nd"},
      {"\n    a\n    b", "\n    a\n    b"},
  };
  for (const auto& [text, expected] : cases) {
    EXPECT_EQ(proseLinesAsParagraphs(text), expected) << text;
  }
}

TEST(BindEngine, PutsDiagramsInTheirPlaces) {
  const std::string note = "a\n```mermaid\n\ngraph\n```\nb\n````\n```mermaid\n```\n````\n";
  const std::string none =
      "<figure class=\"bind-mermaid-caption\"><em>(diagram — view source)</em></figure>";
  EXPECT_TRUE(
      hasText(pageOf({{"", note}}), "<p>a</p>\n" + none + "\n<p>b</p>\n<pre><code>```mermaid"));
  const LKBindDiagrams renders = {{"\ngraph", {.svg = "<svg/>", .width = 40, .height = 20.5}}};
  EXPECT_TRUE(hasText(LKBindEngine::bind({{"", note}}, {}, kSubject, renders),
                      "<figure class=\"bind-mermaid\"><img src=\"data:image/svg+xml;base64,"
                      "PHN2Zy8+\" alt=\"Diagram\" width=\"40\" height=\"20.5\" /></figure>"));
}

TEST(BindEngine, PutsFootnotesAtTheEndOfChapters) {
  LKBindSpec spec;
  spec.headings.h1.prefix = "{title}";
  const std::vector<LKBindNoteInput> notes = {
      {"A", "x[^b] y[^a]\n\n[^a]: One </section> <li>\n[^b]: Two"},
      {"B", "z[^a]\n\n[^a]: Three\n[^u]: Unused"}};
  const std::string perPage = bodyOf(pageOf(notes, spec));
  EXPECT_TRUE(hasText(perPage, "id=\"fnref-a-2\">3</a>"));
  spec.filters.footnotePlacement = LKBindFootnotePlacement::endOfChapter;
  const std::string body = bodyOf(pageOf(notes, spec));
  const auto item = [](const std::string& label, const std::string& text) {
    return "<li id=\"fn-" + label + "\"><p>" + text + " <a href=\"#fnref-" + label +
           "\" class=\"footnote-backref\">↩</a></p></li>\n";
  };
  const std::string open = "<section class=\"footnotes footnotes-chapter\">\n<hr>\n<ol>\n";
  EXPECT_TRUE(hasText(body, "id=\"fnref-b\">1</a></sup> y"));
  EXPECT_TRUE(hasText(body, "id=\"fnref-a\">2</a></sup></p>\n" + open + item("b", "Two") +
                                item("a", "One </section> <li>") +
                                "</ol>\n</section>\n<div class=\"bind-pagebreak\"></div>\n"
                                "<h1 class=\"bind-chapter\">B</h1>"))
      << body;
  EXPECT_TRUE(hasText(body, "id=\"fnref-a-2\">1</a></sup></p>\n" + open + item("a-2", "Three")));
  EXPECT_TRUE(hasText(body, "<section class=\"footnotes\">\n<hr>\n<ol>\n" + item("u", "Unused")));
}

// Needs the part that colours code, which the check builds.
TEST(BindEngine, ColoursCode) {
  using LKBindSyntaxHighlighter::applyToHTML;
  EXPECT_EQ(
      applyToHTML("<pre><code class=\"language-Swift\">let x = &quot;a\\&quot;&quot; // 1 &lt;\n"
                  "</code></pre>"),
      "<pre><code class=\"language-Swift\"><span class=\"hl-keyword\">let</span> x = "
      "<span class=\"hl-string\">&quot;a\\&quot;&quot;</span> "
      "<span class=\"hl-comment\">// 1 &lt;</span>\n</code></pre>");
  for (const std::string same :
       {"<pre><code class=\"language-odd\">let</code></pre>", "<pre><code>let</code></pre>",
        "<pre><code class=\"language-c\"><b>int</b></code></pre>",
        "<pre><code class=\"language-c\">int"}) {
    EXPECT_EQ(applyToHTML(same), same);
  }
  LKBindSpec plain;
  plain.filters.syntaxHighlightCode = false;
  EXPECT_FALSE(hasText(pageOf({{"", "```c\nint x;\n```"}}, plain), "hl-keyword"));
}

TEST(BindSheet, SetsThePage) {
  LKBindSpec spec;
  spec.page.orientation = LKBindOrientation::landscape;
  spec.headerFooter.headerCenter = "{title}: {nonsense}{wordcount}";
  spec.headerFooter.headerLeft = "{wordcount}";
  spec.headerFooter.headerRight = "p. {page} of {pagecount}";
  std::string sheet = LKBindCSSGenerator::css(spec, kSubject);
  EXPECT_TRUE(hasText(sheet, "size: 11in 8.5in;\n  margin-top: 1in;"));
  EXPECT_TRUE(hasText(sheet, "content: \"My Novel: {nonsense}\";"));
  EXPECT_TRUE(hasText(sheet, "content: \"p. \" counter(page) \" of \" counter(pages);"));
  EXPECT_TRUE(hasText(sheet, "string-set: bind-top-center \"My Novel: {nonsense}\";"));
  EXPECT_FALSE(hasText(sheet, "@top-left {\n"));
  EXPECT_TRUE(hasText(sheet, "@page :first {\n  @top-left { content: none; }"));
  EXPECT_TRUE(hasText(sheet, "hyphens: manual"));
  spec.headerFooter.style = LKBindHeaderFooterStyle::none;
  spec.headerFooter.firstPageBlank = false;
  spec.typography.justifyBody = true;
  sheet = LKBindCSSGenerator::css(spec, kSubject);
  EXPECT_FALSE(hasText(sheet, "@top-") || hasText(sheet, ":first {"));
  EXPECT_TRUE(hasText(sheet, "text-align: justify;\n  hyphens: auto;"));
  EXPECT_EQ(LKBindCSSGenerator::cssFontFamily("DejaVu Sans Mono"),
            "\"DejaVu Sans Mono\", Menlo, Consolas, monospace");
  EXPECT_EQ(LKBindCSSGenerator::cssFontFamily("Garamond"),
            "\"Garamond\", Georgia, 'Times New Roman', serif");
  EXPECT_TRUE(
      LKBindCSSGenerator::cssFontFamily("-apple-system").ends_with(", system-ui, sans-serif"));
}

TEST(BindSheet, HasThemes) {
  EXPECT_EQ(LKBindThemes::css("manuscript"), "");
  EXPECT_EQ(LKBindThemes::css("baroque"), "");
  EXPECT_EQ(LKBindThemes::displayName("baroque"), "Manuscript");
  for (const LKBindThemes::Descriptor& theme : LKBindThemes::all) {
    const std::string sheet = LKBindThemes::css(theme.id);
    EXPECT_EQ(sheet.empty(), theme.id == "manuscript") << theme.id;
    EXPECT_TRUE(sheet.empty() || hasText(sheet, "Theme: " + std::string(theme.displayName)));
    EXPECT_FALSE(hasText(sheet, "position:") || hasText(sheet, "@import")) << theme.id;
  }
}

// Every text that comes from outside the notes, with what could end the place that it stands in.
TEST(BindEngine, LetsNoTextLeaveItsPlace) {
  const std::string hostile = "\"'\\</style></title><script>x</script>&\n}*{color:red}";
  LKBindSpec spec;
  spec.frontMatter.titlePage.title = hostile + "{tag_name}{author}";
  spec.frontMatter.tableOfContents = {.include = true, .title = hostile};
  spec.typography.bodyFont = spec.typography.headingFont = spec.typography.codeFont = hostile;
  spec.sceneBreak.text = spec.theme = hostile;
  spec.headerFooter.headerLeft = hostile + "{author}";
  spec.headings.h1.prefix = hostile + "{title}";
  spec.headings.h1.suffix = hostile;
  const std::string page = LKBindEngine::bind(
      {{hostile, "x"}}, spec, {.tagName = hostile, .author = hostile, .locale = hostile});
  const auto count = [&](std::string_view part) {
    size_t found = 0;
    for (size_t at = page.find(part); at != std::string::npos; at = page.find(part, at + 1))
      ++found;
    return found;
  };
  EXPECT_EQ(count("<script"), 0U);
  EXPECT_EQ(count("</style>"), 1U);
  EXPECT_EQ(count("</title>"), 1U);
  EXPECT_EQ(count("\n}*{"), 0U);
  EXPECT_EQ(css::quoted("a\"\\\n<é"), "\"a\\22 \\5c \\a \\3c é\"");
}

TEST(BindEngine, IsLinear) {
  for (const char* unit :
       {"x[^1]\n\n[^1]: a\n\n", "<h1 class=\"bind-part\">\n\n", "```c\n\"\n```\n",
        "```mermaid\n```\n", "<sup class=\"footnote-ref\"><a href=\"#fn-", "a | b\n"}) {
    EXPECT_LE(test::growth(unit, 50'000,
                           [](const std::string& text) {
                             LKBindSpec spec;
                             spec.frontMatter.tableOfContents.include = true;
                             spec.filters.footnotePlacement = LKBindFootnotePlacement::endOfChapter;
                             pageOf({{"", text}, {"", "x[^1]\n[^1]: a"}}, spec);
                           }),
              8)
        << unit;
  }
}

}  // namespace
}  // namespace lk
