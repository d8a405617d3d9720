// Words, destinations, new pages and outlines of small PDF files that are written here by hand.

#include <gtest/gtest.h>

#include <algorithm>

#include "LKCore/Modules/PDFPages.h"
#include "Support/Process.h"

namespace lk {
namespace {

// The objects numbered from 1, the first one being the catalog.
std::string pdfOf(const std::vector<std::string>& objects, const std::string& trailer = "") {
  std::string file = "%PDF-1.5\n";
  std::string table = "0000000000 65535 f \n";
  for (size_t i = 0; i < objects.size(); ++i) {
    const std::string place = std::to_string(file.size());
    table += std::string(10 - place.size(), '0') + place + " 00000 n \n";
    file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
  }
  const std::string size = std::to_string(objects.size() + 1);
  const std::string start = std::to_string(file.size());
  return file + "xref\n0 " + size + "\n" + table + "trailer\n<< /Root 1 0 R /Size " + size + " " +
         trailer + ">>\nstartxref\n" + start + "\n%%EOF\n";
}

constexpr size_t kFirstPageObject = 4;

std::string pageReference(size_t page) {
  return std::to_string(kFirstPageObject + 2 * page) + " 0 R";
}

// Pages of 200 by 100 points from a corner away from zero, each with one line of text and one
// below; `annotations` belong to the first.
std::string bookOf(const std::vector<std::string>& texts, const std::string& catalog = "",
                   const std::string& annotations = "") {
  std::string kids;
  for (size_t i = 0; i < texts.size(); ++i) kids += pageReference(i) + " ";
  std::vector<std::string> objects = {"<< /Type /Catalog /Pages 2 0 R " + catalog + " >>",
                                      "<< /Type /Pages /MediaBox [10 20 210 120] /Count " +
                                          std::to_string(texts.size()) + " /Kids [" + kids +
                                          "] /Resources << /Font << /F 3 0 R >> >> >>",
                                      "<< /Type /Font /Subtype /Type1 /BaseFont /Courier >>"};
  for (size_t i = 0; i < texts.size(); ++i) {
    objects.push_back("<< /Type /Page /Parent 2 0 R /Contents " +
                      std::to_string(kFirstPageObject + 2 * i + 1) + " 0 R /Annots [" +
                      (i == 0 ? annotations : "") + "] >>");
    const std::string drawing = "BT /F 10 Tf 30 90 Td (" + texts[i] + ") Tj 0 -20 Td (below) Tj ET";
    objects.push_back("<< /Length " + std::to_string(drawing.size()) + " >>\nstream\n" + drawing +
                      "\nendstream");
  }
  return pdfOf(objects, "/Info << /Title (Old) /CreationDate (D:20010101000000Z) >> ");
}

std::string namedDestinations() {
  return "/Dests << /one [" + pageReference(0) + " /XYZ 30 100 null] /gone [null /Fit] >> " +
         "/Names << /Dests << /Names [(three) << /D [" + pageReference(2) +
         " /FitH 70] >> (two) [" + pageReference(1) + " /Fit]] >> >>";
}

std::string linkTo(const std::string& target) {
  return "<< /Type /Annot /Subtype /Link /Rect [30 80 60 100] " + target + " >> ";
}

// The file as a checker of its own reads it, in plain letters and with single blanks; the
// checker's complaint when it has one.
std::string inPlainLetters(const std::string& pdf) {
  const test::Sandbox sandbox;
  test::writeWhole(sandbox.home() / "a.pdf", pdf);
  const test::ProcessResult check = sandbox.run("qpdf", {"--check", "a.pdf"});
  if (check.status != 0) return "qpdf --check: " + check.out + check.err;
  const test::ProcessResult plain = sandbox.run(
      "qpdf", {"--qdf", "--object-streams=disable", "--no-original-object-ids", "a.pdf", "-"});
  std::string result;
  for (const char c : plain.out) {
    const char shown = c == '\n' ? ' ' : c;
    if (shown != ' ' || result.empty() || result.back() != ' ') result += shown;
  }
  return result;
}

std::string pageWords(const PDFPage& page) {
  std::string text;
  for (const PDFWord& word : page.words) {
    text += word.text + (word.endsLine ? "|" : word.spaceAfter ? " " : "");
  }
  return text;
}

bool containsText(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST(PDFPages, GiveWordsAndDestinations) {
  const std::string book = bookOf({"Alpha beta", "Second", "Third"}, namedDestinations());
  EXPECT_EQ(pdfPageCount(book), 3U);
  const std::vector<PDFPage> pages = pdfPages(book);
  ASSERT_EQ(pages.size(), 3U);
  EXPECT_EQ(pages[0].width, 200);
  EXPECT_EQ(pages[0].height, 100);
  EXPECT_EQ(pageWords(pages[0]), "Alpha beta|below|");
  EXPECT_EQ(pageWords(pages[2]), "Third|below|");
  const PDFWord& first = pages[0].words.at(0);
  // The text's base line is 30 points below the upper edge, a letter 6 points wide.
  EXPECT_NEAR(first.left, 20, 0.5);
  EXPECT_NEAR(first.right, 50, 0.5);
  EXPECT_GT(first.top, 18);
  EXPECT_LT(first.top, 27);
  EXPECT_GT(first.bottom, 29);
  EXPECT_LT(first.bottom, 35);

  const auto destinations = pdfDestinations(book);
  ASSERT_EQ(destinations.size(), 3U) << "one leads nowhere";
  EXPECT_EQ(destinations.at("one").page, 0U);
  EXPECT_EQ(destinations.at("one").left, 20);
  EXPECT_EQ(destinations.at("one").top, 20);
  EXPECT_EQ(destinations.at("two").page, 1U);
  EXPECT_EQ(destinations.at("three").page, 2U);
  EXPECT_EQ(destinations.at("three").top, 50);
}

TEST(PDFPages, AreReplaced) {
  const std::string book = bookOf({"A", "B", "C", "D"}, namedDestinations(),
                                  linkTo("/Dest [" + pageReference(1) + " /XYZ 5 6 null]"));
  const std::string contents =
      bookOf({"New", "Newer"}, "",
             linkTo("/A << /S /GoTo /D [" + pageReference(1) + " /XYZ 7 8 null] >>") +
                 linkTo("/Dest /three") + linkTo("/A << /S /URI /URI (https://example.com/) >>"));
  const std::string joined = pdfWithPages(book, 1, contents);
  const std::vector<PDFPage> pages = pdfPages(joined);
  ASSERT_EQ(pages.size(), 4U);
  std::string text;
  for (const PDFPage& page : pages) text += pageWords(page);
  EXPECT_EQ(text, "A|below|New|below|Newer|below|D|below|");
  const auto destinations = pdfDestinations(joined);
  EXPECT_EQ(destinations.at("one").page, 0U);
  EXPECT_EQ(destinations.at("two").page, 1U) << "on a page that is new";
  EXPECT_EQ(destinations.at("three").page, 2U);

  const std::string plain = inPlainLetters(joined);
  const auto pageObject = [&](const std::string& number) {
    const std::string mark = "%% Page " + number + " ";
    const size_t start = plain.find(mark);
    return start == std::string::npos
               ? "page " + number + " is missing"
               : plain.substr(start + mark.size(), plain.find(" obj", start) - start - mark.size());
  };
  EXPECT_TRUE(containsText(plain, "[ " + pageObject("2") + " R /XYZ 5 6 null ]")) << plain;
  EXPECT_TRUE(containsText(plain, "[ " + pageObject("3") + " R /XYZ 7 8 null ]")) << plain;
  EXPECT_TRUE(containsText(plain, "/Dest /three"));
  EXPECT_TRUE(containsText(plain, "(https://example.com/)"));
  EXPECT_FALSE(containsText(plain, "(B)")) << "what was replaced is gone";
  EXPECT_THROW(pdfWithPages(book, 3, contents), PDFPagesError);
  EXPECT_THROW(pdfWithPages(book, 9, contents), PDFPagesError);
}

TEST(FinishedPDF, HasAnOutlineAndProperties) {
  const std::string book = bookOf({"A", "B", "C"}, "/OpenAction [" + pageReference(2) + " /Fit]");
  const std::vector<PDFOutlineEntry> outline = {{"Part (one)", 1, {0, 0, 0}},
                                                {"Deep", 3, {0, 5, 10}},
                                                {"Less deep", 2, {1, 0, 0}},
                                                {"Größe ≤ 1", 2, {1, 0, 50}},
                                                {"End", 1, {2, 0, 0}}};
  const PDFProperties properties = {"Der Größte", "Ann Lee", "de-DE", "D:20260314120000Z"};
  const std::string finished = finishedPDF(book, outline, properties);
  EXPECT_EQ(finishedPDF(book, outline, properties), finished);
  const std::string plain = inPlainLetters(finished);
  for (const std::string part :
       {"/PageMode /UseOutlines", "/Lang (de-DE)", "/DisplayDocTitle true", "/Author (Ann Lee)",
        "/Title <feff0044006500720020004700720", "/CreationDate (D:20260314120000Z)",
        "/Title (Part \\(one\\))", "/Count 2 /First", "/Count -3", "R /XYZ 15 110 null ]"}) {
    EXPECT_TRUE(containsText(plain, part)) << part << " is missing in " << plain;
  }
  EXPECT_FALSE(containsText(plain, "D:2001") || containsText(plain, "(Old)"));
  // And as a reader program nests it.
  const test::Sandbox sandbox;
  test::writeWhole(sandbox.home() / "a.pdf", finished);
  std::string shown = sandbox.run("pdftohtml", {"-xml", "-i", "-stdout", "a.pdf"}).out;
  shown = shown.substr(std::min(shown.find("<outline>"), shown.size()));
  std::erase(shown, '\n');
  EXPECT_EQ(shown,
            "<outline><item page=\"1\">Part (one)</item><outline><item page=\"1\">Deep</item>"
            "<item page=\"2\">Less deep</item><item page=\"2\">Größe ≤ 1</item></outline>"
            "<item page=\"3\">End</item></outline></pdf2xml>");

  const std::string bare = inPlainLetters(finishedPDF(finished, {}, {}));
  EXPECT_FALSE(containsText(bare, "Outline") || containsText(bare, "/Lang")) << bare;
  EXPECT_THROW(finishedPDF(book, {{"Nowhere", 1, {3, 0, 0}}}, {}), PDFPagesError);
}

TEST(FinishedPDF, StartsNothing) {
  struct Row {
    std::string annotation;
    std::string word;  // by which it would be found
    bool stays;
  };
  const auto address = [](const std::string& text) {
    return linkTo("/A << /S /URI /URI (" + text + ") >>");
  };
  const std::vector<Row> rows = {
      {address("https://example.com/a"), "example.com/a", true},
      {address("MAILTO:ann@example.com"), "ann@example.com", true},
      {linkTo("/Dest (two)"), "/Dest (two)", true},
      {address("file:///etc/passwd"), "passwd", false},
      {address("FILE:/x1"), "x1", false},
      {address("javascript:x2"), "x2", false},
      {address(" javascript:x3"), "x3", false},
      {address("../x4.html"), "x4", false},
      {address("smb://x5/"), "x5", false},
      {linkTo("/A << /S /Launch /F (x6) >>"), "x6", false},
      {linkTo("/A << /S /JavaScript /JS (x7) >>"), "x7", false},
      {linkTo("/A << /S /GoToR /F (x8) /D (d) >>"), "x8", false},
      {linkTo("/A << /S /GoTo /D (two) /Next << /S /Launch /F (x9) >> >>"), "x9", false},
      {linkTo("/AA << /E << /S /Launch /F (y1) >> >>"), "y1", false},
      {"<< /Type /Annot /Subtype /FileAttachment /Rect [0 0 9 9] /FS << /F (y2) >> >> ", "y2",
       false},
  };
  std::string annotations;
  for (const Row& row : rows) annotations += row.annotation;
  const std::string catalog =
      "/OpenAction << /S /JavaScript /JS (y3) >> /AA << /WC << /S /Launch /F (y4) >> >> "
      "/Names << /JavaScript << /Names [(y5) << /S /JavaScript /JS (y5) >>] >> "
      "/EmbeddedFiles << /Names [(y6) << /F (y6) >>] >> >>";
  const std::string book = bookOf({"A", "B"}, catalog, annotations);
  ASSERT_TRUE(containsText(inPlainLetters(book), "(y6)"));
  const std::string plain = inPlainLetters(finishedPDF(book, {}, {}));
  for (const Row& row : rows) {
    EXPECT_EQ(containsText(plain, row.word), row.stays) << row.annotation << " in " << plain;
  }
  for (const std::string word : {"y3", "y4", "y5", "y6", "JavaScript", "Launch"}) {
    EXPECT_FALSE(containsText(plain, word)) << word << " in " << plain;
  }
}

TEST(PDFPages, RefuseWhatIsNone) {
  const std::string book = bookOf({"A"});
  for (const std::string& none :
       {std::string(), std::string("plain"), std::string("%PDF-1.5\n"),
        book.substr(0, book.size() / 2), std::string("%PDF-1.5\nxref\n0 0\ntrailer\n<<>>")}) {
    EXPECT_THROW(pdfPageCount(none), PDFPagesError) << none;
    EXPECT_THROW(pdfPages(none), PDFPagesError) << none;
    EXPECT_THROW(pdfDestinations(none), PDFPagesError) << none;
    EXPECT_THROW(pdfWithPages(book, 0, none), PDFPagesError) << none;
    EXPECT_THROW(finishedPDF(none, {}, {}), PDFPagesError) << none;
  }
}

}  // namespace
}  // namespace lk
