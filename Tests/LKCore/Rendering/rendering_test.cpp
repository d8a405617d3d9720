// Each pass by a table, whole notes, and text that nobody writes.

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLPasses.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"
#include "LKCore/Rendering/SourcePasses.h"
#include "Support/Corpus.h"
#include "Support/Growth.h"

namespace lk::LKMarkdownToHTML {
namespace {

using AttachmentHandling = SharingOptions::AttachmentHandling;

const UUID kFirst = *UUID::parse("00000000-0000-4000-8000-000000000001");
const UUID kSecond = *UUID::parse("00000000-0000-4000-8000-000000000002");
const UUID kThird = *UUID::parse("00000000-0000-4000-8000-000000000003");

std::string rendered(std::string_view text,
                     const SharingOptions& options = SharingOptions::preview(),
                     const std::vector<UUID>& taskIDs = {}, bool interactive = false) {
  return htmlBody(text, options, taskIDs, interactive, false);
}

struct PassCase {
  const char* name;
  std::string text;
  std::string expected;
};

void expectAll(const std::vector<PassCase>& cases,
               const std::function<std::string(const std::string& text)>& pass) {
  for (const PassCase& row : cases) EXPECT_EQ(pass(row.text), row.expected) << row.name;
}

TEST(SourcePass, StripsFrontMatter) {
  expectAll({{"whole", "---\na: 1\n---\nb", "b"},
             {"crlf", "---\r\na: 1\r\n---\r\nb", "b"},
             {"unclosed", "---\na: 1\nb", "---\na: 1\nb"},
             {"closed by the end", "---\na: 1\n---", "---\na: 1\n---"},
             {"later", "x\n---\na\n---\nb", "x\n---\na\n---\nb"}},
            [](const std::string& text) { return std::string(stripFrontMatter(text)); });
}

TEST(SourcePass, ConvertsLeadingTabs) {
  expectAll({{"prose", "\t\ta\n\tb", "a\nb"},
             {"list", "\t- a\n\t\t- b\n\n\t\t\t2. c", "- a\n    - b\n\n        2. c"},
             {"fewer than the first", "\t\t- a\n\t+ b", "- a\n+ b"},
             {"prose ends a run", "- a\nx\n\t- b", "- a\nx\n- b"},
             {"fence", "```\n\ta\tb\n\t```\n\tc", "```\n    a\tb\n\t```\nc"},
             {"blank", "- a\n\t\n\t- b", "- a\n\t\n    - b"},
             {"footnote", "[^1]: a\n\t\tb\n\t- c\nx\n\ty", "[^1]: a\n\tb\n\t- c\nx\ny"},
             {"empty", "", ""}},
            convertLeadingTabs);
}

TEST(SourcePass, PutsBlankLinesWhereMarkdownNeedsThem) {
  expectAll({{"rule", "a\n---\nb\n* * *", "a\n\n---\nb\n\n* * *"},
             {"no rule", "a\n--\n-_-", "a\n--\n-_-"},
             {"quote ends", "> a\n> b\nc", "> a\n> b\n\nc"},
             {"table", "a\n| b |\n| c |", "a\n\n| b |\n| c |"},
             {"first heading alone", "a\n# b\nc\n## d", "a\n\n# b\nc\n## d"},
             {"list", "a\n- b\n* c\n2. d\ne\n+ f", "a\n\n- b\n* c\n2. d\ne\n+ f"},
             {"fence", "```\na\n# b\n```\n# c", "```\na\n# b\n```\n\n# c"},
             {"footnote", "[^1]: a\n\t- b", "[^1]: a\n\t- b"},
             {"one line", "# a", "# a"}},
            ensureBlankLineSeparators);
}

TEST(SourcePass, RemovesCommentsAndPageTags) {
  expectAll({{"two", "a<!-- b\nc -->d<!---->e", "ade"}, {"open", "a<!-- b", "a<!-- b"}},
            stripComments);
  expectAll({{"case", "<SCRIPT src=x></Script>", "&lt;SCRIPT src=x>&lt;/Script>"},
             {"whole names", "<heading><div><linkage>", "<heading><div><linkage>"}},
            neutralisePageTags);
}

TEST(SourcePass, MakesAdmonitions) {
  const std::string open =
      "\n<div class=\"lk-admonition lk-admonition-tip\">\n"
      "<div class=\"lk-admonition-title\">Tip</div>\n";
  expectAll({{"bare", "> [!TIP]\nx", open + "</div>\n\nx"},
             {"paragraphs", "a\n>[!tip] One\n> **two**\n>\n> #x `y`",
              "a\n" + open +
                  "<div class=\"lk-admonition-body\">\n<p>One<br><strong>two</strong></p>\n"
                  "<p><span class=\"lk-tag\">#x</span> <code>y</code></p>\n</div>\n</div>\n"},
             {"one behind another", "> [!TIP]\n> [!TIP]", open + "</div>\n\n" + open + "</div>\n"},
             {"unknown", "> [!FUN] a", "> [!FUN] a"}},
            preprocessAdmonitions);
}

TEST(SourcePass, MarksWhatTheDialectAddsToALine) {
  expectAll(
      {{"link", "[[A B]]!", R"(<a class="backlink" href="larkspire://open?title=A B">A B</a>!)"},
       {"no link", "[[]] [[a] [[b", "[[]] [[a] [[b"},
       {"tags", "#a/b-c x#d #1 `#e`", R"(<span class="lk-tag">#a/b-c</span> x#d #1 `#e`)"},
       {"tag in any script", "#aé", R"(<span class="lk-tag">#aé</span>)"},
       {"date", "@20240131 a@20240131", R"(<span class="lk-dateref">@20240131</span> a@20240131)"},
       {"metadata",
        "due:x a due:1-2 id:", R"(due:x a <span class="lk-taskmeta">due:1-2</span> id:)"},
       {"highlights", "==a== ::b c:: =d=", "<mark>a</mark> <mark>b c</mark> =d="}},
      [](const std::string& line) { return preprocessLine(line, SharingOptions::preview()); });
  expectAll(
      {{"sharing", "a [[B]] #c @20240131 due:x",
        "a B  <span class=\"lk-dateref\">@20240131</span> "}},
      [](const std::string& line) { return preprocessLine(line, SharingOptions::sharing()); });
  SharingOptions options;
  options.backlinkClickable = false;
  EXPECT_EQ(preprocessLine("[[A]]", options), R"(<span class="backlink">A</span>)");
  options.backlinkResolver = [](std::string_view title) {
    return title == "A" ? std::optional<std::string>("7") : std::nullopt;
  };
  EXPECT_EQ(preprocessLine("[[A]] [[B]]", options),
            R"(<a class="backlink" href="larkspire://open?id=7">A</a> B)");
}

TEST(SourcePass, NumbersFootnotes) {
  const std::string open = "\n\n<section class=\"footnotes\">\n<hr>\n<ol>\n";
  const std::string close = "</ol>\n</section>\n";
  const auto reference = [](const std::string& label, int number) {
    return "<sup class=\"footnote-ref\"><a href=\"#fn-" + label + "\" id=\"fnref-" + label + "\">" +
           std::to_string(number) + "</a></sup>";
  };
  const auto item = [](const std::string& label, const std::string& content) {
    return "<li id=\"fn-" + label + "\"><p>" + content + " <a href=\"#fnref-" + label +
           "\" class=\"footnote-backref\">↩</a></p></li>\n";
  };
  expectAll({{"by definition", "a[^b] [^a] [^x]\n[^a]: *One*\n\t#two\n[^b]: Two",
              "a" + reference("b", 2) + " " + reference("a", 1) + " [^x]" + open +
                  item("a", "<em>One</em><br>\n<span class=\"lk-tag\">#two</span>") +
                  item("b", "Two") + close},
             {"first wins", "[^1]\n[^1]: a\n[^1]: b\n\tc",
              reference("1", 1) + open + item("1", "a") + close},
             {"none", "a[^1]", "a[^1]"},
             {"fence", "[^1]\n[^1]: a\n```\n[^1]\n[^2]: b\n```",
              reference("1", 1) + "\n```\n[^1]\n[^2]: b\n```" + open + item("1", "a") + close},
             {"label", "[^\"<&]\n[^\"<&]: a",
              reference("&quot;&lt;&amp;", 1) + open + item("&quot;&lt;&amp;", "a") + close}},
            preprocessFootnotes);
}

TEST(HTMLPass, BindsTaskIDs) {
  const std::string id = kFirst.text();
  const std::string marker = "<!--lkid:" + id + "-->";
  expectAll({{"still", "<input type=\"checkbox\" disabled=\"\" /> " + marker + "x",
              "<input type=\"checkbox\" disabled=\"\" data-task-id=\"" + id + "\" /> x"},
             {"raw", "<input type=\"checkbox\" class=\"a\" disabled>" + marker,
              "<input type=\"checkbox\" class=\"a\" disabled data-task-id=\"" + id + "\">"},
             {"elsewhere", "<p>a" + marker + "b&lt;!--lkid:" + id + "--&gt;</p>", "<p>ab</p>"}},
            [](const std::string& html) { return bindTaskIDs(html, Checkboxes::still); });
  EXPECT_EQ(bindTaskIDs("<input type=\"checkbox\" checked=\"\" disabled=\"\" /> " + marker,
                        Checkboxes::interactive),
            "<input type=\"checkbox\" checked=\"\" data-task-id=\"" + id + "\" /> ");
}

TEST(HTMLPass, SizesImages) {
  expectAll({{"width", R"(<img src="a.png#400" alt="a/b" />)",
              R"(<img src="a.png" alt="a/b" style="max-width:400px;max-height:none;" />)"},
             {"both", R"(<img src="a.png#4x5" alt="" />)",
              R"(<img src="a.png" alt="" style="max-width:4px;max-height:5px;" />)"},
             {"hidden", R"(<img src="a.png#hide" alt="x" />)", R"(<img src="a.png" alt="x" />)"},
             {"other fragment", R"(<img src="a.svg#layer" alt="x" />)",
              R"(<img src="a.svg#layer" alt="x" />)"},
             {"web", R"(<img src="https://a.b/c#400" />)", R"(<img src="https://a.b/c#400" />)"}},
            applySourceFragments);
  expectAll(
      {{"cell", R"(<td><img src="a" alt="b|40x30" /></td><img alt="b|40" />)",
        R"(<td><img src="a" alt="b|40x30" style="max-width:40px;max-height:30px;height:auto;" /></td><img alt="b|40" />)"},
       {"no size", R"(<th><img src="a" alt="b" /></th><thead>)",
        R"(<th><img src="a" alt="b" /></th><thead>)"}},
      applyTableImageSizes);
  expectAll({{"peeled", R"(<img src="a" alt="b|c|hide|40" />)", R"(<img src="a" alt="b|c" />)"},
             {"kept", R"(<img src="a" alt="b" />)", R"(<img src="a" alt="b" />)"}},
            stripImageSizeQualifiers);
}

TEST(HTMLPass, MakesLinksOfWhatIsNoImage) {
  const std::vector<PassCase> always = {
      {"image", R"(<img src="a.PNG" alt="x" />)", R"(<img src="a.PNG" alt="x" />)"},
      {"web", R"(<img src="http://a/b.pdf" />)", R"(<img src="http://a/b.pdf" />)"},
      {"document", R"(<img src="d/a%20b.pdf#2" alt="" />)",
       R"(<a href="d/a%20b.pdf#2">a b.pdf</a>)"},
      {"name from outside", R"(<img src="%3Cb%3E&#x27;.zip" alt="" />)",
       R"(<a href="%3Cb%3E&#x27;.zip">&lt;b&gt;&#39;.zip</a>)"}};
  const auto demote = [](Attachments types) {
    return [types](const std::string& html) { return demoteNonImageImages(html, types); };
  };
  expectAll(always, demote(Attachments::known));
  expectAll(always, demote(Attachments::any));
  const std::string other = R"(<img src="a.blend" alt="x" />)";
  EXPECT_EQ(demoteNonImageImages(other, Attachments::known), other);
  EXPECT_EQ(demoteNonImageImages(other, Attachments::any),
            R"(<a href="a.blend" data-lk-attachment="1">x</a>)");
}

TEST(HTMLPass, RendersAttachmentLinks) {
  struct Row {
    std::string html, chip, strip, plain;
  };
  const std::vector<Row> rows = {
      {R"(<p><a href="a.zip#300">x</a></p>)",
       R"(<p><a class="lk-attachment lk-attachment-card" href="a.zip"><span class="lk-attachment-badge">ZIP</span><span class="lk-attachment-name">x</span></a></p>)",
       "", R"(<p><a href="a.zip">x</a></p>)"},
      {R"(<p>s <a href="a.pdf#p" title="t">x</a></p>)",
       R"(<p>s <a class="lk-attachment" href="a.pdf#p"><span class="lk-attachment-badge">PDF</span><span class="lk-attachment-name">x</span></a></p>)",
       "<p>s x</p>", R"(<p>s <a href="a.pdf#p">x</a></p>)"},
      {R"(<a href="b" data-lk-attachment="1">x</a>)",
       R"(<a class="lk-attachment" href="b"><span class="lk-attachment-badge">FILE</span><span class="lk-attachment-name">x</span></a>)",
       "x", R"(<a href="b">x</a>)"},
      // Two links in a paragraph are no card.
      {R"(<p><a href="a.pdf">x</a> s <a href="b.md">y</a></p>)",
       R"(<p><a class="lk-attachment" href="a.pdf"><span class="lk-attachment-badge">PDF</span><span class="lk-attachment-name">x</span></a> s <a href="b.md">y</a></p>)",
       R"(<p>x s <a href="b.md">y</a></p>)",
       R"(<p><a href="a.pdf">x</a> s <a href="b.md">y</a></p>)"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(renderAttachmentLinks(row.html, AttachmentHandling::chip), row.chip);
    EXPECT_EQ(renderAttachmentLinks(row.html, AttachmentHandling::strip), row.strip);
    EXPECT_EQ(renderAttachmentLinks(row.html, AttachmentHandling::keepLinks), row.plain);
  }
  for (const char* const other :
       {R"(<a href="http://a/b.pdf">x</a>)", R"(<a href="b.md#data-lk-attachment">x</a>)",
        R"(<a href="a.pdf">x)"}) {
    EXPECT_EQ(renderAttachmentLinks(other, AttachmentHandling::strip), other);
  }
}

TEST(HTMLPass, CaptionsFiguresAndBlocksTheWeb) {
  const std::string image = R"(<img src="https://a/b.png" alt="c" />)";
  const std::string figure = promoteCaptionedFigures("<p>" + image + "</p>");
  EXPECT_EQ(figure, "<figure class=\"lk-figure\">" + image + "<figcaption>c</figcaption></figure>");
  for (const std::string& other :
       {"<p>a " + image + "</p>", std::string(R"(<p><img src="a" alt="" /></p>)")}) {
    EXPECT_EQ(promoteCaptionedFigures(other), other);
  }
  const std::string link = R"(<a href="larkspire-blocked:image" class="lk-web-image-blocked">)";
  EXPECT_EQ(blockWebImages(figure),
            "<figure class=\"lk-figure\">" + link +
                "Web image not loaded</a><figcaption>c</figcaption></figure>");
  EXPECT_EQ(blockWebImages(R"(<img src="HTTP://a/b.png" alt="c" />)"), link + "c</a>");
  EXPECT_EQ(blockWebImages(image + R"(<img src="a.png" alt="" />)"),
            link + R"(c</a><img src="a.png" alt="" />)");
}

TEST(HTMLBody, RendersWholeNotes) {
  expectAll(
      {{"order", "---\nid: 1\n---\nA\n# B\nC\n---\n", "<p>A</p>\n<h1>B</h1>\n<p>C</p>\n<hr />\n"},
       {"raw html", "<script>x</script> <b>y</b>",
        "<p>&lt;script&gt;x&lt;/script&gt; <b>y</b></p>\n"},
       {"page tags in code", "`<title>`\n\n```\n</script>\n```",
        "<p><code>&lt;title&gt;</code></p>\n<pre><code>&lt;/script&gt;\n</code></pre>\n"},
       {"states", "- [/] a\n- [-] b\n- [x] c",
        "<ul>\n<li><input type=\"checkbox\" class=\"lk-inprogress\" disabled> a</li>\n"
        "<li><input type=\"checkbox\" checked class=\"lk-cancelled\" disabled> b</li>\n"
        "<li><input type=\"checkbox\" checked=\"\" disabled=\"\" /> c</li>\n</ul>\n"},
       {"states in a fence", "```\n- [/] a\n```", "<pre><code>- [/] a\n</code></pre>\n"},
       {"attachment alone", "![x](file.zip)", ""},
       {"figure", "![A|300](a.png)",
        "<figure class=\"lk-figure\"><img src=\"a.png\" alt=\"A\" "
        "/><figcaption>A</figcaption></figure>\n"}},
      [](const std::string& text) {
        std::string html = rendered(text);
        return html == "\n" ? "" : html;
      });
  EXPECT_EQ(htmlBody("a\nb", SharingOptions::preview(), {}, false, true), "<p>a<br />\nb</p>\n");
}

TEST(HTMLBody, GivesEachTaskItsIdentifier) {
  const auto box = [](const std::string& attributes, const UUID& id) {
    return "<input type=\"checkbox\"" + attributes + " data-task-id=\"" + id.text() + "\"";
  };
  EXPECT_EQ(
      rendered("- [ ] #a\n- [/] b\n- [x] c", SharingOptions::preview(), {kFirst, kSecond}, true),
      "<ul>\n<li>" + box("", kFirst) + " /> <span class=\"lk-tag\">#a</span></li>\n<li>" +
          box(" class=\"lk-inprogress\"", kSecond) + "> b</li>\n" +
          "<li><input type=\"checkbox\" checked=\"\" disabled=\"\" /> c</li>\n</ul>\n");
  // Lines that are dropped still count.
  SharingOptions lines = SharingOptions::preview();
  lines.taskMode = TaskExportMode::stripLines;
  EXPECT_EQ(rendered("a\n- [ ] b\n- [x] c\n- d", lines, {kFirst, kSecond}), rendered("a\n\n- d"));
  // A marker of the note's own binds nothing.
  const std::string forged = "* [ ] <!--lkid:" + kThird.text() + "-->x\n```\n- [ ] y\n```\n- [ ] z";
  const std::string html = rendered(forged, SharingOptions::preview(), {kFirst, kSecond});
  EXPECT_EQ(html.find("data-task-id=\"" + kThird.text()), std::string::npos) << html;
  EXPECT_EQ(html.find(kSecond.text()), std::string::npos) << html;
  EXPECT_NE(html.find(box(" disabled=\"\"", kFirst) + " /> z"), std::string::npos) << html;
}

TEST(HTMLBody, ShowsATitleAsNothingButText) {
  const std::vector<std::pair<std::string, std::string>> titles = {
      {"R&D", "R&amp;D"},
      {"\" onclick=\"x", "&quot; onclick&#61;&quot;x"},
      {"a><b>", "a&gt;&lt;b&gt;"},
      {"x #y @20240131 due:z", "x &#35;y &#64;20240131 due&#58;z"},
      {"N#1", "N#1"},
      {"<title>", "&lt;title&gt;"},
      {"*a* `b` ~~c~~", "&#42;a&#42; &#96;b&#96; &#126;&#126;c&#126;&#126;"},
      {"a\r\rb", "a&#13;&#13;b"}};
  for (const auto& row : titles) {
    const std::string& title = row.first;
    const std::string& inHTML = row.second;
    const std::string link =
        "<a class=\"backlink\" href=\"larkspire://open?title=" + inHTML + "\">";
    for (const char* const frame : {"", "> [!NOTE]\n> ", "[^1]\n\n[^1]: "}) {
      const std::string html = rendered(std::string(frame) + "[[" + title + "]]");
      EXPECT_NE(html.find(link), std::string::npos) << title << "\n" << html;
    }
    SharingOptions resolving;
    resolving.backlinkResolver = [&](std::string_view) { return title; };
    EXPECT_NE(rendered("[[A]]", resolving).find("?id=" + inHTML + "\">A</a>"), std::string::npos)
        << title;
  }
}

TEST(HTMLBody, MakesNoPageTagOfPieces) {
  const SharingOptions& sharing = SharingOptions::sharing();
  for (const char* text :
       {"<[[script]]>x", "<div>\n<<a href=\"a.pdf\">script</a>>x", "![](%3Cscript%3E.zip)",
        "~~~\n```\n~~~\n<script>", "`a\n<script>",
        "<div>\n<&lt;!--lkid:00000000-0000-4000-8000-000000000001--&gt;script>"}) {
    const std::string html = rendered(text, sharing, {kFirst});
    EXPECT_EQ(html.find("<script"), std::string::npos) << html;
  }
}

TEST(HTMLBody, NamesTheTitlesItLinksTo) {
  SharingOptions options;
  options.stripComments = true;
  EXPECT_EQ(wikiLinkTargets(
                "---\na: [[F]]\n---\n[[A]] [[B C]]\n```\n[[D]]\n```\n<!-- [[E]] --> [[]]", options),
            (std::set<std::string>{"A", "B C", "D"}));
}

TEST(HTMLBody, TakesTimeLinearInTheText) {
  SharingOptions sharing = SharingOptions::sharing();
  sharing.attachmentHandling = AttachmentHandling::chip;
  for (const char* unit : {"[",     "*",    "|",          "<",
                           "`",     ":",    "=",          "[[",
                           "[^",    "[^a",  "![](",       "==a",
                           "<img ", "<td>", "<a href=\"", "<input type=\"checkbox\"",
                           "> ",    "#a ",  "- [ ] a\n",  "> [!TIP]\n"}) {
    const double times = test::growth(unit, 25'000, [&](const std::string& text) {
      rendered(text, sharing, {kFirst});
      rendered("<div>\n" + text, SharingOptions::preview(), {kFirst});
    });
    EXPECT_LE(times, 8) << unit;
  }
  for (const char c : std::string("[*|<`:="))
    EXPECT_FALSE(rendered("a " + std::string(100'000, c)).empty());
}

TEST(HTMLBody, RendersTheCorpus) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  test::forEachNote([](const std::filesystem::path& /*file*/, const std::string& text) {
    const std::string html = rendered(text, SharingOptions::preview(), {kFirst});
    EXPECT_TRUE(text::isValidUTF8(html));
    EXPECT_EQ(html.find("<!--lkid:"), std::string::npos) << html;
    EXPECT_EQ(html.find("<script"), std::string::npos);
    EXPECT_EQ(html, rendered(text, SharingOptions::preview(), {kFirst}));
  });
}

}  // namespace
}  // namespace lk::LKMarkdownToHTML
