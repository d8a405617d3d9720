#include "LKCore/DOCX/PackageParts.h"

#include <set>

#include "LKCore/DOCX/XMLText.h"

namespace lk::word {

namespace {

constexpr std::string_view kWordNamespace =
    "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"";
constexpr std::string_view kOfficeRelationships =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr std::string_view kPageField =
    "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText xml:space=\"preserve\"> PAGE "
    "</w:instrText></w:r><w:r><w:fldChar w:fldCharType=\"separate\"/></w:r><w:r><w:t>1</w:t></w:r>"
    "<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>";

std::string partStart(std::string_view element) {
  std::string xml(kXMLDeclaration);
  return xml.append("<w:").append(element).append(" ").append(kWordNamespace).append(">");
}

void appendOverride(std::string& xml, std::string_view part, std::string_view type) {
  xml.append("<Override PartName=\"/").append(part).append("\" ContentType=\"application/");
  xml.append(type).append("\"/>");
}

void appendWordPart(std::string& xml, std::string_view name, std::string_view kind) {
  appendOverride(
      xml, "word/" + std::string(name) + ".xml",
      "vnd.openxmlformats-officedocument.wordprocessingml." + std::string(kind) + "+xml");
}

void appendRelationship(std::string& xml, std::string_view id, std::string_view kind,
                        std::string_view target) {
  xml.append("<Relationship Id=\"").append(id).append("\" Type=\"").append(kOfficeRelationships);
  xml.append("/").append(kind).append("\" Target=\"").append(target).append("\"/>");
}

std::string relationshipsStart() {
  return std::string(kXMLDeclaration) +
         "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
}

// --- Styles --------------------------------------------------------------------------------------

// Fonts that only one system has, or a list of them, are one that every system knows.
std::string fontName(const std::string& name) {
  const bool isOwn = name.starts_with("-apple-") || name.find(',') != std::string::npos;
  const std::string clean = withoutForbidden(name);
  return isOwn || clean.empty() ? "Helvetica" : escapedXML(clean);
}

std::string fontsElement(const std::string& name) {
  const std::string font = fontName(name);
  return "<w:rFonts w:ascii=\"" + font + "\" w:hAnsi=\"" + font + "\" w:eastAsia=\"" + font +
         "\" w:cs=\"" + font + "\"/>";
}

std::string sizeElements(int halfPoints) {
  const std::string size = std::to_string(halfPoints);
  return "<w:sz w:val=\"" + size + "\"/><w:szCs w:val=\"" + size + "\"/>";
}

struct StyleText {
  std::string_view id;
  std::string_view name;
  std::string_view paragraph;  // within w:pPr
  std::string runs = {};       // within w:rPr
  std::string_view follows = {};
};

void appendParagraphStyle(std::string& xml, const StyleText& style) {
  xml.append("<w:style w:type=\"paragraph\" w:styleId=\"").append(style.id);
  xml.append("\"><w:name w:val=\"").append(style.name);
  xml.append("\"/><w:basedOn w:val=\"Normal\"/>");
  if (!style.follows.empty()) xml.append("<w:next w:val=\"").append(style.follows).append("\"/>");
  xml.append("<w:qFormat/>");
  if (!style.paragraph.empty()) xml.append("<w:pPr>").append(style.paragraph).append("</w:pPr>");
  if (!style.runs.empty()) xml.append("<w:rPr>").append(style.runs).append("</w:rPr>");
  xml.append("</w:style>");
}

void appendReferenceStyle(std::string& xml, std::string_view id, std::string_view name) {
  xml.append("<w:style w:type=\"character\" w:styleId=\"").append(id);
  xml.append("\"><w:name w:val=\"").append(name);
  xml.append("\"/><w:rPr><w:vertAlign w:val=\"superscript\"/></w:rPr></w:style>");
}

}  // namespace

std::string contentTypesXML(const OptionalParts& parts, const std::vector<MediaPart>& media) {
  std::string xml(kXMLDeclaration);
  xml.append(
      "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
      "<Default Extension=\"rels\" "
      "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
      "<Default Extension=\"xml\" ContentType=\"application/xml\"/>");
  std::set<PictureFormat> formats;
  for (const MediaPart& part : media) formats.insert(part.format);
  for (const PictureFormat format : formats) {
    xml.append("<Default Extension=\"").append(extensionOf(format).substr(1));
    xml.append("\" ContentType=\"").append(mediaType(format)).append("\"/>");
  }
  appendWordPart(xml, "document", "document.main");
  appendWordPart(xml, "styles", "styles");
  appendWordPart(xml, "numbering", "numbering");
  appendWordPart(xml, "settings", "settings");
  appendOverride(xml, "docProps/core.xml", "vnd.openxmlformats-package.core-properties+xml");
  appendOverride(xml, "docProps/app.xml",
                 "vnd.openxmlformats-officedocument.extended-properties+xml");
  if (parts.hasHeader) appendWordPart(xml, "header1", "header");
  if (parts.hasFooter) appendWordPart(xml, "footer1", "footer");
  if (parts.hasFootnotes) appendWordPart(xml, "footnotes", "footnotes");
  if (parts.hasEndnotes) appendWordPart(xml, "endnotes", "endnotes");
  return xml.append("</Types>");
}

std::string packageRelationshipsXML() {
  std::string xml = relationshipsStart();
  appendRelationship(xml, "rId1", "officeDocument", "word/document.xml");
  xml.append(
      "<Relationship Id=\"rId2\" "
      "Type=\"http://schemas.openxmlformats.org/package/2006/relationships/metadata/"
      "core-properties\" Target=\"docProps/core.xml\"/>");
  appendRelationship(xml, "rId3", "extended-properties", "docProps/app.xml");
  return xml.append("</Relationships>");
}

std::string documentRelationshipsXML(const OptionalParts& parts,
                                     const std::vector<MediaPart>& media) {
  std::string xml = relationshipsStart();
  appendRelationship(xml, "rId1", "styles", "styles.xml");
  appendRelationship(xml, "rId2", "settings", "settings.xml");
  appendRelationship(xml, "rId3", "numbering", "numbering.xml");
  if (parts.hasHeader) appendRelationship(xml, "rId10", "header", "header1.xml");
  if (parts.hasFooter) appendRelationship(xml, "rId11", "footer", "footer1.xml");
  if (parts.hasFootnotes) appendRelationship(xml, "rId20", "footnotes", "footnotes.xml");
  if (parts.hasEndnotes) appendRelationship(xml, "rId21", "endnotes", "endnotes.xml");
  for (const MediaPart& part : media) {
    appendRelationship(xml, part.relationshipID, "image", part.name);
  }
  return xml.append("</Relationships>");
}

std::string stylesXML(const LKBindSpec& spec, const std::string& language) {
  const LKBindTypography& type = spec.typography;
  const std::string heading = fontsElement(type.headingFont) + "<w:b/>";
  std::string xml = partStart("styles");
  xml.append("<w:docDefaults><w:rPrDefault><w:rPr>").append(fontsElement(type.bodyFont));
  xml.append(sizeElements(halfPoints(type.bodySizePt))).append("<w:lang w:val=\"");
  appendEscaped(xml, language);
  xml.append("\"/></w:rPr></w:rPrDefault><w:pPrDefault><w:pPr><w:spacing w:after=\"0\"");
  xml.append(numberAttribute("w:line", lineUnits(type.lineSpacing)));
  xml.append(
      " w:lineRule=\"auto\"/></w:pPr></w:pPrDefault></w:docDefaults>"
      "<w:style w:type=\"paragraph\" w:default=\"1\" w:styleId=\"Normal\"><w:name "
      "w:val=\"Normal\"/><w:qFormat/></w:style>");
  const int width = pageMeasures(spec.page).textWidth();
  const auto tab = [&](int indent) {
    return "<w:tabs><w:tab w:val=\"right\" w:leader=\"dot\" w:pos=\"" + std::to_string(width) +
           "\"/></w:tabs><w:spacing w:after=\"60\" w:line=\"240\" w:lineRule=\"auto\"/><w:ind" +
           numberAttribute("w:left", indent) + "/>";
  };
  const std::string toc1 = tab(0);
  const std::string toc2 = tab(240);
  const std::string toc3 = tab(480);
  constexpr std::string_view kNoteSpacing = "<w:spacing w:line=\"240\" w:lineRule=\"auto\"/>";
  const std::string noteSize = sizeElements(halfPoints(std::min(type.bodySizePt, 10.0)));
  const std::vector<StyleText> styles = {
      {"ChapterTitle", "Chapter Title",
       "<w:keepNext/><w:keepLines/><w:spacing w:after=\"480\" w:line=\"240\" "
       "w:lineRule=\"auto\"/><w:jc w:val=\"center\"/><w:outlineLvl w:val=\"1\"/>",
       heading + sizeElements(28), "Normal"},
      {"PartTitle", "Part Title",
       "<w:keepNext/><w:keepLines/><w:spacing w:after=\"600\" w:line=\"240\" "
       "w:lineRule=\"auto\"/><w:jc w:val=\"center\"/><w:outlineLvl w:val=\"0\"/>",
       heading + sizeElements(36), "Normal"},
      {"TOCHeading", "TOC Heading",
       "<w:keepNext/><w:spacing w:after=\"240\" w:line=\"240\" w:lineRule=\"auto\"/><w:jc "
       "w:val=\"center\"/>",
       heading + sizeElements(32), "Normal"},
      {"TOC1", "toc 1", toc1},
      {"TOC2", "toc 2", toc2},
      {"TOC3", "toc 3", toc3},
      {"Heading2", "heading 2",
       "<w:keepNext/><w:keepLines/><w:spacing w:before=\"240\" w:after=\"120\" w:line=\"240\" "
       "w:lineRule=\"auto\"/><w:outlineLvl w:val=\"1\"/>",
       heading + sizeElements(28), "Normal"},
      {"Heading3", "heading 3",
       "<w:keepNext/><w:keepLines/><w:spacing w:before=\"180\" w:after=\"80\" w:line=\"240\" "
       "w:lineRule=\"auto\"/><w:outlineLvl w:val=\"2\"/>",
       heading + sizeElements(26), "Normal"},
      {"ListParagraph", "List Paragraph", "<w:ind w:left=\"720\"/><w:contextualSpacing/>"},
      {"BlockQuote", "Block Quote",
       "<w:spacing w:before=\"120\" w:after=\"120\"/><w:ind w:left=\"720\" w:right=\"720\"/>",
       "<w:i/>"},
      {"CodeBlock", "Code Block",
       "<w:spacing w:line=\"240\" w:lineRule=\"auto\"/><w:ind w:left=\"288\"/>",
       fontsElement("Courier New") + sizeElements(20)},
      {"FootnoteText", "footnote text", kNoteSpacing, noteSize},
      {"EndnoteText", "endnote text", kNoteSpacing, noteSize},
  };
  for (const StyleText& style : styles) {
    if (style.id == "EndnoteText") {
      appendReferenceStyle(xml, "FootnoteReference", "footnote reference");
    }
    appendParagraphStyle(xml, style);
  }
  appendReferenceStyle(xml, "EndnoteReference", "endnote reference");
  return xml.append("</w:styles>");
}

std::string numberingXML(const std::vector<NumberedRun>& runs) {
  std::string xml = partStart("numbering");
  const auto appendAbstract = [&](std::string_view id, std::string_view format,
                                  std::string_view text, std::string_view font) {
    xml.append("<w:abstractNum w:abstractNumId=\"").append(id);
    xml.append(
        "\"><w:multiLevelType w:val=\"singleLevel\"/><w:lvl w:ilvl=\"0\"><w:start "
        "w:val=\"1\"/><w:numFmt w:val=\"");
    xml.append(format).append("\"/><w:lvlText w:val=\"").append(text);
    xml.append(
        "\"/><w:lvlJc w:val=\"left\"/><w:pPr><w:ind w:left=\"720\" "
        "w:hanging=\"360\"/></w:pPr>");
    xml.append(font).append("</w:lvl></w:abstractNum>");
  };
  appendAbstract(
      "0", "bullet", "•",
      "<w:rPr><w:rFonts w:ascii=\"Symbol\" w:hAnsi=\"Symbol\" w:hint=\"default\"/></w:rPr>");
  appendAbstract("1", "decimal", "%1.", "");
  xml.append("<w:num w:numId=\"1\"><w:abstractNumId w:val=\"0\"/></w:num>");
  if (runs.empty()) xml.append("<w:num w:numId=\"2\"><w:abstractNumId w:val=\"1\"/></w:num>");
  for (const NumberedRun& run : runs) {
    xml.append("<w:num").append(numberAttribute("w:numId", run.numId));
    xml.append("><w:abstractNumId w:val=\"1\"/><w:lvlOverride w:ilvl=\"0\"><w:startOverride");
    xml.append(numberAttribute("w:val", run.start)).append("/></w:lvlOverride></w:num>");
  }
  return xml.append("</w:numbering>");
}

std::string settingsXML(const LKBindSpec& spec, const OptionalParts& parts) {
  std::string xml = partStart("settings");
  xml.append("<w:zoom w:percent=\"100\"/><w:defaultTabStop w:val=\"720\"/>");
  if (spec.typography.justifyBody) xml.append("<w:autoHyphenation/>");
  xml.append("<w:characterSpacingControl w:val=\"doNotCompress\"/>");
  const auto appendNotes = [&](std::string_view kind, std::string_view place,
                               std::string_view format, std::string_view restart, bool hasPart) {
    xml.append("<w:").append(kind).append("Pr><w:pos w:val=\"").append(place);
    xml.append("\"/><w:numFmt w:val=\"").append(format);
    xml.append("\"/><w:numStart w:val=\"1\"/><w:numRestart w:val=\"").append(restart);
    xml.append("\"/>");
    for (const char* id : {"0", "1"}) {
      if (hasPart) xml.append("<w:").append(kind).append(" w:id=\"").append(id).append("\"/>");
    }
    xml.append("</w:").append(kind).append("Pr>");
  };
  switch (spec.filters.footnotePlacement) {
    case LKBindFootnotePlacement::perPage:
      appendNotes("footnote", "pageBottom", "decimal", "continuous", parts.hasFootnotes);
      break;
    case LKBindFootnotePlacement::endOfBook:
      appendNotes("endnote", "docEnd", "lowerRoman", "continuous", parts.hasEndnotes);
      break;
    case LKBindFootnotePlacement::endOfChapter:
      appendNotes("endnote", "sectEnd", "decimal", "eachSect", parts.hasEndnotes);
      break;
  }
  xml.append(
      "<w:compat><w:compatSetting w:name=\"compatibilityMode\" "
      "w:uri=\"http://schemas.microsoft.com/office/word\" w:val=\"15\"/></w:compat>");
  return xml.append("</w:settings>");
}

std::string headerXML(const BookNames& names) {
  std::string words;
  if (!names.author.empty()) words.append(names.author).append(" / ");
  if (!names.title.empty()) words.append(names.title).append(" / ");
  std::string xml = partStart("hdr");
  xml.append("<w:p><w:pPr><w:pStyle w:val=\"Normal\"/><w:jc w:val=\"right\"/></w:pPr>");
  appendRun(xml, words, {});
  return xml.append(kPageField).append("</w:p></w:hdr>");
}

std::string footerXML() {
  std::string xml = partStart("ftr");
  xml.append("<w:p><w:pPr><w:pStyle w:val=\"Normal\"/><w:jc w:val=\"center\"/></w:pPr>");
  return xml.append(kPageField).append("</w:p></w:ftr>");
}

std::string notesXML(const FootnotePool& notes) {
  const std::string kind = notes.areEndnotes() ? "endnote" : "footnote";
  const std::string style = notes.areEndnotes() ? "Endnote" : "Footnote";
  std::string xml = partStart(kind + "s");
  const auto appendSeparator = [&](std::string_view id, std::string_view name) {
    xml.append("<w:").append(kind).append(" w:type=\"").append(name).append("\" w:id=\"");
    xml.append(id).append(
        "\"><w:p><w:pPr><w:spacing w:after=\"0\" w:line=\"240\" "
        "w:lineRule=\"auto\"/></w:pPr><w:r><w:");
    xml.append(name).append("/></w:r></w:p></w:").append(kind).append(">");
  };
  appendSeparator("0", "separator");
  appendSeparator("1", "continuationSeparator");
  for (const FootnoteBody& body : notes.bodies()) {
    xml.append("<w:").append(kind).append(numberAttribute("w:id", body.id)).append(">");
    bool isFirst = true;
    for (const std::string& line : body.lines) {
      xml.append("<w:p><w:pPr><w:pStyle w:val=\"").append(style).append("Text\"/></w:pPr>");
      if (isFirst) {
        xml.append("<w:r><w:rPr><w:rStyle w:val=\"").append(style);
        xml.append("Reference\"/></w:rPr><w:").append(kind).append("Ref/></w:r>");
        appendRun(xml, " ", {});
      }
      appendMarkdownRuns(xml, line, {}, {});
      xml.append("</w:p>");
      isFirst = false;
    }
    xml.append("</w:").append(kind).append(">");
  }
  return xml.append("</w:").append(kind).append("s>");
}

std::string corePropertiesXML(const BookNames& names, Instant date) {
  const std::string time = formatISO8601({date.seconds, 0});
  std::string xml(kXMLDeclaration);
  xml.append(
      "<cp:coreProperties "
      "xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/core-properties\" "
      "xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
      "xmlns:dcterms=\"http://purl.org/dc/terms/\" "
      "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"><dc:title>");
  appendEscaped(xml, names.title);
  xml.append("</dc:title>");
  if (!names.author.empty()) {
    xml.append("<dc:creator>").append(escapedXML(names.author)).append("</dc:creator>");
  }
  xml.append("<dc:language>").append(escapedXML(names.language)).append("</dc:language>");
  for (const char* kind : {"created", "modified"}) {
    xml.append("<dcterms:").append(kind).append(" xsi:type=\"dcterms:W3CDTF\">").append(time);
    xml.append("</dcterms:").append(kind).append(">");
  }
  return xml.append("</cp:coreProperties>");
}

std::string appPropertiesXML() {
  return std::string(kXMLDeclaration) +
         "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/"
         "extended-properties\"><Application>Larkspire</Application></Properties>";
}

}  // namespace lk::word
