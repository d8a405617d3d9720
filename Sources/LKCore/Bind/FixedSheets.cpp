// The rules that are the same in every book.

#include "LKCore/Bind/LKBindCSSGenerator.h"

namespace lk::LKBindCSSGenerator {

namespace {

// A title page breaks by itself; a second break behind it would leave a page empty.
constexpr std::string_view kPageBreakSheet = R"(.bind-titlepage + .bind-pagebreak { display: none; }
@media screen {
  body { max-width: 40em; margin: 0 auto; padding: 2em 1.5em; }
  .bind-pagebreak { height: 0; margin: 3em 0; }
}
)";

constexpr std::string_view kDiagramSheet = R"(figure.bind-mermaid, figure.bind-mermaid-caption {
  break-inside: avoid;
  page-break-inside: avoid;
  margin: 0.8em auto;
  text-align: center;
}
figure.bind-mermaid img { max-height: 90vh; }
)";

constexpr std::string_view kTableSheet = R"(table {
  border-collapse: collapse;
  width: 100%;
  margin: 0.6em 0;
  font-size: 0.95em;
  line-height: 1.3;
  break-inside: avoid;
  page-break-inside: avoid;
}
thead { display: table-header-group; }
tr { break-inside: avoid; page-break-inside: avoid; }
th, td {
  border-bottom: 1px solid #c8c8c8;
  padding: 0.3em 0.5em;
  text-align: left;
  vertical-align: top;
  overflow-wrap: anywhere;
  hyphens: auto;
  -webkit-hyphens: auto;
}
thead th { border-bottom: 1.5px solid currentColor; font-weight: bold; }
th[align="center"], td[align="center"] { text-align: center; }
th[align="right"], td[align="right"] { text-align: right; }
)";

constexpr std::string_view kContentsSheet = R"(nav.bind-toc {
  break-before: page;
  page-break-after: always;
  text-align: left;
}
nav.bind-toc h1.bind-toc-title {
  font-size: 1.6em;
  margin: 0 0 1em;
  page-break-before: auto;
}
nav.bind-toc ol.bind-toc-list { list-style: none; margin: 0; padding: 0; }
nav.bind-toc li.bind-toc-entry {
  display: flex;
  justify-content: space-between;
  align-items: baseline;
  gap: 1em;
  margin: 0;
  line-height: 1.5;
  break-inside: avoid;
}
nav.bind-toc li.bind-toc-entry-part { font-weight: bold; margin-top: 0.8em; }
nav.bind-toc a { color: inherit; text-decoration: none; overflow-wrap: anywhere; }
nav.bind-toc .toc-page {
  flex: none;
  min-width: 2.2em;
  text-align: right;
  font-variant-numeric: lining-nums tabular-nums;
}
nav.bind-toc .toc-page::after { content: target-counter(attr(data-target-id), page); }
)";

constexpr std::string_view kFootnoteSheet = R"(section.footnotes {
  margin-top: 1.5em;
  font-size: 0.85em;
  line-height: 1.45;
}
section.footnotes hr {
  border: 0;
  border-top: 1px solid #c8c8c8;
  width: 30%;
  height: 0;
  padding: 0;
  margin: 0 auto 0.6em 0;
}
section.footnotes hr::after { content: none; }
section.footnotes ol { margin: 0; }
section.footnotes p { margin: 0 0 0.3em; }
section.footnotes a.footnote-backref { text-decoration: none; }
sup.footnote-ref { line-height: 0; font-size: 0.75em; }
sup.footnote-ref a { color: inherit; text-decoration: none; }
@media print { section.footnotes a.footnote-backref { display: none; } }
)";

constexpr std::string_view kFigureSheet = R"(figure.lk-figure {
  margin: 1.2em 0;
  text-align: center;
  break-inside: avoid;
  page-break-inside: avoid;
}
figure.lk-figure img { break-after: avoid; page-break-after: avoid; }
figure.lk-figure figcaption { font-size: 0.9em; line-height: 1.3; margin-top: 0.4em; }
.lk-admonition {
  border-left: 3px solid #8c8c8c;
  padding: 0.2em 0 0.2em 1em;
  margin: 0.8em 0;
  break-inside: avoid;
  page-break-inside: avoid;
}
.lk-admonition-title { font-weight: bold; }
)";

}  // namespace

std::string fixedRules() {
  std::string rules;
  for (const std::string_view sheet : {kPageBreakSheet, kDiagramSheet, kTableSheet, kContentsSheet,
                                       kFootnoteSheet, kFigureSheet}) {
    rules.append(sheet);
  }
  return rules;
}

}  // namespace lk::LKBindCSSGenerator
