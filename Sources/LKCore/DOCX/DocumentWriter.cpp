#include "LKCore/DOCX/DocumentWriter.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/DOCX/XMLText.h"

namespace lk::word {

namespace {

constexpr std::string_view kDocumentStart =
    "<w:document xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
    "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\" "
    "xmlns:wp=\"http://schemas.openxmlformats.org/drawingml/2006/wordprocessingDrawing\" "
    "xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
    "xmlns:pic=\"http://schemas.openxmlformats.org/drawingml/2006/picture\"><w:body>";
constexpr std::string_view kPlaceholder =
    "Right-click and choose Update Field to populate the contents.";
constexpr int kChapterDrop = 6;  // empty lines above a chapter's title
constexpr int kPartDrop = 10;

bool isFrontPiece(const BookPiece& piece) {
  return piece.kind == BookPiece::Kind::titlePage || piece.kind == BookPiece::Kind::front;
}

void appendField(std::string& xml, std::string_view type, std::string_view more = {}) {
  xml.append("<w:r><w:fldChar w:fldCharType=\"").append(type).append("\"").append(more);
  xml.append("/></w:r>");
}

void appendInstruction(std::string& xml, std::string_view instruction) {
  xml.append("<w:r><w:instrText xml:space=\"preserve\"> ").append(instruction);
  xml.append(" </w:instrText></w:r>");
}

}  // namespace

DocumentWriter::DocumentWriter(const LKBindSpec& spec, BlockWriter& blocks, FootnotePool& notes)
    : spec_(spec), blocks_(blocks), notes_(notes), page_(pageMeasures(spec.page)) {}

std::string DocumentWriter::documentXML(const std::vector<BookPiece>& pieces,
                                        const GeneratedTitlePage& titlePage) {
  std::vector<std::vector<BodyBlock>> blocks;
  size_t length = 0;
  bool hasParts = false;
  for (const BookPiece& piece : pieces) {
    blocks.push_back(LKBindDOCXBuilder::parseBodyBlocks(withoutForbidden(piece.body),
                                                        spec_.filters.paragraphStyle));
    for (const BodyBlock& block : blocks.back()) {
      const auto* const note = std::get_if<BodyBlocks::FootnoteDefinition>(&block);
      if (note != nullptr) notes_.define(note->label, note->lines);
    }
    length += piece.body.size();
    hasParts = hasParts || piece.kind == BookPiece::Kind::part;
  }
  blocks_.setHasParts(hasParts);
  xml_.reserve(length * 4);
  xml_.append(kXMLDeclaration).append(kDocumentStart);
  const size_t start = xml_.size();
  const bool hasTitleNote = !pieces.empty() && pieces[0].kind == BookPiece::Kind::titlePage;
  if (!hasTitleNote) addTitlePage(titlePage);
  size_t i = 0;
  for (; i < pieces.size() && isFrontPiece(pieces[i]); ++i) addFront(pieces[i], blocks[i]);
  const bool hasContents = spec_.frontMatter.tableOfContents.include;
  if (hasContents && xml_.size() > start) breakPage();
  const size_t contents = xml_.size();
  needsPage_ = needsPage_ || hasContents;
  for (; i < pieces.size(); ++i) {
    if (isFrontPiece(pieces[i])) {
      addFront(pieces[i], blocks[i]);
    } else {
      addMain(pieces[i], blocks[i]);
    }
  }
  blocks_.appendLooseNotes(xml_);
  if (xml_.size() == start) xml_.append("<w:p/>");
  if (hasContents) xml_.insert(contents, contentsXML());
  return xml_.append(sectionProperties()).append("</w:body></w:document>");
}

// --- Front matter --------------------------------------------------------------------------------

void DocumentWriter::addTitlePage(const GeneratedTitlePage& titlePage) {
  int drop = page_.textHeight() / 3;  // above the first line
  const auto append = [&](const std::string& words, int size, bool isBold) {
    if (text::trimmed(words).empty()) return;
    // No entry of the contents, though the style is that of chapters.
    xml_.append("<w:p><w:pPr><w:pStyle w:val=\"ChapterTitle\"/><w:spacing");
    xml_.append(numberAttribute("w:before", std::exchange(drop, 0)));
    xml_.append("/><w:jc w:val=\"").append(alignmentWord(spec_.frontMatter.titlePage.alignment));
    xml_.append("\"/><w:outlineLvl w:val=\"9\"/></w:pPr>");
    RunFormat format{.isBold = isBold, .halfPoints = size};
    appendRun(xml_, words, format);
    xml_.append("</w:p>");
    needsPage_ = true;
  };
  append(titlePage.title, 48, true);
  append(titlePage.subtitle, 32, false);
  append(titlePage.author, 28, false);
}

void DocumentWriter::addFront(const BookPiece& piece, const std::vector<BodyBlock>& blocks) {
  beginPiece(piece);
  breakPage();
  const bool isTitlePage = piece.kind == BookPiece::Kind::titlePage;
  if (isTitlePage) {
    xml_.append("<w:p><w:pPr><w:pStyle w:val=\"Normal\"/><w:spacing");
    xml_.append(numberAttribute("w:before", page_.textHeight() / 4)).append("/></w:pPr></w:p>");
  }
  blocks_.append(xml_, blocks, isTitlePage ? BlockWriter::Flow::centered : BlockWriter::Flow::body);
  needsPage_ = true;
}

// The page break is a paragraph of its own.
void DocumentWriter::breakPage() {
  if (!std::exchange(needsPage_, false)) return;
  xml_.append(
      "<w:p><w:pPr><w:pStyle w:val=\"Normal\"/></w:pPr><w:r><w:br w:type=\"page\"/></w:r>"
      "</w:p>");
}

// --- Contents ------------------------------------------------------------------------------------

std::string DocumentWriter::contentsXML() const {
  const std::string& wanted = spec_.frontMatter.tableOfContents.title;
  const bool isUsual = wanted == LKBindToc().title || text::trimmed(wanted).empty();
  std::string xml = "<w:p><w:pPr><w:pStyle w:val=\"TOCHeading\"/></w:pPr>";
  appendRun(xml, isUsual ? "Table of Contents" : withoutForbidden(wanted), {});
  xml.append(
      "</w:p><w:sdt><w:sdtPr><w:docPartObj><w:docPartGallery w:val=\"Table of "
      "Contents\"/><w:docPartUnique/></w:docPartObj></w:sdtPr><w:sdtContent>");
  const auto& entries = blocks_.contents();
  bool isFirst = true;
  const auto begin = [&](int depth) {
    xml.append("<w:p><w:pPr><w:pStyle w:val=\"TOC").append(std::to_string(depth));
    xml.append("\"/></w:pPr>");
    if (!std::exchange(isFirst, false)) return;
    appendField(xml, "begin", " w:dirty=\"true\"");
    appendInstruction(xml, "TOC \\o &quot;1-3&quot; \\h \\z \\u");
    appendField(xml, "separate");
  };
  for (const ContentsEntry& entry : entries) {
    begin(entry.depth);
    xml.append("<w:hyperlink w:anchor=\"").append(entry.bookmark).append("\" w:history=\"1\">");
    appendRun(xml, entry.title + "\t", {});
    appendField(xml, "begin", " w:dirty=\"true\"");
    appendInstruction(xml, "PAGEREF " + entry.bookmark + " \\h");
    appendField(xml, "separate");
    appendField(xml, "end");
    xml.append("</w:hyperlink></w:p>");
  }
  if (entries.empty()) {
    begin(1);
    appendRun(xml, kPlaceholder, {});
    xml.append("</w:p>");
  }
  xml.append("<w:p><w:pPr><w:pStyle w:val=\"Normal\"/></w:pPr>");
  appendField(xml, "end");
  return xml.append("</w:p></w:sdtContent></w:sdt>");
}

// --- The book ------------------------------------------------------------------------------------

// Ends what stands before the piece: its page, and its section where footnotes end with chapters.
void DocumentWriter::beginPiece(const BookPiece& piece) {
  const bool isSectioned =
      spec_.filters.footnotePlacement == LKBindFootnotePlacement::endOfChapter &&
      !isFrontPiece(piece) && piece.kind != BookPiece::Kind::scene;
  const bool hasText = !xml_.ends_with("<w:body>");
  needsPage_ = needsPage_ || (piece.isOnNewPage && hasText);
  if (isSectioned && hasText) {
    closeSection(needsPage_);
    needsPage_ = false;
  }
}

void DocumentWriter::addMain(const BookPiece& piece, const std::vector<BodyBlock>& blocks) {
  beginPiece(piece);
  const bool isHeaded =
      piece.kind == BookPiece::Kind::part || piece.kind == BookPiece::Kind::chapter;
  if (isHeaded) {
    addHeading(piece);
  } else {
    breakPage();
    if (piece.isAfterScene) blocks_.appendSceneBreak(xml_);
  }
  blocks_.append(xml_, blocks);
}

// A page that begins with the drop cannot leave an empty page before it, as a paragraph with a
// break at the foot of a full page would.
void DocumentWriter::addHeading(const BookPiece& piece) {
  const bool isPart = piece.kind == BookPiece::Kind::part;
  bool breaks = std::exchange(needsPage_, false);
  const int drop = isPart ? kPartDrop : kChapterDrop;
  for (int i = 0; piece.isOnNewPage && i < drop; ++i) {
    xml_.append("<w:p><w:pPr><w:pStyle w:val=\"Normal\"/>");
    xml_.append(std::exchange(breaks, false) ? "<w:pageBreakBefore/>" : "")
        .append("</w:pPr></w:p>");
  }
  const std::string words = LKBindAssembler::headingWords(withoutForbidden(piece.heading));
  std::string runs;
  appendRun(runs, words, {});
  const bool isListed = (isPart ? spec_.headings.part : spec_.headings.h1).includeInToc ||
                        !spec_.frontMatter.tableOfContents.include;
  const int depth = isPart || !blocks_.hasParts() ? 1 : 2;
  const bool isDeep = depth > std::max<int64_t>(1, spec_.frontMatter.tableOfContents.maxDepth);
  blocks_.appendHeading(xml_, isPart ? "PartTitle" : "ChapterTitle", runs,
                        text::replacingAll(words, "\n", " "), isListed && !isDeep ? depth : 0,
                        breaks);
}

// --- Sections ------------------------------------------------------------------------------------

void DocumentWriter::closeSection(bool nextIsOnNewPage) {
  // Hardly any height, so that it never makes a page of its own.
  xml_.append(
      "<w:p><w:pPr><w:pStyle w:val=\"Normal\"/><w:spacing w:before=\"0\" w:after=\"0\" "
      "w:line=\"20\" w:lineRule=\"exact\"/>");
  xml_.append(sectionProperties()).append("</w:pPr></w:p>");
  isFirstSection_ = false;
  isSectionOnNewPage_ = nextIsOnNewPage;
  notes_.beginSection();
}

std::string DocumentWriter::sectionProperties() const {
  const LKBindHeaderFooter& running = spec_.headerFooter;
  std::string xml = "<w:sectPr>";
  if (running.style == LKBindHeaderFooterStyle::agentSubmission) {
    xml.append("<w:headerReference w:type=\"default\" r:id=\"rId10\"/>");
  } else if (running.style == LKBindHeaderFooterStyle::publishedBook) {
    xml.append("<w:footerReference w:type=\"default\" r:id=\"rId11\"/>");
  }
  if (!isSectionOnNewPage_) xml.append("<w:type w:val=\"continuous\"/>");
  xml.append("<w:pgSz").append(numberAttribute("w:w", page_.width));
  xml.append(numberAttribute("w:h", page_.height));
  if (spec_.page.orientation == LKBindOrientation::landscape) {
    xml.append(" w:orient=\"landscape\"");
  }
  xml.append("/><w:pgMar").append(numberAttribute("w:top", page_.top));
  xml.append(numberAttribute("w:right", page_.right));
  xml.append(numberAttribute("w:bottom", page_.bottom));
  xml.append(numberAttribute("w:left", page_.left));
  xml.append(" w:header=\"720\" w:footer=\"720\" w:gutter=\"0\"/>");
  if (running.pageNumberStyle != LKBindPageNumberStyle::arabic) {
    const bool isLower = running.pageNumberStyle == LKBindPageNumberStyle::romanLower;
    xml.append("<w:pgNumType w:fmt=\"").append(isLower ? "lowerRoman" : "upperRoman");
    xml.append("\"/>");
  }
  xml.append("<w:cols w:space=\"708\"/>");
  if (isFirstSection_ && running.firstPageBlank) xml.append("<w:titlePg/>");
  return xml.append("<w:docGrid w:linePitch=\"360\"/></w:sectPr>");
}

}  // namespace lk::word
