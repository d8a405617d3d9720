// HTML as people and attackers write it, as the body of a book.

#include "LKCore/EPUB/XHTML.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/EPUB/EPUBStyle.h"
#include "LKCore/EPUB/LKBindEPUBBuilder.h"
#include "Support/Growth.h"
#include "Support/XMLCheck.h"

namespace lk {
namespace {

std::string converted(std::string_view html) {
  return xhtml::xhtmlBody(html, {"images/img1.png"}).markup;
}

std::optional<std::string> faultOf(std::string_view markup) {
  return test::xmlError(
      "<body xmlns=\"http://www.w3.org/1999/xhtml\" "
      "xmlns:epub=\"http://www.idpf.org/2007/ops\">" +
      std::string(markup) + "</body>");
}

struct Row {
  const char* name;
  const char* html;
  const char* expected;
};

void expectConverted(const std::vector<Row>& rows) {
  for (const Row& row : rows) {
    EXPECT_EQ(converted(row.html), row.expected) << row.name;
    EXPECT_EQ(faultOf(row.expected), std::nullopt) << row.name;
  }
}

TEST(XHTML, NestsElements) {
  expectConverted({
      {"open at the end", "<p>a<br>b & c<ul><li>d", "<p>a<br/>b &amp; c</p><ul><li>d</li></ul>"},
      {"a block ends words", "<p><b>a<div>c</b></div>d", "<p><b>a</b></p><div>c</div>d"},
      {"cells without a table", "<td>x</td><tr>y", "xy"},
      {"a table's missing parts", "<table><td>a<tr>b<tfoot><tr><th>c",
       "<table><tbody><tr><td>a</td></tr><tr><td>b</td></tr></tbody>"
       "<tbody><tr><th>c</th></tr></tbody></table>"},
      {"a second head",
       "<table><caption>t</caption><thead><tr><th>h</thead><thead><tr><td>x</table>y",
       "<table><caption>t</caption><thead><tr><th>h</th></tr></thead>"
       "<tbody><tr><td>x</td></tr></tbody></table>y"},
      {"items without a list", "<li>a<li>b</ul>c", "<ul><li>a</li><li>b</li></ul>c"},
      {"lists in lists", "<ol><li value=3>a<ul><li value=4>b</ul></li><ul>x</ol>",
       "<ol><li value=\"3\">a<ul><li>b</li></ul></li><li><ul><li>x</li></ul></li></ol>"},
      {"half of a definition", "<dl><dd>a<dt>b</dl>",
       "<dl><dt></dt><dd>a</dd><dt>b</dt><dd></dd></dl>"},
      {"links in links", "<a href=\"https://a.b\">x<a href=\"mailto:c@d\">y</a>z</a>",
       "<a href=\"https://a.b\">x</a><a href=\"mailto:c@d\">y</a>z"},
      {"behind a caption",
       "<figure><img src=\"images/img1.png\" alt=\"x\"><figcaption>c</figcaption>d</figure>e",
       "<figure><img src=\"images/img1.png\" alt=\"x\"/><figcaption>c</figcaption></figure>de"},
      {"a stray caption", "<figcaption>a</figcaption>", "<div>a</div>"},
      {"ruby", "<ruby>a<rp>(</rp><rt>b<rp>)</rp></ruby><ruby>x</ruby>",
       "<ruby>a<rt>b</rt></ruby><ruby>x<rt></rt></ruby>"},
      {"folded text", "<details><summary>s</summary>t</details>", "<div><div>s</div>t</div>"},
      {"closed as in XML", "<b/>a<i />b<a href=http://c.d/>e</a>",
       "<b></b>a<i></i>b<a href=\"http://c.d/\">e</a>"},
  });
  std::string deep;
  for (int i = 0; i < 1000; ++i) deep += "<div>";
  std::string expected = "x";
  for (int i = 0; i < 200; ++i) expected.insert(0, "<div>").append("</div>");
  EXPECT_EQ(converted(deep + "x"), expected);
}

TEST(XHTML, KeepsWords) {
  expectConverted({
      {"names of no element", "a <foo x=\"1\"> b", "a &lt;foo x=&quot;1&quot;&gt; b"},
      {"stray marks", "1 < 2 && <3 <b", "1 &lt; 2 &amp;&amp; &lt;3 &lt;b"},
      {"references", "&eacute;&nbsp;&copy &#x1F600;&#0;&#1;\x07",
       "\u00E9\u00A0&amp;copy \U0001F600\uFFFD"},
      {"no comments", "a<!-- <b> -->b<!DOCTYPE x>c<?php d ?>e<![CDATA[<f>]]>g<!-- h",
       "abce&lt;f&gt;g&lt;!-- h"},
      {"nothing that acts",
       "a<script>alert(\"</b>\")</script>b<style>p{}</style><iframe src=\"x\">c</iframe>"
       "<input type=text value=q><button>d</button><object data=x>e</object>",
       "abc<span>d</span>e"},
      {"a script without end", "<script>a", "a"},
      {"boxes",
       "<input type=\"checkbox\" checked=\"\" disabled=\"\" /> a<ul>"
       "<li><input type=\"checkbox\" checked class=\"lk-cancelled\" disabled> b</ul>"
       "<input type=checkbox class=lk-inprogress><input type=checkbox>",
       "\u2611 a<ul><li>\u2612 b</li></ul>\u25EA\u2610"},
      {"formulas", "<math><mi>x</mi><annotation>y</annotation></math><mi>", "xy&lt;mi&gt;"},
      {"plain drawings", "<svg viewBox='0 0 9 9'><title>t</title><path d=\"M0 0\"/></svg>",
       "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 9 9\"><title>t</title>"
       "<path d=\"M0 0\"/></svg>"},
      {"other drawings", "<svg><script>x</script><text>y</text></svg>z", "yz"},
      {"drawings that load", "<svg><image href=\"http://a.b\"/><text>y</text></svg>", "y"},
  });
}

TEST(XHTML, ChoosesAttributes) {
  expectConverted({
      {"of all",
       "<p onclick=\"x()\" style=\"color:red;position:fixed;background:url(a)\" align=center "
       "foo=1 CLASS='c\"d' data-k=v class=e lang=de>t",
       "<p class=\"c&quot;d\" data-k=\"v\" lang=\"de\" xml:lang=\"de\" "
       "style=\"color: red; text-align: center\">t</p>"},
      {"of old", "<font color=\"#F00\" size=3>a</font><center>b</center>",
       "<span style=\"color: #f00\">a</span><div style=\"text-align: center\">b</div>"},
      {"identifiers", "<b id=a>1</b><i id=a>2</i><u id=\"1\">3</u>",
       "<b id=\"a\">1</b><i>2</i><u id=\"_1\">3</u>"},
      {"links",
       "<p id=\"x y\">p</p><a href=\"#x%20y\">1</a><a href=\"#no\">2</a>"
       "<a href=\"javascript:x\">3</a><a href=\"larkspire://open?id=1\" class=\"backlink\">4</a>"
       "<a href=\"file:///etc/passwd\">5</a>",
       "<p id=\"x-20y\">p</p><a href=\"#x-20y\">1</a><span>2</span><span>3</span>"
       "<span class=\"backlink\">4</span><span>5</span>"},
      {"pictures of the web", "<p><img src=\"https://a.b/c.png\" alt=\"A cat\"></p>",
       "<p><a href=\"https://a.b/c.png\" class=\"missing-picture\">A cat</a></p>"},
      {"in a link", "<a href=\"https://a.b\"><img src=\"https://a.b/c.png\" alt=\"A\"></a>",
       "<a href=\"https://a.b\"><span class=\"missing-picture\">A</span></a>"},
      {"pictures that are gone",
       "<img src=\"gone.png\" alt=\"Gone\"><img src=\"file:///a.png\" srcset=\"b.png 2x\">"
       "<figure><img src=\"gone.png\" alt=\"G\"><figcaption>G</figcaption></figure>",
       "<span class=\"missing-picture\">Gone</span><figure><figcaption>G</figcaption></figure>"},
      {"sizes", "<img src=\"images/img1.png\" width=\"12.5\" height=7><td width=\"50%\">",
       "<img src=\"images/img1.png\" alt=\"\" height=\"7\" style=\"width: 12.5px\"/>"},
      {"footnotes",
       "<sup><a href=\"#fn-a\" id=\"fnref-a\">1</a></sup><section class=\"footnotes\"><ol>"
       "<li id=\"fn-a\">b <a href=\"#fnref-a\" "
       "class=\"footnote-backref\">c</a></li></ol></section>",
       "<sup><a id=\"fnref-a\" href=\"#fn-a\" role=\"doc-noteref\" "
       "epub:type=\"noteref\">1</a></sup>"
       "<section class=\"footnotes\" role=\"doc-endnotes\" epub:type=\"footnotes\"><ol>"
       "<li id=\"fn-a\" epub:type=\"footnote\">b <a class=\"footnote-backref\" href=\"#fnref-a\" "
       "role=\"doc-backlink\">c</a></li></ol></section>"},
  });
}

TEST(XHTML, TakesAddressesThatReadersCanFollow) {
  const auto address = [](std::string_view written) {
    return xhtml::webAddress(written).value_or("none");
  };
  EXPECT_EQ(address("https://a.b/x y?[z]#q#r"), "https://a.b/x%20y?%5bz%5d#q%23r");
  EXPECT_EQ(address("HTTP://a.b:80/%zz%20\u00E9"), "http://a.b:80/%25zz%20%c3%a9");
  EXPECT_EQ(address(" mailto:a b@c "), "mailto:a%20b@c");
  for (const char* refused : {"https://a..b", "http://", "https://u:p@a.b", "https://a.b:x",
                              "https://-a", "mailto:", "data:text/html,x", "//a.b", "ftp://a.b"}) {
    EXPECT_EQ(address(refused), "none") << refused;
  }
}

TEST(XHTML, IsWellFormedAndLinearForAnyInput) {
  const std::vector<std::string> units = {"<b>",
                                          "<a <",
                                          "<p \"",
                                          "<!--",
                                          "<![CDATA[",
                                          "</x",
                                          "<svg><",
                                          "<svg a='",
                                          "<math>",
                                          "<script>",
                                          "<li><table>",
                                          "<td>",
                                          "<a href=#a id=a>",
                                          "<ruby><rt>",
                                          "<dl><dt>",
                                          "&amp",
                                          "\xFF\xC3(",
                                          "<i id='a b'>",
                                          "<h1 class=\"bind-chapter\">",
                                          "<figure><figcaption>",
                                          "<img src=\"x\" alt='<'>"};
  for (const std::string& unit : units) {
    const auto work = [&](const std::string& text) {
      const std::string markup = converted(LKBindEPUBBuilder::escapeUnknownTags(
          LKBindEPUBBuilder::wrapStructuralSections(LKBindEPUBBuilder::addChapterAnchors(text))));
      EXPECT_EQ(faultOf(markup), std::nullopt) << unit;
      LKBindEPUBBuilder::extractStructuralTOC(text);
    };
    EXPECT_LE(test::growth(unit, 50000, work), 8) << unit;
  }
}

TEST(EPUBStyle, LeavesPaperOut) {
  EXPECT_EQ(xhtml::readerSheet("@page { size: 6in 9in; @top-left { content: \"}\" } }\n"
                               "@import url(a.css);\n@media print { a { color: red } }\n"
                               "body { font-size: 12pt; line-height: 2; color: #111; }\n"
                               "h1 { font-size: 18pt; string-set: a \"b;c\"; margin: 1pt 0 }\n"
                               "/* a } */ p { background: url(http://a.b); position: fixed }\n"
                               "hr::after { content: \"* } *\"; min-height: 9in; }\n"
                               ".t::after { content: target-counter(attr(x), page); }\nli { color",
                               12),
            "body {\n  color: #111;\n}\nh1 {\n  font-size: 1.5em;\n  margin: 1pt 0;\n}\n"
            "hr::after {\n  content: \"* } *\";\n}\n"
            "pre code, pre kbd, pre samp {\n  font-size: 1em;\n}\n");
  EXPECT_EQ(xhtml::plainDeclarations("COLOR: rgb(1, 2, 3); width:50%; display:none; float: left;"
                                     "color:#12; margin: expression(x:y); color:\"red\""),
            "color: rgb(1, 2, 3); width: 50%; float: left");
}

}  // namespace
}  // namespace lk
