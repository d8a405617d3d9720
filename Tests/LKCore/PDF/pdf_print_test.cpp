// A book from its HTML to pages: with an engine of the test's own, and with those that are installed.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Modules/PDFPages.h"
#include "LKCore/PDF/BookPrinting.h"
#include "LKCore/PDF/LKBindPDFOutline.h"
#include "LKCore/PDF/PrintedPage.h"
#include "Support/ChangedVariable.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

bool pdfHasText(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

PrintEngine::Deadline pdfDeadline(int seconds) {
  return std::chrono::steady_clock::now() + std::chrono::seconds(seconds);
}

TEST(PDFPrintedPage, LeavesOutWhatLeadsAway) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"<img src=\"a/b.png\">", "<img src=\"larkspire-asset:///a/b.png\">"},
      {"<img src=\"https://e.com/b.png\">", "<img src=\"https://e.com/b.png\">"},
      {"<a href=\"https://e.com/?a>b\">x</a>", "<a href=\"https://e.com/?a>b\">x</a>"},
      {"<a href=\"#n\" title='t'>x</a>", "<a href=\"#n\" title='t'>x</a>"},
      {"<a href=\"file:///etc/passwd\" id=\"k\">x</a>", "<a id=\"k\">x</a>"},
      {"<A HREF = javascript:alert(1) id=k>x</A>", "<A id=k>x</A>"},
      {"<a\nhref='java&#115;cript:x'>x</a>", "<a>x</a>"},
      {"<svg><a xlink:href=\"file:///x\">x</a></svg>", "<svg><a>x</a></svg>"},
      {"<a title=\"href=\" href=\"/etc\">x</a>", "<a title=\"href=\">x</a>"},
      {"<base href=\"file:///\">x<meta http-equiv=refresh content=0>", "x"},
      {"<p style=\"position:fixed!important\">x</p>", "<p>x</p>"},
      {"<p style=\"color:red\">a href=file: < b</p>",
       "<p style=\"color:red\">a href=file: < b</p>"},
      {"x <a href=\"never", "x <a href=\"never"},
  };
  for (const auto& [html, expected] : rows) {
    const std::string made = PrintedPage::document("<html><body>" + html + "</body>", "en").html;
    EXPECT_TRUE(made.starts_with("<html lang=\"en\"><body>" + expected)) << made;
  }
}

TEST(PDFPrintedPage, NamesEveryHeading) {
  const auto document = PrintedPage::document(
      "<nav class=\"bind-toc\"><h1 class=\"bind-toc-title\">C</h1><span class=\"toc-page\"></span>"
      "</nav><h1 id=\"bind-toc-chapter-1\">A</h1><h2 id=\"own\">B</h2><h2 id=\"own\">B</h2>",
      "en");
  ASSERT_EQ(document.headings.size(), 4U);
  EXPECT_EQ(document.headings[1].identifier, "bind-toc-chapter-1");
  EXPECT_EQ(document.headings[2].identifier, "own");
  EXPECT_EQ(document.headings[3].identifier, "lk-place-0-4");
  EXPECT_TRUE(pdfHasText(document.html, "<h2 id=\"lk-place-0-4\" id=\"own\">"));
  EXPECT_TRUE(pdfHasText(document.html, "<span class=\"toc-page\" id=\"lk-place-0-0\">"));
  EXPECT_TRUE(pdfHasText(document.html, "<a href=\"#own\">"));
}

