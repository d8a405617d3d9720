// Books as Word documents: blocks, runs, notes, pictures, the parts of the package and how they
// hang together.

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <map>
#include <set>
#include <string>

#include "LKCore/Base/Pattern.h"
#include "LKCore/DOCX/BodyBlocks.h"
#include "LKCore/DOCX/CodeRuns.h"
#include "LKCore/DOCX/DocumentRuns.h"
#include "LKCore/DOCX/LKBindDOCXBuilder.h"
#include "Support/ChangedVariable.h"
#include "Support/Growth.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"
#include "Support/XMLCheck.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

// --- Blocks and runs -----------------------------------------------------------------------------

std::string shown(const std::vector<DOCXListItem>& items) {
  std::string text;
  for (const DOCXListItem& item : items) {
    text.append(item.level, '+').append(item.number ? std::to_string(*item.number) : "*");
    text.append(item.text).append("/");
  }
  return text;
}

std::string shown(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text.append(line).append("/");
  return text;
}

struct ShownBlock {
  std::string operator()(const BodyBlocks::Prose& b) const { return "p:" + shown(b.lines); }
  std::string operator()(const BodyBlocks::BulletedList& b) const { return "ul:" + shown(b.items); }
  std::string operator()(const BodyBlocks::NumberedList& b) const { return "ol:" + shown(b.items); }
  std::string operator()(const BodyBlocks::BlockQuote& b) const { return "q:" + shown(b.lines); }
  std::string operator()(const BodyBlocks::SubHeading& b) const {
    return "h" + std::to_string(b.level) + ":" + b.text + "/";
  }
  std::string operator()(const BodyBlocks::FootnoteDefinition& b) const {
    return "n:" + b.label + "=" + shown(b.lines);
  }
  std::string operator()(const BodyBlocks::Table& b) const {
    std::string text = "t" + std::to_string(b.alignments.size()) + ":";
    for (const auto& row : b.rows) text.append(shown(row)).append("|");
    return text;
  }
  std::string operator()(const BodyBlocks::CodeBlock& b) const {
    return "c:" + b.language.value_or("") + ":" + shown(b.lines);
  }
  std::string operator()(const BodyBlocks::Image& b) const {
    return "i:" + b.image.alt + "=" + b.image.reference + "/";
  }
  std::string operator()(const BodyBlocks::SceneBreak&) const { return "***/"; }
};

std::string blocksOf(std::string_view body, LKBindParagraphStyle style) {
  std::string text;
  for (const BodyBlock& block : LKBindDOCXBuilder::parseBodyBlocks(body, style)) {
    text += std::visit(ShownBlock(), block);
  }
  return text;
}

TEST(DOCXBlocks, AreReadFromLines) {
  struct Row {
    std::string name, body, native, commonmark;  // empty: as native
  };
  for (const Row& row : std::vector<Row>{
           {"prose", "a\nb  \nc\n\nd", "p:a/b/c/d/", "p:a b<br>c/d/"},
           {"fence closed by more", "```c\nx\n````\ny", "c:c:x/p:y/", ""},
           {"fence not closed by fewer", "```\nx\n``\n```", "c::x/``/", ""},
           {"breaks and headings", "---\n* * *\n## A ##\n#### B\n#c", "***/***/h2:A/h4:B/p:#c/",
            ""},
           {"nested list", "1. a\n\t- b\n2. c\n   more\n- d", "ol:1a/+*b/2c more/ul:*d/", ""},
           {"loose list", "- a\n\n- b\n\nc", "ul:*a/*b/p:c/", ""},
           {"quote", "> a\n>\n>> b\nc", "q:a//b/p:c/", ""},
           {"note", "[^a]: x\n\ty\nz", "n:a=x/y/p:z/", ""},
           {"table", "| a | b\\|c |\n|---|:-:|\n| 1 |\n|2|3|4|\nx", "t2:a/b|c/|1/|2/3|4/|p:x/", ""},
           {"image", "![A|40](a.png)\n![b](c) d", "i:A=a.png/p:![b](c) d/", ""}}) {
    EXPECT_EQ(blocksOf(row.body, LKBindParagraphStyle::larkspireNative), row.native) << row.name;
    EXPECT_EQ(blocksOf(row.body, LKBindParagraphStyle::commonmark),
              row.commonmark.empty() ? row.native : row.commonmark)
        << row.name;
  }
}

