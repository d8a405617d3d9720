// Whole books: structure, navigation, pictures, the archive, and what the field's own checker says.

#include "LKCore/EPUB/LKBindEPUBBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Base64.h"
#include "LKCore/Bind/LKBindCSSGenerator.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindThemes.h"
#include "Support/TempFolder.h"
#include "Support/XMLCheck.h"

namespace lk {
namespace {

namespace Builder = LKBindEPUBBuilder;
namespace fs = std::filesystem;

const LKBindSubject kBookSubject = {
    .tagName = "my-novel", .author = "Ann & Lee", .date = {1773446400, 0}, .locale = "en_US"};

constexpr std::string_view kPNG =
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJg"
    "gg==";
constexpr std::string_view kWebP = "UklGRiIAAABXRUJQVlA4IBYAAAAwAQCdASoBAAEADsD+JaQAA3AAAAAA";

// A collection with a picture of each sort.
class BookFolder {
 public:
  BookFolder() {
    fs::create_directory(folder_ / ".attachments");
    test::writeWhole(folder_ / ".attachments/a.png", *base64Bytes(kPNG));
    test::writeWhole(folder_ / ".attachments/b.webp", *base64Bytes(kWebP));
    test::writeWhole(folder_ / ".attachments/c.svg",
                     "<?xml version=\"1.0\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
                     "width=\"9\" height=\"9\"><rect width=\"9\" height=\"9\"/></svg>\n");
    test::writeWhole(folder_ / "secret.txt", "secret");
  }

  const fs::path& path() const { return folder_.path(); }