// A PDF of such lines, with the names of pages, counted from 0.
std::string handMadePDF(const std::vector<std::string>& pages,
                        const std::vector<std::pair<std::string, size_t>>& names) {
  std::vector<std::string> objects(3);
  std::string kids;
  const auto pageObject = [](size_t page) { return std::to_string(4 + 2 * page) + " 0 R"; };
  for (size_t i = 0; i < pages.size(); ++i) {
    kids += pageObject(i) + " ";
    std::string text = "BT /F 12 Tf 20 TL 80 400 Td";
    for (const std::string_view line : text::split(pages[i], '\n')) {
      text.append(" (").append(line).append(") Tj T*");
    }
    text.append(" ET");
    objects.push_back(
        "<</Type/Page/Parent 2 0 R/MediaBox[0 0 612 792]/Resources<</Font<</F 3 0 R>>"
        ">>/Contents " +
        std::to_string(5 + 2 * i) + " 0 R>>");
    objects.push_back("<</Length " + std::to_string(text.size()) + ">>stream\n" + text +
                      "\nendstream");
  }
  std::string dests;
  for (const auto& [name, page] : names) {
    dests += "/" + name + "[" + pageObject(page) + "/XYZ 80 500 null]";
  }
  objects[0] = "<</Type/Catalog/Pages 2 0 R/Dests<<" + dests + ">>>>";
  objects[1] = "<</Type/Pages/Kids[" + kids + "]/Count " + std::to_string(pages.size()) + ">>";
  objects[2] = "<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>";
  std::string pdf = "%PDF-1.4\n";
  std::string table = "0000000000 65535 f \n";
  for (size_t i = 0; i < objects.size(); ++i) {
    const std::string offset = std::to_string(pdf.size());
    table += std::string(10 - offset.size(), '0') + offset + " 00000 n \n";
    pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1);
  return pdf + "xref\n0 " + size + "\n" + table + "trailer<</Size " + size +
         "/Root 1 0 R>>\nstartxref\n" + std::to_string(pdf.size()) + "\n%%EOF\n";
}

// Prints a title, contents and two chapters; the contents take one page more once they have numbers,
// if told so.
class FakePrintEngine : public PrintEngine {
 public:
  explicit FakePrintEngine(bool grows) : grows_(grows) {}

  std::string print(const PrintJob& job, const std::string& pages, Deadline) override {
    asked.push_back(pages);
    const auto number = [&](const std::string& chapter) {
      const std::string rule =
          "data-target-id=\"bind-toc-chapter-" + chapter + "\"]::after { content: \"";
      const size_t start = job.html.find(rule);
      if (start == std::string::npos) return std::string();
      const size_t from = start + rule.size();
      return job.html.substr(from, job.html.find('"', from) - from);
    };
    const size_t contents = grows_ && !number("1").empty() ? 2 : 1;
    std::vector<std::string> lines = {"Title", "Contents One " + number("1")};
    if (contents == 2) lines.push_back("Two " + number("2"));
    std::vector<std::pair<std::string, size_t>> names = {{"lk-place-0-1", 1},
                                                         {"lk-place-0-0", contents}};
    if (!pages.empty()) {
      const size_t wanted = pages == "2-2" ? 1 : 2;
      lines = {lines.begin() + 1, lines.begin() + 1 + static_cast<std::ptrdiff_t>(wanted)};
      names = {{"lk-place-0-1", 0}};
      if (wanted >= contents) names.emplace_back("lk-place-0-0", contents - 1);
      return handMadePDF(lines, names);
    }
    for (const char* line : {"Same", "words", "Same"}) lines.emplace_back(line);
    names.emplace_back("bind-toc-chapter-1", contents + 1);
    names.emplace_back("bind-toc-chapter-2", contents + 3);
    return handMadePDF(lines, names);
  }
  bool fillsPageNumbers() const override { return false; }

  std::vector<std::string> asked;

 private:
  bool grows_;
};

// The words row by row, whatever their order in the file.
std::string wordsOfPage(std::string_view pdf, size_t page) {
  std::vector<PDFWord> words = pdfPages(pdf).at(page).words;
  std::ranges::stable_sort(words, {}, &PDFWord::bottom);
  std::string text;
  for (auto row = words.begin(); row != words.end();) {
    const double bottom = row->bottom + 3;
    const auto end =
        std::find_if(row, words.end(), [&](const PDFWord& word) { return word.bottom > bottom; });
    std::ranges::sort(row, end, {}, &PDFWord::left);
    for (; row != end; ++row) text.append(text.empty() ? "" : " ").append(row->text);
  }
  return text;
}