TEST(DOCXBlocks, TakeLinearTime) {
  for (const std::string unit : {"- a\n\n", "> ", "| a ", "|\n|-\n", "[^a]: b\n", "![a]("}) {
    EXPECT_LE(test::growth(unit, 60'000,
                           [](const std::string& text) {
                             blocksOf(text, LKBindParagraphStyle::larkspireNative);
                           }),
              8)
        << unit;
  }
}

TEST(DOCXRuns, ShowTheDialect) {
  word::FootnotePool notes(LKBindFootnotePlacement::perPage);
  notes.define("1", {"x"});
  struct Row {
    std::string line, expected;  // what the runs must hold
  };
  for (const Row& row : std::vector<Row>{
           {"**a**", "<w:b/></w:rPr><w:t xml:space=\"preserve\">a<"},
           {"*a*", "<w:i/>"},
           {"~~a~~", "<w:strike/>"},
           {"==a== ::b::", "<w:highlight w:val=\"yellow\"/></w:rPr><w:t xml:space=\"preserve\">b<"},
           {"`==a==`", "Courier New\"/></w:rPr><w:t xml:space=\"preserve\">==a==<"},
           {"[[*A* b]]", ">*A* b<"},
           {"a<br>b", "<w:br/>"},
           {"H<sub>2</sub>", "\"subscript\"/></w:rPr><w:t xml:space=\"preserve\">2<"},
           {"<w:p> & \\*", ">&lt;w:p&gt; &amp; *<"},
           {"[a](https://b.example/?c=\"&d)", "HYPERLINK \"https://b.example/?c=%22&amp;d\""},
           {"[^2]", ">[^2]<"},
           {"a[^1]", "<w:footnoteReference w:id=\"2\"/>"},
           {"again [^1]", "NOTEREF _Note2 \\h </w:instrText>"}}) {
    std::string xml;
    word::appendMarkdownRuns(xml, row.line, {}, {&notes, nullptr});
    EXPECT_NE(xml.find(row.expected), std::string::npos) << row.line << "\n" << xml;
  }
  EXPECT_EQ(word::plainText("Night<br>*Day* `x`"), "Night Day x");
  std::string unsafe;
  word::appendMarkdownRuns(unsafe, "[a](javascript:x) [b](file:///etc/passwd)", {}, {});
  EXPECT_EQ(unsafe.find("HYPERLINK"), std::string::npos) << unsafe;
}

TEST(DOCXCode, KeepsItsColoursOverLines) {
  using LKBindSyntaxHighlighter::Token;
  using LKBindSyntaxHighlighter::TokenKind;
  const auto lines = word::splitTokensByLine(
      "ab\ncd\n\ne", {{{1, 4}, TokenKind::comment}, {{4, 5}, TokenKind::number}});
  EXPECT_EQ(lines, (std::vector<std::vector<Token>>{
                       {{{1, 2}, TokenKind::comment}},
                       {{{0, 1}, TokenKind::comment}, {{1, 2}, TokenKind::number}},
                       {},
                       {}}));
  for (const TokenKind kind :
       {TokenKind::keyword, TokenKind::string, TokenKind::comment, TokenKind::number}) {
    const std::string colour(LKBindSyntaxHighlighter::lightColour(kind));
    EXPECT_NE(LKBindSyntaxHighlighter::lightSheet().find("#" + colour), std::string_view::npos);
  }
}

// --- The package ---------------------------------------------------------------------------------

using Parts = std::map<std::string, std::string>;

Parts partsOf(const fs::path& document) {
  const test::Sandbox sandbox;
  const fs::path folder = sandbox.home() / "parts";
  const auto result =
      sandbox.run("python3", {"-m", "zipfile", "-e", document.string(), folder.string()});
  EXPECT_EQ(result.status, 0) << result.err;
  Parts parts;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    parts[entry.path().lexically_relative(folder).string()] = test::readWhole(entry.path());
  }
  return parts;
}

std::multiset<std::string> valuesOf(const std::string& xml, const std::string& pattern) {
  std::multiset<std::string> values;
  for (const auto& match : Pattern(pattern).findAll(xml)) values.emplace(match[1]->of(xml));
  return values;
}

void expectUnique(const std::string& xml, const std::string& pattern) {
  const auto values = valuesOf(xml, pattern);
  EXPECT_EQ(values.size(), std::set<std::string>(values.begin(), values.end()).size()) << pattern;
}

