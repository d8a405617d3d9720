#pragma once

// What the engine does to the manuscript before it is rendered and to the HTML behind it.
// LKBindEngine.h tells the whole. Each pass is linear in its text.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindSpec.h"

namespace lk::LKBindEngine {

// --- Diagrams ------------------------------------------------------------------------------------

struct DiagramSlots {
  std::string text;                  // the manuscript with a comment in the place of each diagram
  std::string mark;                  // how the comments begin; no text can know it beforehand
  std::vector<std::string> figures;  // by the number in the comment
};

// Closed fences of the language "mermaid" as slots. A diagram without a picture has the figure that
// says so. Fences within other fences are code.
DiagramSlots substituteMermaid(std::string_view manuscript, const LKBindDiagrams& renders);

// The HTML with the figures in the place of their slots.
std::string withFigures(std::string_view html, const DiagramSlots& slots);

// --- Contents ------------------------------------------------------------------------------------

// The manuscript with identifiers in the headings of parts and chapters, and the contents before
// the first of them. Unchanged when the bind spec wants no contents or lists no heading.
std::string injectTOC(std::string_view manuscript, const LKBindSpec& spec);

// The contents as lines of HTML, with an empty line behind them.
std::string buildTOCHTML(const std::vector<TOCEntry>& entries, std::string_view title);

// --- Footnotes -----------------------------------------------------------------------------------

// With `endOfChapter` each chapter's footnotes stand at its end, before the page break, numbered
// from 1; those that nobody refers to stand at the very end. A footnote that several chapters refer
// to stands in the first of them.
std::string relocateFootnotesByChapter(std::string html, LKBindFootnotePlacement placement);

}  // namespace lk::LKBindEngine