constexpr std::string_view kHandMadeBook =
    "<html><head></head><body><nav class=\"bind-toc\"><h1 class=\"bind-toc-title\">Contents</h1>"
    "<a href=\"#bind-toc-chapter-1\">Same</a><span class=\"toc-page\" "
    "data-target-id=\"bind-toc-chapter-1\"></span><a href=\"#bind-toc-chapter-2\">Same</a>"
    "<span class=\"toc-page\" data-target-id=\"bind-toc-chapter-2\"></span></nav>"
    "<h1 class=\"bind-chapter\" id=\"bind-toc-chapter-1\">Same</h1>"
    "<h1 class=\"bind-chapter\" id=\"bind-toc-chapter-2\">Same</h1></body></html>";

TEST(PDFPrinting, SetsNumbersUntilTheContentsKeepTheirPages) {
  LKBindSpec through;  // front matter and book counted in one
  through.headerFooter.style = LKBindHeaderFooterStyle::none;
  LKBindSpec roman;
  roman.headerFooter.pageNumberStyle = LKBindPageNumberStyle::romanUpper;
  const auto print = [](const LKBindSpec& spec, FakePrintEngine& engine) {
    return printedBook(kHandMadeBook, spec, {.tagName = "b", .locale = "C"}, "/", engine,
                       pdfDeadline(30));
  };
  FakePrintEngine steady(false);
  EXPECT_EQ(wordsOfPage(print(through, steady), 1), "Contents One 3");
  EXPECT_EQ(steady.asked, (std::vector<std::string>{"", "2-2"}));
  FakePrintEngine apart(false);
  EXPECT_EQ(wordsOfPage(print(roman, apart), 1), "Contents One I");
  FakePrintEngine growing(true);
  const std::string grown = print(through, growing);
  EXPECT_EQ(growing.asked, (std::vector<std::string>{"", "2-2", "", "2-3"}));
  EXPECT_EQ(wordsOfPage(grown, 1) + "/" + wordsOfPage(grown, 2), "Contents One 4/Two 6");
  EXPECT_EQ(pdfPageCount(grown), 6U);
  try {
    printedBook(kHandMadeBook, through, {}, "/", steady, pdfDeadline(-1));
    ADD_FAILURE() << "printed past the deadline";
  } catch (const LKBindPDFError& error) {
    EXPECT_EQ(error.kind(), LKBindPDFError::Kind::timeout);
  }
}

TEST(PDFPrinting, FindsHeadingsWithoutNames) {
  const std::string pdf =
      handMadePDF({"Contents\nSame 3\nSame 5", "Same\nwords", "Same in words\nSame"}, {});
  const LKBindPDFOutline::Heading missing = {"Missing", 1};
  const auto places = LKBindPDFOutline::locations(
      pdf,
      {{"Contents", 1, "", true}, {"Same", 1, "bind-toc-1"}, {"Same", 1, "bind-toc-2"}, missing});
  std::string found;
  for (const auto& place : places) found += place ? std::to_string(place->page) : "-";
  EXPECT_EQ(found, "012-");
  EXPECT_EQ(LKBindPDFOutline::addingOutline(pdf, {missing}), pdf);
  EXPECT_NE(LKBindPDFOutline::addingOutline(pdf, {{"Same", 1}}), pdf);
}

// --- Engines that are installed ------------------------------------------------------------------

// The pages that the outline's entries name, from 1, in their order.
std::vector<int> outlinePages(const test::Sandbox& sandbox, const std::string& file) {
  const std::string json = sandbox.run("qpdf", {"--json", "--json-key=outlines", file}).out;
  const std::string key = "\"destpageposfrom1\": ";
  std::vector<int> pages;
  for (size_t at = json.find(key); at != std::string::npos; at = json.find(key, at + 1)) {
    pages.push_back(std::atoi(json.c_str() + at + key.size()));
  }
  return pages;
}