void expectWhole(const Parts& parts) {
  for (const auto& [name, bytes] : parts) {
    if (!name.ends_with(".xml") && !name.ends_with(".rels")) continue;
    EXPECT_EQ(test::xmlError(bytes), std::nullopt) << name;
    const std::string& types = parts.at("[Content_Types].xml");
    EXPECT_TRUE(types.find("\"/" + name + "\"") != std::string::npos || name.ends_with(".rels") ||
                name == "[Content_Types].xml")
        << name;
  }
  const std::string& document = parts.at("word/document.xml");
  const std::string& relationships = parts.at("word/_rels/document.xml.rels");
  const auto ids = valuesOf(relationships, "Id=\"([^\"]+)\"");
  for (const std::string& id : valuesOf(document, "r:(?:id|embed)=\"([^\"]+)\"")) {
    EXPECT_EQ(ids.count(id), 1U) << id;
  }
  for (const std::string& target : valuesOf(relationships, "Target=\"([^\"]+)\"")) {
    EXPECT_TRUE(parts.contains("word/" + target)) << target;
  }
  for (const std::string& style : valuesOf(document, "w:(?:p|r)Style w:val=\"([^\"]+)\"")) {
    EXPECT_NE(parts.at("word/styles.xml").find("styleId=\"" + style + "\""), std::string::npos);
  }
  for (const std::string& anchor : valuesOf(document, "w:anchor=\"([^\"]+)\"")) {
    EXPECT_NE(document.find("w:name=\"" + anchor + "\""), std::string::npos) << anchor;
  }
  expectUnique(document, "<w:bookmarkStart w:id=\"([^\"]+)\"");
  expectUnique(document, "<w:bookmarkStart [^>]*w:name=\"([^\"]+)\"");
  expectUnique(document, "<wp:docPr id=\"([^\"]+)\"");
  expectUnique(document, "noteReference w:id=\"([^\"]+)\"");
}

const std::string kGarden =
    "# Part: Spring\n\nA day.\n\n# Dawn\n\nText[^a] & <b>more</b>.\n\n## Rain\n\n1. a\n2. b\n\n"
    "| a | b |\n|---|--:|\n| 1 | 2 |\n\n```swift\nlet x = 1\n```\n\n![One](a.png)\n\n"
    "![Two](./a.png)\n\n![Gone](gone.png)\n\n![Out](out.png)\n\n![Shapes](s.svg)\n\n"
    "```mermaid\ngraph\n```\n\n[^a]: A note.\n\n# Dusk\n\nIt ends[^b].\n\n[^b]: Last.\n";

class DOCXFile : public testing::Test {
 protected:
  DOCXFile() {
    fs::create_directories(root_);
    const fs::path seeds = fs::path(LK_SOURCE_ROOT) / "Fuzz/corpus/picture_header";
    test::writeWhole(root_ / "a.png", test::readWhole(seeds / "dense.png"));
    test::writeWhole(folder_ / "secret.png", test::readWhole(seeds / "dense.png"));
    test::writeWhole(root_ / "s.svg", test::readWhole(seeds / "shapes.svg"));
    fs::create_symlink(folder_ / "secret.png", root_ / "out.png");
    spec_.frontMatter.tableOfContents.include = true;
  }

  Parts build() {
    warnings_.clear();
    LKBindDOCXBuilder::buildDOCX({{"Garden", kGarden}}, spec_, subject_, root_, {}, file(),
                                 [&](const std::string& text) { warnings_.push_back(text); });
    return partsOf(file());
  }

  fs::path file() const { return folder_ / "book.docx"; }

  test::TempFolder folder_;
  fs::path root_ = folder_ / "notes";
  LKBindSpec spec_;
  LKBindSubject subject_{"garden", "Ann \x01Lee", Day{2026, 3, 14}.utcMidnight(), "de_DE"};
  std::vector<std::string> warnings_;
};

