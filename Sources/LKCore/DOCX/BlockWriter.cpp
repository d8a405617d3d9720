#include "LKCore/DOCX/BlockWriter.h"

#include <algorithm>
#include <array>

#include "LKCore/Base/Text.h"
#include "LKCore/DOCX/CodeRuns.h"
#include "LKCore/DOCX/XMLText.h"

namespace lk::word {

namespace {

constexpr std::string_view kNoDiagram = "(diagram — view source)";

std::string styled(std::string_view style) {
  return "<w:pPr><w:pStyle w:val=\"" + std::string(style) + "\"/>";
}

// The admonition that a quote is, with what its first line says besides.
struct AdmonitionLine {
  std::string_view title;
  std::string_view rest;
};

std::optional<AdmonitionLine> admonitionLine(std::string_view line) {
  if (!line.starts_with("[!")) return std::nullopt;
  constexpr std::array<std::string_view, 5> kTitles = {"Note", "Tip", "Important", "Warning",
                                                       "Caution"};
  const size_t end = line.find(']');
  if (end == std::string_view::npos || end > 12) return std::nullopt;
  for (const std::string_view title : kTitles) {
    if (text::equalIgnoringCase(line.substr(2, end - 2), title)) {
      return AdmonitionLine{title, text::trimmed(line.substr(end + 1))};
    }
  }
  return std::nullopt;
}

// "[x] words" as "☑ words".
std::string withTaskBox(std::string_view item) {
  if (item.size() < 4 || item[0] != '[' || item[2] != ']' || item[3] != ' ') {
    return std::string(item);
  }
  std::string_view box;
  if (item[1] == ' ' || item[1] == '/') box = "☐";
  if (item[1] == 'x' || item[1] == 'X') box = "☑";
  if (item[1] == '-') box = "☒";
  if (box.empty()) return std::string(item);
  return std::string(box).append(item.substr(3));
}

// The points of a table's text, so that many columns still fit the page.
int tableCellFontHalfPt(size_t columnCount, double bodySizePt) {
  if (columnCount < 6) return halfPoints(bodySizePt);
  return columnCount <= 8 ? halfPoints(std::min(bodySizePt, 9.0)) : halfPoints(8);
}

const char* cellAlignment(BodyBlocks::TableAlignment alignment) {
  if (alignment == BodyBlocks::TableAlignment::center) return "center";
  return alignment == BodyBlocks::TableAlignment::right ? "right" : "left";
}

}  // namespace

BlockWriter::BlockWriter(const LKBindSpec& spec, const LKBindDiagrams& diagrams,
                         FootnotePool& notes, ImageRegistry& images)
    : spec_(spec),
      diagrams_(diagrams),
      notes_(notes),
      images_(images),
      page_(pageMeasures(spec.page)),
      sources_{&notes, &images} {}

void BlockWriter::append(std::string& xml, const std::vector<BodyBlock>& blocks, Flow flow) {
  flow_ = flow;
  indentsNext_ = false;
  for (const BodyBlock& block : blocks) {
    std::visit([&](const auto& known) { take(xml, known); }, block);
  }
}

// --- Text ----------------------------------------------------------------------------------------

void BlockWriter::appendBodyParagraph(std::string& xml, std::string_view text) {
  const LKBindTypography& type = spec_.typography;
  xml.append("<w:p>").append(styled("Normal")).append("<w:spacing");
  xml.append(numberAttribute("w:after", twipsOfPoints(type.paragraphSpacingPt)));
  xml.append(numberAttribute("w:line", lineUnits(type.lineSpacing)));
  xml.append(" w:lineRule=\"auto\"/>");
  const int indent = std::min(twips(type.firstLineIndentIn), page_.textWidth() / 2);
  if (flow_ == Flow::centered) {
    xml.append("<w:jc w:val=\"center\"/>");
  } else {
    if (indentsNext_ && indent > 0) {
      xml.append("<w:ind").append(numberAttribute("w:firstLine", indent)).append("/>");
    }
    if (type.justifyBody) xml.append("<w:jc w:val=\"both\"/>");
  }
  xml.append("</w:pPr>");
  appendMarkdownRuns(xml, text, {}, sources_);
  xml.append("</w:p>");
  indentsNext_ = true;
}

void BlockWriter::take(std::string& xml, const BodyBlocks::Prose& prose) {
  for (const std::string& line : prose.lines) appendBodyParagraph(xml, line);
}

void BlockWriter::appendQuoteParagraph(std::string& xml, std::string_view text,
                                       const RunFormat& format) {
  xml.append("<w:p>").append(styled("BlockQuote")).append("</w:pPr>");
  appendMarkdownRuns(xml, text, format, sources_);
  xml.append("</w:p>");
}

void BlockWriter::take(std::string& xml, const BodyBlocks::BlockQuote& quote) {
  std::string paragraph;
  const auto flush = [&] {
    if (!paragraph.empty()) appendQuoteParagraph(xml, paragraph, {});
    paragraph.clear();
  };
  for (const std::string& line : quote.lines) {
    const std::string_view trimmed = text::trimmed(line);
    if (const auto admonition = admonitionLine(trimmed)) {
      flush();
      appendQuoteParagraph(xml, admonition->title, {.isBold = true});
      paragraph = admonition->rest;
      continue;
    }
    const bool isItem = trimmed.starts_with("- ") || trimmed.starts_with("* ");
    if (trimmed.empty() || isItem) flush();
    if (trimmed.empty()) continue;
    if (isItem) {
      paragraph = "• " + std::string(trimmed.substr(2));
    } else {
      paragraph.append(paragraph.empty() ? "" : " ").append(trimmed);
      if (line.ends_with("  ")) paragraph.append("<br>");
    }
  }
  flush();
  indentsNext_ = true;
}

// --- Headings ------------------------------------------------------------------------------------

bool BlockWriter::isListed(int level) const {
  const LKBindToc& toc = spec_.frontMatter.tableOfContents;
  const LKBindHeadings& headings = spec_.headings;
  const int depth = level + (hasParts_ ? 1 : 0);
  if (depth > toc.maxDepth || depth > 3) return false;
  return level == 2 ? headings.h2.includeInToc : level == 3 && headings.h3.includeInToc;
}

void BlockWriter::appendHeading(std::string& xml, std::string_view style, std::string_view runs,
                                std::string_view title, int depth, bool isOnNewPage) {
  xml.append("<w:p>").append(styled(style));
  if (isOnNewPage) xml.append("<w:pageBreakBefore/>");
  xml.append("</w:pPr>");
  if (depth == 0 || text::trimmed(title).empty()) {
    xml.append(runs).append("</w:p>");
    return;
  }
  const size_t number = contents_.size() + 1;
  contents_.push_back({std::string(text::trimmed(title)), "_Toc" + std::to_string(number), depth});
  const std::string id = std::to_string(2 * number + 1);  // even ones are footnotes'
  xml.append("<w:bookmarkStart w:id=\"").append(id).append("\" w:name=\"");
  xml.append(contents_.back().bookmark).append("\"/>").append(runs);
  xml.append("<w:bookmarkEnd w:id=\"").append(id).append("\"/></w:p>");
}

void BlockWriter::take(std::string& xml, const BodyBlocks::SubHeading& heading) {
  std::string runs;
  const bool hasStyle = heading.level <= 3;
  appendMarkdownRuns(runs, heading.text, {.isBold = !hasStyle, .isItalic = heading.level > 4},
                     sources_);
  indentsNext_ = false;
  if (!hasStyle) {
    xml.append("<w:p>").append(styled("Normal"));
    xml.append("<w:keepNext/><w:spacing w:before=\"120\" w:after=\"60\"/></w:pPr>");
    xml.append(runs).append("</w:p>");
    return;
  }
  constexpr std::array<std::string_view, 3> kStyles = {"TOCHeading", "Heading2", "Heading3"};
  const int depth = isListed(heading.level) ? heading.level + (hasParts_ ? 1 : 0) : 0;
  appendHeading(xml, kStyles.at(static_cast<size_t>(std::clamp(heading.level, 1, 3) - 1)), runs,
                depth > 0 ? plainText(heading.text) : "", depth, false);
}

// --- Scene breaks --------------------------------------------------------------------------------

void BlockWriter::appendSceneBreak(std::string& xml) {
  const LKBindSceneBreak& scene = spec_.sceneBreak;
  const bool isRule = scene.rendering == LKBindSceneBreakRendering::horizontalRule;
  xml.append("<w:p>").append(styled("Normal")).append("<w:keepNext/>");
  if (isRule) {
    xml.append(
        "<w:pBdr><w:bottom w:val=\"single\" w:sz=\"6\" w:space=\"1\" w:color=\"auto\"/>"
        "</w:pBdr>");
  }
  xml.append("<w:spacing")
      .append(numberAttribute("w:before", twipsOfPoints(scene.spacingBeforePt)));
  xml.append(numberAttribute("w:after", twipsOfPoints(scene.spacingAfterPt)));
  xml.append(" w:line=\"240\" w:lineRule=\"auto\"/>");
  if (isRule) {  // a quarter of the text's width, in its middle
    const int side = page_.textWidth() * 3 / 8;
    xml.append("<w:ind").append(numberAttribute("w:left", side));
    xml.append(numberAttribute("w:right", side)).append("/>");
  }
  xml.append("<w:jc w:val=\"").append(alignmentWord(scene.alignment)).append("\"/></w:pPr>");
  if (scene.rendering == LKBindSceneBreakRendering::centeredText) {
    appendRun(xml, withoutForbidden(scene.text), {});
  }
  xml.append("</w:p>");
  indentsNext_ = false;
}

void BlockWriter::take(std::string& xml, const BodyBlocks::SceneBreak& /*sceneBreak*/) {
  appendSceneBreak(xml);
}

// --- Lists ---------------------------------------------------------------------------------------

int BlockWriter::numberedRun(int64_t start) {
  numberedRuns_.push_back({nextNumId_, start});
  return nextNumId_++;
}

void BlockWriter::appendItems(std::string& xml, const std::vector<DOCXListItem>& items) {
  std::vector<int> numbers;  // the numbered list that is open at each level; 0: none
  for (const DOCXListItem& item : items) {
    numbers.resize(item.level + 1, 0);
    int& number = numbers[item.level];
    if (item.number && number == 0) number = numberedRun(*item.number);
    const int indent = 720 + 360 * static_cast<int>(item.level);
    xml.append("<w:p>").append(styled("ListParagraph"));
    xml.append("<w:numPr><w:ilvl w:val=\"0\"/><w:numId w:val=\"");
    xml.append(std::to_string(item.number ? number : 1)).append("\"/></w:numPr>");
    if (item.level > 0) {
      xml.append("<w:ind").append(numberAttribute("w:left", indent));
      xml.append(" w:hanging=\"360\"/>");
    }
    xml.append("</w:pPr>");
    appendMarkdownRuns(xml, withTaskBox(item.text), {}, sources_);
    xml.append("</w:p>");
  }
  indentsNext_ = true;
}

void BlockWriter::take(std::string& xml, const BodyBlocks::BulletedList& list) {
  appendItems(xml, list.items);
}

void BlockWriter::take(std::string& xml, const BodyBlocks::NumberedList& list) {
  appendItems(xml, list.items);
}

// --- Footnotes -----------------------------------------------------------------------------------

void BlockWriter::take(std::string& /*xml*/, const BodyBlocks::FootnoteDefinition& /*note*/) {}

void BlockWriter::appendLooseNotes(std::string& xml) {
  for (const FootnotePool::Definition* note : notes_.unreferenced()) {
    std::string words = "[" + note->label + "]";
    for (const std::string& line : note->lines) words.append(" ").append(line);
    xml.append("<w:p>").append(styled("FootnoteText")).append("</w:pPr>");
    appendMarkdownRuns(xml, words, {}, {nullptr, &images_});
    xml.append("</w:p>");
  }
}

// --- Tables --------------------------------------------------------------------------------------

void BlockWriter::appendRow(std::string& xml, const BodyBlocks::Table& table, size_t row) {
  const std::vector<std::string>& cells = table.rows[row];
  const size_t columns = table.alignments.size();
  const int width = page_.textWidth() / static_cast<int>(columns);
  const int size = tableCellFontHalfPt(columns, spec_.typography.bodySizePt);
  xml.append("<w:tr><w:trPr><w:cantSplit/>").append(row == 0 ? "<w:tblHeader/>" : "");
  xml.append("</w:trPr>");
  const size_t shown = std::min(cells.size() + 1, columns);  // one for all that are missing
  // A table that a page can hold is not divided between two.
  constexpr size_t kMostRowsKept = 12;
  const bool staysWhole = row + 1 < table.rows.size() && table.rows.size() <= kMostRowsKept;
  for (size_t column = 0; column < shown; ++column) {
    const bool isMissing = column >= cells.size();
    const size_t span = isMissing ? columns - column : 1;
    xml.append("<w:tc><w:tcPr><w:tcW");
    xml.append(numberAttribute("w:w", width * static_cast<long long>(span)));
    xml.append(" w:type=\"dxa\"/>");
    if (span > 1) {
      xml.append("<w:gridSpan").append(numberAttribute("w:val", static_cast<int>(span)));
      xml.append("/>");
    }
    xml.append("</w:tcPr><w:p>").append(styled("Normal")).append(staysWhole ? "<w:keepNext/>" : "");
    xml.append(
        "<w:spacing w:before=\"0\" w:after=\"0\" w:line=\"240\" w:lineRule=\"auto\"/>"
        "<w:ind w:firstLine=\"0\"/><w:jc w:val=\"");
    xml.append(cellAlignment(table.alignments[column])).append("\"/></w:pPr>");
    if (!isMissing) {
      appendMarkdownRuns(xml, cells[column], {.isBold = row == 0, .halfPoints = size}, sources_);
    }
    xml.append("</w:p></w:tc>");
  }
  xml.append("</w:tr>");
}

void BlockWriter::take(std::string& xml, const BodyBlocks::Table& table) {
  const int columns = static_cast<int>(table.alignments.size());
  const int width = page_.textWidth();
  xml.append("<w:tbl><w:tblPr><w:tblW").append(numberAttribute("w:w", width));
  xml.append(" w:type=\"dxa\"/><w:tblBorders>");
  for (const char* side : {"top", "left", "bottom", "right", "insideH", "insideV"}) {
    xml.append("<w:").append(side);
    xml.append(" w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>");
  }
  xml.append(
      "</w:tblBorders><w:tblLayout w:type=\"fixed\"/><w:tblCellMar><w:left w:w=\"80\" "
      "w:type=\"dxa\"/><w:right w:w=\"80\" w:type=\"dxa\"/></w:tblCellMar></w:tblPr>"
      "<w:tblGrid>");
  for (int i = 0; i < columns; ++i) {
    xml.append("<w:gridCol").append(numberAttribute("w:w", width / columns)).append("/>");
  }
  xml.append("</w:tblGrid>");
  for (size_t row = 0; row < table.rows.size(); ++row) appendRow(xml, table, row);
  // Word joins tables that stand next to each other.
  xml.append("</w:tbl><w:p>").append(styled("Normal"));
  xml.append("<w:spacing w:after=\"0\" w:line=\"240\" w:lineRule=\"auto\"/></w:pPr></w:p>");
  indentsNext_ = true;
}

// --- Code, diagrams, pictures --------------------------------------------------------------------

bool BlockWriter::appendDiagram(std::string& xml, const BodyBlocks::CodeBlock& code) {
  if (code.language != "mermaid") return false;
  std::string source;
  for (const std::string& line : code.lines) {
    if (&line != &code.lines.front()) source.push_back('\n');
    source.append(line);
  }
  const auto diagram = diagrams_.find(source);
  const EmbeddedImage* const image =
      diagram == diagrams_.end() ? nullptr : images_.registerPreRendered(source, diagram->second);
  if (image != nullptr) {
    appendPicture(xml, image, "Diagram", {});
    return true;
  }
  xml.append("<w:p>").append(styled("Normal")).append("<w:jc w:val=\"center\"/></w:pPr>");
  appendRun(xml, kNoDiagram, {.isItalic = true});
  xml.append("</w:p>");
  indentsNext_ = true;
  return true;
}

void BlockWriter::take(std::string& xml, const BodyBlocks::CodeBlock& code) {
  if (appendDiagram(xml, code)) return;
  const bool isColoured = spec_.filters.syntaxHighlightCode && code.language;
  for (const std::string& runs : codeRuns(code.lines, isColoured ? *code.language : "")) {
    xml.append("<w:p>").append(styled("CodeBlock")).append("</w:pPr>");
    xml.append(runs).append("</w:p>");
  }
  indentsNext_ = true;
}

void BlockWriter::appendPicture(std::string& xml, const EmbeddedImage* image, std::string_view alt,
                                const LKInlineImage& requested) {
  xml.append("<w:p>").append(styled("Normal"));
  xml.append(
      "<w:keepLines/><w:spacing w:before=\"120\" w:after=\"120\" w:line=\"240\" "
      "w:lineRule=\"auto\"/><w:jc w:val=\"center\"/></w:pPr>");
  if (image != nullptr) {
    xml.append(images_.imageRun(*image, alt, requested));
  } else {
    appendRun(xml, alt, {});
  }
  xml.append("</w:p>");
  indentsNext_ = true;
}

void BlockWriter::take(std::string& xml, const BodyBlocks::Image& block) {
  const EmbeddedImage* const image = images_.registerSource(block.image.reference);
  const bool needsName = image == nullptr && text::trimmed(block.image.alt).empty() &&
                         !block.image.reference.starts_with("data:");
  appendPicture(xml, image, needsName ? block.image.reference : block.image.alt, block.image);
}

}  // namespace lk::word