std::string realBook(const LKBindSpec& spec, const std::string& last) {
  std::string prose;
  for (int i = 0; i < 40; ++i) prose += "The lamp burned low over the harbour wall that evening.\n";
  return LKBindEngine::bind({{"Title", "# Lamp\n\nAnn Lee", LKBindNoteRole::titlePage},
                             {"Dawn", prose},
                             {"Echo", prose},
                             {"Echo", "## Under it\n" + last}},
                            spec, {.tagName = "lamp", .author = "Ann Lee", .locale = "en_US"});
}

// Each fact a reader, a shop or a printer looks at.
void printsGoodBook(std::unique_ptr<PrintEngine> (*make)()) {
  const std::unique_ptr<PrintEngine> engine = make();
  if (!engine) GTEST_SKIP() << "the engine is not installed";
  LKBindSpec spec = LKBindSpec::iOSPaperback();
  spec.frontMatter.tableOfContents.include = true;
  spec.headings.h1.prefix = "{title}";
  const std::string wild =
      "<div style=\"position:absolute;left:3000px;width:2000px\">far</div>\n\n|a|\n|-|\n|" +
      std::string(900, 'x') +
      "|\n\n<p style=\"width:3000px\">wide</p>\n\n"
      "[f](file:///etc/passwd) <a href=\"javascript:x\">j</a>\n";
  const auto print = [&](const std::string& last) {
    return printedBook(realBook(spec, last), spec, {.tagName = "lamp", .author = "Ann Lee"}, "/",
                       *engine, pdfDeadline(60));
  };
  const std::string pdf = print(wild);
  const std::vector<PDFPage> pages = pdfPages(pdf);
  const auto places = pdfDestinations(pdf);
  ASSERT_GE(pages.size(), 7U);
  EXPECT_NEAR(pages[0].width, 432, 0.5);
  EXPECT_NEAR(pages[0].height, 648, 0.5);
  EXPECT_EQ(wordsOfPage(pdf, 0), "Lamp Ann Lee");  // no running head, and no empty page behind it

  std::string contents = "Contents";
  std::vector<int> expected = {1, 2};
  for (const auto& [id, title] : {std::pair{"bind-toc-chapter-1", "Dawn"},
                                  {"bind-toc-chapter-2", "Echo"},
                                  {"bind-toc-chapter-3", "Echo"}}) {
    ASSERT_TRUE(places.contains(id));
    const size_t page = places.find(id)->second.page;
    expected.push_back(static_cast<int>(page) + 1);
    contents += " " + std::string(title) + " " + std::to_string(page - 1);
    EXPECT_TRUE(pdfHasText(wordsOfPage(pdf, page), title));
    EXPECT_TRUE(pdfHasText(wordsOfPage(pdf, page), std::to_string(page - 1)));
  }
  expected.push_back(expected.back());
  EXPECT_TRUE(wordsOfPage(pdf, 1).ends_with(contents)) << wordsOfPage(pdf, 1);
  EXPECT_TRUE(pdfHasText(wordsOfPage(pdf, 1), "ii"));
  EXPECT_TRUE(wordsOfPage(pdf, 3).starts_with("Lee Lamp 2 ")) << wordsOfPage(pdf, 3);
  // What is too wide shrinks no page: the prose breaks as it does without.
  EXPECT_EQ(wordsOfPage(pdf, 3), wordsOfPage(print("tame"), 3));

  const test::Sandbox sandbox;
  const std::string file = (sandbox.home() / "book.pdf").string();
  test::writeWhole(file, pdf);
  EXPECT_EQ(sandbox.run("qpdf", {"--check", file}).status, 0);
  EXPECT_EQ(outlinePages(sandbox, file), expected);
  const std::string fonts = sandbox.run("pdffonts", {file}).out;
  EXPECT_TRUE(pdfHasText(fonts, " yes ")) << fonts;
  EXPECT_FALSE(pdfHasText(fonts, " no  no ") || pdfHasText(fonts, " no  yes")) << fonts;
  const std::string plain =
      sandbox.run("qpdf", {"--qdf", "--object-streams=disable", file, "-"}).out;
  EXPECT_FALSE(pdfHasText(plain, "passwd") || pdfHasText(plain, "javascript:"));
}