TEST_F(DOCXFile, HasThePartsThatItsSpecAsksFor) {
  struct Row {
    LKBindHeaderFooterStyle running;
    LKBindFootnotePlacement notes;
    std::set<std::string> parts;
    std::string settings;
  };
  for (const Row& row :
       std::vector<Row>{{LKBindHeaderFooterStyle::publishedBook,
                         LKBindFootnotePlacement::perPage,
                         {"footer1", "footnotes"},
                         "<w:pos w:val=\"pageBottom\"/><w:numFmt w:val=\"decimal\"/>"},
                        {LKBindHeaderFooterStyle::agentSubmission,
                         LKBindFootnotePlacement::endOfBook,
                         {"header1", "endnotes"},
                         "<w:pos w:val=\"docEnd\"/><w:numFmt w:val=\"lowerRoman\"/>"},
                        {LKBindHeaderFooterStyle::none,
                         LKBindFootnotePlacement::endOfChapter,
                         {"endnotes"},
                         "<w:pos w:val=\"sectEnd\"/><w:numFmt w:val=\"decimal\"/>"}}) {
    spec_.headerFooter.style = row.running;
    spec_.filters.footnotePlacement = row.notes;
    const Parts parts = build();
    expectWhole(parts);
    for (const std::string name : {"header1", "footer1", "footnotes", "endnotes"}) {
      const bool isThere = parts.contains("word/" + name + ".xml");
      EXPECT_EQ(isThere, row.parts.contains(name)) << name;
      const bool isRelated =
          parts.at("word/_rels/document.xml.rels").find(name + ".xml") != std::string::npos;
      EXPECT_EQ(isRelated, isThere) << name;
    }
    EXPECT_NE(parts.at("word/settings.xml").find(row.settings), std::string::npos);
    const auto sections = valuesOf(parts.at("word/document.xml"), "(<w:sectPr>)");
    const bool isSectioned = row.notes == LKBindFootnotePlacement::endOfChapter;
    EXPECT_EQ(sections.size(), isSectioned ? 4U : 1U);
  }
}

TEST_F(DOCXFile, TellsItsTitleLanguageAndContents) {
  spec_.typography.bodyFont = "-apple-system";
  const Parts parts = build();
  EXPECT_NE(parts.at("docProps/core.xml").find("<dc:creator>Ann Lee</dc:creator>"),
            std::string::npos);
  EXPECT_NE(parts.at("docProps/core.xml").find(">2026-03-14T00:00:00Z<"), std::string::npos);
  EXPECT_NE(parts.at("word/styles.xml").find("w:ascii=\"Helvetica\""), std::string::npos);
  EXPECT_NE(parts.at("word/styles.xml").find("<w:lang w:val=\"de-DE\"/>"), std::string::npos);
  const std::string& document = parts.at("word/document.xml");
  EXPECT_EQ(valuesOf(document, "w:anchor=\"([^\"]+)\"").size(), 3U);  // a part, two chapters
  EXPECT_NE(document.find("w:fldCharType=\"begin\" w:dirty=\"true\"/>"), std::string::npos);
}

TEST_F(DOCXFile, EmbedsEachPictureOnceAndNothingFromOutside) {
  const Parts parts = build();
  const std::string& document = parts.at("word/document.xml");
  EXPECT_EQ(valuesOf(document, "r:embed=\"(rIdImg1)\"").size(), 2U);
  EXPECT_EQ(valuesOf(document, "(96DAC541-7B7A-43D3-8B79-37D633B846F1)").size(), 1U);
  for (const std::string alt : {"Gone", "Out", "(diagram — view source)"}) {
    EXPECT_NE(document.find(">" + alt + "<"), std::string::npos) << alt;
  }
  size_t media = 0;
  for (const auto& [name, bytes] : parts) media += name.starts_with("word/media/") ? 1 : 0;
  EXPECT_EQ(media, 3U);  // the points, the shapes and their companion
  EXPECT_EQ(warnings_.size(), 2U);
}

TEST_F(DOCXFile, IsTheSameInEveryTimeZone) {
  build();
  const std::string bytes = test::readWhole(file());
  const test::ChangedVariable zone("TZ", "Asia/Tokyo");
  build();
  EXPECT_EQ(test::readWhole(file()), bytes);
}

TEST_F(DOCXFile, SaysWhereItCouldNotBeWritten) {
  const fs::path missing = folder_ / "no/such/book.docx";
  try {
    LKBindDOCXBuilder::buildDOCX({{"A", "b"}}, spec_, subject_, root_, {}, missing);
    FAIL() << "it was written";
  } catch (const LKBindDOCXError& error) {
    EXPECT_TRUE(error.description().starts_with("DOCX write failed: " + missing.string()))
        << error.description();
  }
}

TEST_F(DOCXFile, IsOpenedByLibreOffice) {
  const test::Sandbox sandbox;
  if (sandbox.run("soffice", {"--version"}).status != 0) GTEST_SKIP() << "soffice is not installed";
  build();
  const auto result = sandbox.run("soffice", {"--headless", "--convert-to", "pdf", "--outdir",
                                              sandbox.home().string(), file().string()});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_TRUE(test::readWhole(sandbox.home() / "book.pdf").starts_with("%PDF-")) << result.err;
}

}  // namespace
}  // namespace lk