 private:
  test::TempFolder folder_;
};

constexpr std::string_view kHeadings =
    "<h1 class=\"bind-part\">One</h1>a<h1 class=\"bind-chapter\" id=\"x\">Two<br>&amp; "
    "<em>more</em></h1>b<h1>c</h1><section class=\"footnotes\">f</section>";

TEST(EPUBStructure, FindsPartsAndChapters) {
  using enum Builder::StructuralH1Kind;
  const std::vector<Builder::StructuralTOCEntry> entries = {{part, "One", "bind-heading-1"},
                                                            {chapter, "Two & more", "x"}};
  EXPECT_EQ(Builder::extractStructuralTOC(kHeadings), entries);
  const std::string anchored = Builder::addChapterAnchors(kHeadings);
  EXPECT_EQ(anchored,
            "<h1 id=\"bind-heading-1\" class=\"bind-part\">One</h1>a"
            "<h1 id=\"x\" class=\"bind-chapter\">Two<br>&amp; <em>more</em></h1>b<h1>c</h1>"
            "<section class=\"footnotes\">f</section>");
  EXPECT_EQ(Builder::wrapStructuralSections(anchored),
            "<section class=\"bind-part\" epub:type=\"part\">\n"
            "<h1 id=\"bind-heading-1\" class=\"bind-part\">One</h1>a</section>\n"
            "<section class=\"bind-chapter\" epub:type=\"chapter\">\n"
            "<h1 id=\"x\" class=\"bind-chapter\">Two<br>&amp; <em>more</em></h1>b<h1>c</h1>"
            "</section>\n<section class=\"footnotes\">f</section>");
  EXPECT_EQ(Builder::wrapStructuralSections("<p>a</p>"), "<p>a</p>");
  EXPECT_TRUE(
      Builder::findStructuralH1Openings("<h10 class=\"bind-part\"><h1 class=\"bind-part "
                                        "x\"><h1 xclass=\"bind-part\"><h1 class=\"bind-part\"")
          .empty());
}

TEST(EPUBStructure, Navigates) {
  using enum Builder::StructuralH1Kind;
  const std::vector<Builder::StructuralTOCEntry> entries = {
      {chapter, "A & <b>", "a"}, {part, "P", "p"}, {chapter, "\x01", ""}, {part, "Q", "q"}};
  EXPECT_EQ(Builder::buildNestedNavList(entries),
            "<ol>\n<li><a href=\"content.xhtml#a\">A &amp; &lt;b&gt;</a></li>\n"
            "<li><a href=\"content.xhtml#p\">P</a>\n<ol>\n"
            "<li><a href=\"content.xhtml\">Untitled</a></li>\n</ol>\n</li>\n"
            "<li><a href=\"content.xhtml#q\">Q</a></li>\n</ol>\n");
  const std::string shown = Builder::makeNavXHTML("Book", entries, true, "de");
  const std::string alone = Builder::makeNavXHTML("Book", {}, false);
  EXPECT_EQ(test::xmlError(shown), std::nullopt);
  EXPECT_EQ(test::xmlError(alone), std::nullopt);
  EXPECT_EQ(shown.find("hidden"), std::string::npos);
  EXPECT_NE(alone.find("<nav epub:type=\"toc\" hidden=\"\">\n<h1>Table of Contents</h1>\n<ol>\n"
                       "<li><a href=\"content.xhtml\">Book</a></li>\n</ol>\n</nav>"),
            std::string::npos);
}

TEST(EPUBBuilder, EscapesUnknownTags) {
  const std::vector<std::array<const char*, 2>> rows = {
      {"<foo a='>'>x</foo><em>y</em>", "&lt;foo a='>'&gt;x&lt;/foo&gt;<em>y</em>"},
      {"<br><hr/><img src=\"x\" alt><Foo-1/>", "<br/><hr/><img src=\"x\" alt />&lt;Foo-1/&gt;"},
      {"<svg><path d=\"m\"></svg><path>", "<svg><path d=\"m\"></svg>&lt;path&gt;"},
      {"2 < 3 <foo <b \"", "2 < 3 <foo <b \""},
      {"<foo \"<bar>", "<foo \"&lt;bar&gt;"},
  };
  for (const auto& [html, expected] : rows) {
    EXPECT_EQ(Builder::escapeUnknownTags(html), expected) << html;
  }
}

TEST(EPUBBuilder, KnowsABookAgain) {
  EXPECT_EQ(Builder::stableUUID("larkspire-bind:my-novelMy Novel"),
            "92baa3f4-7254-486f-25b3-13d1be1ade45");
  EXPECT_EQ(Builder::stableUUID("\u00FC"), "0ac20a07-b718-07ea-9985-1d00c486d1b4");
}

TEST(EPUBBuilder, BundlesPictures) {
  const BookFolder folder;
  const std::string data = "data:image/png;base64," + std::string(kPNG);
  const Builder::BundledImages bundled = Builder::bundleImages(
      "<img src=\"attachments/a.png\" alt=\"x\"><img src=\"https://a.b/c.png\"><img alt=\"y\" "
      "src=\".attachments/b.webp\"><img src=\"attachments/a.png\"><img "
      "src=\"attachments/gone.png\">"
      "<img src=\"" +
          data + "\"><img src=\"larkspire-asset:///c.svg\">",
      folder.path());
  EXPECT_EQ(bundled.body,
            "<img src=\"images/img1.png\" alt=\"x\"><img src=\"https://a.b/c.png\"><img alt=\"y\" "
            "src=\"images/img2.webp\"><img src=\"images/img1.png\"><img "
            "src=\"attachments/gone.png\"><img src=\"images/img3.png\"><img "
            "src=\"images/img4.svg\">");
  ASSERT_EQ(bundled.images.size(), 4U);
  EXPECT_EQ(bundled.images[0],
            (Builder::BundledImage{"img1", "images/img1.png", "image/png", *base64Bytes(kPNG)}));
  EXPECT_EQ(test::xmlError(bundled.images[3].bytes), std::nullopt);
  for (const char* source : {"", "/etc/passwd", "../a.png", "secret.txt", "file:///etc/passwd",
                             "http://127.0.0.1/a.png", "data:image/png,x"}) {
    EXPECT_FALSE(Builder::resolveImage(source, folder.path())) << source;
  }
  for (const char* ext : {"png", "gif", "webp", "svg"}) {
    EXPECT_EQ(Builder::ext(Builder::mediaType(ext)), ext);
  }
  EXPECT_EQ(Builder::ext(Builder::mediaType("JPEG")), "jpg");
  EXPECT_EQ(Builder::mediaType("exe"), "");
}

std::string bookAt(const char* zone, const BookFolder& folder) {
  setenv("TZ", zone, 1);
  tzset();
  const std::string html =
      LKBindEngine::bind({{"Dawn", "![x](attachments/a.png)"}}, {}, kBookSubject);
  return Builder::epub(html, {}, kBookSubject, folder.path(), "attachments/c.svg");
}

TEST(EPUBBuilder, WritesTheSameBytesEverywhere) {
  const BookFolder folder;
  const std::string book = bookAt("Pacific/Auckland", folder);
  EXPECT_EQ(book, bookAt("America/New_York", folder));
  unsetenv("TZ");
  tzset();
  EXPECT_EQ(book.find("mimetypeapplication/epub+zip"), 30U);  // stored, behind the first header
  size_t last = 0;
  for (const char* name :
       {"META-INF/container.xml", "OEBPS/content.opf", "OEBPS/nav.xhtml", "OEBPS/content.xhtml",
        "OEBPS/style.css", "OEBPS/images/img1.png", "OEBPS/images/img2.svg"}) {
    const size_t place = book.find(name);
    ASSERT_NE(place, std::string::npos) << name;
    EXPECT_GT(place, last) << name;
    last = place;
  }
  EXPECT_NE(book.find(*base64Bytes(kPNG)), std::string::npos);
}

TEST(EPUBBuilder, SaysWhatWentWrong) {
  const BookFolder folder;
  const auto failure = [&](std::string_view html, const fs::path& output) -> std::string {
    try {
      Builder::buildEPUB(html, {}, kBookSubject, folder.path(), "", output);
    } catch (const LKBindEPUBError& error) {
      return error.description();
    }
    return "none";
  };
  EXPECT_EQ(failure("<p>x</p>", folder.path() / "a.epub"),
            "Bind EPUB: the engine HTML had no <body> section to extract.");
  EXPECT_TRUE(failure("<body></body>", folder.path() / "gone/a.epub")
                  .starts_with("Bind EPUB: could not build the EPUB archive — Archive create "
                               "failed: " +
                               folder.path().string()));
  EXPECT_FALSE(fs::exists(folder.path() / "gone"));
  EXPECT_EQ(failure("<body></body>", folder.path() / "a.epub"), "none");
  EXPECT_TRUE(fs::exists(folder.path() / "a.epub"));
}

constexpr std::string_view kEverything = R"NOTE(# Chapter: Dawn & <Dusk>

Text with *emphasis*, **strong**, ~~gone~~, `code`, ==marked==, [[Other]], a [link](https://a.b/c),
[to nowhere](#nowhere), https://example.com/?q=[x] and a note[^one] and again[^one].[^two words]

## Lists

- [ ] open
- [x] done
- [/] begun
- plain
    1. one
    2. two

> [!WARNING] Careful
> with **this**

> quoted

| a | b |
|:-:|--:|
| 1 | ![t\|40](attachments/a.png) |

![A figure](attachments/a.png)

![Modern|30](attachments/b.webp)

![Drawn](attachments/c.svg) ![Gone](attachments/gone.png) ![Web](https://a.b/c.png)

```swift
let x = "<b>" // one & two
```

```mermaid
graph TD
```

---

<div align="center" onclick="x()"><p>One<p>Two <font color=red>red</font></div>
<details><summary>More</summary>

hidden

</details>

<table width="50%"><td bgcolor="#eee">a<td>b<tr><td colspan=2>c</table>
<svg viewBox="0 0 9 9"><title>t</title><path d="M0 0L9 9" stroke="red"/></svg>
<video src="http://a.b/c.mp4">film</video> <form action="http://a.b"><input name=a> go</form>
<ruby>a<rt>b</rt></ruby> <a name="spot here">x</a> <a href="#spot here">y</a> <foo> &bogus; &nbsp;

[^one]: First with `code`
[^two words]: Second

# Part: Second

# Chapter: Night

The end.
)NOTE";

// One book with every construct, and the sheets of all presets and themes, since each judgement
// takes many seconds.
TEST(EPUBBuilder, PleasesTheChecker) {
  if (!fs::exists("/usr/bin/epubcheck") || !fs::exists("/usr/bin/java")) {
    GTEST_SKIP() << "epubcheck is not installed";
  }
  const BookFolder folder;
  LKBindSpec spec;
  spec.frontMatter.tableOfContents.include = true;
  spec.filters.stripTasks = LKBindStripTasks::keep;
  std::string html = LKBindEngine::bind({{"Book", std::string(kEverything), LKBindNoteRole::book}},
                                        spec, kBookSubject);
  std::string sheets;
  for (const LKBindSpec& preset : LKBindSpec::iOSStyles()) {
    sheets += LKBindCSSGenerator::css(preset, kBookSubject);
  }
  for (const auto& theme : LKBindThemes::all) sheets += LKBindThemes::css(theme.id);
  html.insert(html.find("</style>"), sheets);
  const fs::path book = folder.path() / "book.epub";
  Builder::buildEPUB(html, spec, kBookSubject, folder.path(), "attachments/a.png", book);

  const std::string command =
      "java -XX:TieredStopAtLevel=1 -XX:+UseSerialGC -jar /usr/bin/epubcheck '" + book.string() +
      "' 2>&1";
  FILE* const process = popen(command.c_str(), "r");
  ASSERT_NE(process, nullptr);
  std::string said;
  std::array<char, 4096> buffer{};
  while (fgets(buffer.data(), static_cast<int>(buffer.size()), process) != nullptr) {
    said += buffer.data();
  }
  EXPECT_EQ(pclose(process), 0);
  EXPECT_NE(said.find("Messages: 0 fatals / 0 errors / 0 warnings"), std::string::npos) << said;
}

}  // namespace
}  // namespace lk