TEST(PDFPrinting, PrintsGoodBooksWithTheBrowser) {
  printsGoodBook(browserPrintEngine);
}

TEST(PDFPrinting, PrintsGoodBooksWithTheTypesetter) {
  printsGoodBook(typesetterPrintEngine);
}

// --- Typesetters that fail -----------------------------------------------------------------------

// Whether the process is gone, or dead and not yet waited for, within a second.
bool hasEnded(pid_t process) {
  for (int i = 0; i < 100; ++i) {
    try {
      const std::string state = test::readWhole("/proc/" + std::to_string(process) + "/stat");
      if (pdfHasText(state, ") Z ")) return true;
    } catch (const std::runtime_error&) {
      return true;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return false;
}

TEST(PDFTypesetter, TellsHowItFailed) {
  struct Row {
    std::string script;
    LKBindPDFError::Kind kind;
    std::string reason;
  };
  using enum LKBindPDFError::Kind;
  const std::vector<Row> rows = {
      {"cat >/dev/null; echo trace >&2; echo 'no font' >&2; exit 3", pdfGenerationFailed,
       "The typesetter ended with status 3 and no pages: no font"},
      {"exit 0", pdfGenerationFailed, "with status 0 and no pages"},
      {"kill -SEGV $$", pdfGenerationFailed, "by signal 11"},
      {"sleep 600 >/dev/null 2>&1 & echo $! >\"$0.pid\"; exec >&- 2>&-; wait", timeout,
       "60-second budget"},
      {"sleep 600 & echo $! >\"$0.pid\"; wait", timeout, "60-second budget"},
  };
  const std::string path = std::getenv("PATH");
  for (const Row& row : rows) {
    const test::TempFolder folder;
    const std::string python = (folder / "python").string();
    test::writeWhole(folder / "weasyprint", "#!" + python + "\n");
    test::writeWhole(python, "#!/bin/sh\n" + row.script + "\n");
    for (const char* name : {"weasyprint", "python"}) chmod((folder / name).c_str(), 0755);
    setenv("PATH", (folder.path().string() + ":" + path).c_str(), 1);
    const std::unique_ptr<PrintEngine> engine = typesetterPrintEngine();
    setenv("PATH", path.c_str(), 1);
    ASSERT_TRUE(engine);
    try {
      // More than a channel holds: nobody reads it.
      engine->print({.html = std::string(1 << 20, 'x'), .collectionRoot = folder.path()}, "",
                    pdfDeadline(1));
      ADD_FAILURE() << row.script;
    } catch (const LKBindPDFError& error) {
      EXPECT_EQ(error.kind(), row.kind) << error.description();
      EXPECT_TRUE(pdfHasText(error.description(), row.reason)) << error.description();
    }
    if (row.kind != timeout) continue;
    EXPECT_TRUE(hasEnded(std::atoi(test::readWhole(python + ".pid").c_str())));
  }
}

TEST(PDFRenderer, NamesThePackagesWhenThereIsNoEngine) {
  const test::TempFolder empty;
  const test::ChangedVariable path("PATH", empty.path().string());
  ASSERT_EQ(browserPrintEngine(), nullptr);
  try {
    LKBindPDFRenderer::renderPDF("<p>x", {}, {}, "/");
    FAIL() << "it was printed";
  } catch (const LKBindPDFError& error) {
    EXPECT_EQ(error.kind(), LKBindPDFError::Kind::noEngine);
    EXPECT_TRUE(pdfHasText(error.description(), "chromium"));
    EXPECT_TRUE(pdfHasText(error.description(), "weasyprint"));
  }
}

}  // namespace
}  // namespace lk
