#include "LKCore/DOCX/DocumentRuns.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/DOCX/XMLText.h"
#include "LKCore/Rendering/MarkdownInlines.h"
#include "LKCore/Rendering/NextPlace.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::word {

namespace {

// --- The dialect of notes, as HTML that the Markdown reader lets through -------------------------

// No text can hold it: control characters were taken out of the notes.
constexpr std::string_view kNoteTag = "<i title=\"\x01";
constexpr size_t kLongestLabel = 1000;  // bytes

// Calls `plain(from, to)` for every stretch of a line outside of code, copies code as it is.
template <typename Plain>
std::string outsideOfCode(std::string_view line, const Plain& plain) {
  if (line.find('`') == std::string_view::npos) return plain(line);
  std::string result;
  size_t copied = 0;
  for (const TextRange& span : LKInlineImageParser::codeSpans(line)) {
    result.append(plain(line.substr(copied, span.start - copied))).append(span.of(line));
    copied = span.end;
  }
  return result.append(plain(line.substr(copied)));
}

// "==words==" as "<mark>words</mark>".
std::string withMarks(std::string_view text, char sign) {
  const char pair[] = {sign, sign};
  const std::string_view mark(pair, 2);
  std::string result;
  size_t copied = 0;
  for (size_t open = text.find(mark); open != std::string_view::npos;) {
    const size_t close = text.find(sign, open + 2);
    if (close == std::string_view::npos) break;
    if (close > open + 2 && text.substr(close).starts_with(mark)) {
      result.append(text.substr(copied, open - copied)).append("<mark>");
      result.append(text.substr(open + 2, close - open - 2)).append("</mark>");
      copied = close + 2;
      open = text.find(mark, copied);
    } else {
      open = text.find(mark, close > open + 2 ? close : open + 1);
    }
  }
  return result.append(text.substr(copied));
}

// A title as text that the Markdown reader makes nothing of.
void appendPlainMarkdown(std::string& markdown, std::string_view title) {
  for (const char c : title) {
    if (std::string_view("\\`*_~[]<>&!@:.").find(c) != std::string_view::npos) {
      markdown.push_back('\\');
    }
    markdown.push_back(c);
  }
}

std::string withTitles(std::string_view text) {
  std::string result;
  size_t copied = 0;
  for (auto link = LKMarkdownToHTML::nextWikiLink(text, 0); link;
       link = LKMarkdownToHTML::nextWikiLink(text, copied)) {
    result.append(text.substr(copied, link->range.start - copied));
    appendPlainMarkdown(result, link->title);
    copied = link->range.end;
  }
  return result.append(text.substr(copied));
}

std::string withNotes(std::string_view text, const FootnotePool& notes) {
  std::string result;
  size_t copied = 0;
  NextPlace closes(text, "]");
  for (size_t open = text.find("[^"); open != std::string_view::npos;
       open = text.find("[^", std::max(open + 2, copied))) {
    const size_t close = closes.from(open + 2);
    if (close == std::string_view::npos) break;
    const std::string_view label = text.substr(open + 2, close - open - 2);
    if (label.size() > kLongestLabel || label.find_first_of("\"\n") != label.npos ||
        !notes.isDefined(label)) {
      continue;
    }
    result.append(text.substr(copied, open - copied)).append(kNoteTag).append(label).append("\">");
    copied = close + 1;
  }
  return result.append(text.substr(copied));
}

std::string dialectAsHTML(std::string_view line, const FootnotePool* notes) {
  const auto holds = [&](std::string_view part) { return line.find(part) != line.npos; };
  const bool hasMarks = holds("==") || holds("::");
  const bool hasLinks = holds("[[");
  const bool hasNotes = notes != nullptr && holds("[^");
  if (!hasMarks && !hasLinks && !hasNotes) return std::string(line);
  return outsideOfCode(line, [&](std::string_view text) {
    std::string result(text);
    if (hasMarks) result = withMarks(withMarks(result, '='), ':');
    if (hasLinks) result = withTitles(result);
    if (hasNotes) result = withNotes(result, *notes);
    return result;
  });
}

// --- HTML within a line --------------------------------------------------------------------------

struct InlineTag {
  std::string name;  // in lower case
  bool isClosing = false;
};

std::optional<InlineTag> inlineTag(std::string_view html) {
  if (!html.starts_with('<') || html.size() < 3) return std::nullopt;
  InlineTag tag;
  tag.isClosing = html[1] == '/';
  const size_t start = tag.isClosing ? 2 : 1;
  const size_t end = html.find_first_of(" \t\n/>", start);
  if (end == std::string_view::npos) return std::nullopt;
  tag.name = text::lowercased(html.substr(start, end - start));
  return tag;
}

// Tags that say something a run cannot show; what they hold stays.
constexpr std::string_view kPassedTags =
    " a abbr address article aside bdi bdo big blockquote button caption center cite col colgroup "
    "data dd details dfn div dl dt figcaption figure font footer form h1 h2 h3 h4 h5 h6 header hr "
    "label li main nav ol p picture pre q rp rt ruby section small source span summary table tbody "
    "td tfoot th thead time tr ul var wbr ";

// Values of attributes with their references as characters, which Markdown leaves in HTML.
std::string attributeIn(std::string_view tag, std::string_view name) {
  const std::string wanted = " " + std::string(name) + "=";
  const size_t start = tag.find(wanted);
  if (start == std::string_view::npos) return {};
  const size_t quote = start + wanted.size();
  if (quote >= tag.size() || (tag[quote] != '"' && tag[quote] != '\'')) return {};
  const size_t end = tag.find(tag[quote], quote + 1);
  if (end == std::string_view::npos) return {};
  return text::replacingAll(tag.substr(quote + 1, end - quote - 1), "&amp;", "&");
}

// --- Links ---------------------------------------------------------------------------------------

// The address as a field may hold it; empty for what no reader should follow from a book.
std::string safeAddress(std::string_view address) {
  constexpr size_t kLongestAddress = 2000;  // Word's limit is 2083 characters
  const std::string start = text::lowercased(address.substr(0, 8));
  const bool isKnown =
      start.starts_with("http://") || start.starts_with("https://") || start.starts_with("mailto:");
  if (!isKnown || address.size() > kLongestAddress) return {};
  std::string result;
  for (const char c : address) {
    if (c == '"') {
      result.append("%22");
    } else if (c == '\\') {
      result.append("%5C");
    } else if (c == ' ') {
      result.append("%20");
    } else if (static_cast<unsigned char>(c) > 0x20) {
      result.push_back(c);
    }
  }
  return result;
}

class RunWriter {
 public:
  RunWriter(std::string& xml, const RunFormat& base, const RunSources& sources)
      : xml_(xml), base_(base), sources_(sources) {}

  void write(const std::vector<MarkdownInline>& inlines) {
    for (const MarkdownInline& part : inlines) {
      moveToLink(part.link);
      take(part);
    }
    moveToLink("");
  }

 private:
  void take(const MarkdownInline& part) {
    switch (part.kind) {
      case MarkdownInline::Kind::text:
        appendRun(xml_, part.text, formatOf(part),
                  code_ > 0 ? RunFont::monospace : RunFont::paragraph);
        break;
      case MarkdownInline::Kind::code:
        appendRun(xml_, part.text, formatOf(part), RunFont::monospace);
        break;
      case MarkdownInline::Kind::lineBreak:
        xml_.append("<w:r><w:br/></w:r>");
        break;
      case MarkdownInline::Kind::image:
        takeImage(part);
        break;
      case MarkdownInline::Kind::html:
        takeHTML(part);
        break;
    }
  }

  RunFormat formatOf(const MarkdownInline& part) const {
    RunFormat format = base_;
    format.isBold = format.isBold || part.isStrong || bold_ > 0;
    format.isItalic = format.isItalic || part.isEmphasized || italic_ > 0;
    format.isStruck = format.isStruck || part.isDeleted || struck_ > 0;
    format.isHighlighted = format.isHighlighted || highlighted_ > 0;
    format.isUnderlined = format.isUnderlined || underlined_ > 0 || !link_.empty();
    format.isRaised = raised_ > 0;
    format.isLowered = lowered_ > 0 && raised_ == 0;
    if (!link_.empty() && format.colour.empty()) format.colour = "1c4fa0";
    return format;
  }

  void takeImage(const MarkdownInline& part) {
    const auto qualifiers = LKInlineImageParser::splitQualifiers(part.text);
    const auto sized = LKInlineImageParser::splitSizeFragment(part.source);
    LKInlineImage requested;
    requested.requestedWidth = qualifiers.width ? qualifiers.width : sized.width;
    requested.requestedHeight = qualifiers.height ? qualifiers.height : sized.height;
    const EmbeddedImage* const image =
        sources_.images != nullptr ? sources_.images->registerSource(sized.reference) : nullptr;
    if (image != nullptr) {
      xml_.append(sources_.images->imageRun(*image, qualifiers.alt, requested));
    } else {
      appendRun(xml_, qualifiers.alt, formatOf(part));
    }
  }

  void takeHTML(const MarkdownInline& part) {
    const std::string_view html = part.text;
    if (html.starts_with(kNoteTag)) {
      const std::string_view label =
          html.substr(kNoteTag.size(), html.size() - kNoteTag.size() - 2);
      if (sources_.notes != nullptr) xml_.append(sources_.notes->reference(label));
      return;
    }
    if (html.starts_with("<!--")) return;
    const auto tag = inlineTag(html);
    if (!tag) return appendRun(xml_, html, formatOf(part));
    if (tag->name == "br") {
      xml_.append("<w:r><w:br/></w:r>");
    } else if (tag->name == "img") {
      MarkdownInline image = part;
      image.text = attributeIn(html, "alt");
      image.source = attributeIn(html, "src");
      takeImage(image);
    } else if (int* const depth = depthOf(tag->name)) {
      *depth = std::max(0, *depth + (tag->isClosing ? -1 : 1));
    } else if (kPassedTags.find(" " + tag->name + " ") == std::string_view::npos) {
      appendRun(xml_, html, formatOf(part));
    }
  }

  int* depthOf(std::string_view name) {
    if (name == "b" || name == "strong") return &bold_;
    if (name == "i" || name == "em") return &italic_;
    if (name == "s" || name == "del" || name == "strike") return &struck_;
    if (name == "u" || name == "ins") return &underlined_;
    if (name == "mark") return &highlighted_;
    if (name == "sup") return &raised_;
    if (name == "sub") return &lowered_;
    if (name == "code" || name == "kbd" || name == "samp" || name == "tt") return &code_;
    return nullptr;
  }

  // A field rather than a relationship: it may stand in a footnote's part too.
  void moveToLink(const std::string& target) {
    const std::string address = safeAddress(target);
    if (address == link_) return;
    if (!link_.empty()) xml_.append("<w:r><w:fldChar w:fldCharType=\"end\"/></w:r>");
    link_ = address;
    if (link_.empty()) return;
    xml_.append(
        "<w:r><w:fldChar w:fldCharType=\"begin\"/></w:r><w:r><w:instrText "
        "xml:space=\"preserve\"> HYPERLINK \"");
    appendEscaped(xml_, link_);
    xml_.append("\" </w:instrText></w:r><w:r><w:fldChar w:fldCharType=\"separate\"/></w:r>");
  }

  std::string& xml_;
  RunFormat base_;
  RunSources sources_;
  std::string link_;  // the open one
  int bold_ = 0;
  int italic_ = 0;
  int struck_ = 0;
  int highlighted_ = 0;
  int underlined_ = 0;
  int raised_ = 0;
  int lowered_ = 0;
  int code_ = 0;
};

void appendFormat(std::string& xml, const RunFormat& format, RunFont font) {
  std::string own;
  if (font == RunFont::monospace) {
    own.append("<w:rFonts w:ascii=\"Courier New\" w:hAnsi=\"Courier New\" w:cs=\"Courier New\"/>");
  }
  if (format.isBold) own.append("<w:b/>");
  if (format.isItalic) own.append("<w:i/>");
  if (format.isStruck) own.append("<w:strike/>");
  if (!format.colour.empty()) own.append("<w:color w:val=\"").append(format.colour).append("\"/>");
  if (format.halfPoints > 0) {
    const std::string size = std::to_string(format.halfPoints);
    own.append("<w:sz w:val=\"").append(size).append("\"/><w:szCs w:val=\"");
    own.append(size).append("\"/>");
  }
  if (format.isHighlighted) own.append("<w:highlight w:val=\"yellow\"/>");
  if (format.isUnderlined) own.append("<w:u w:val=\"single\"/>");
  if (format.isRaised) own.append("<w:vertAlign w:val=\"superscript\"/>");
  if (format.isLowered) own.append("<w:vertAlign w:val=\"subscript\"/>");
  if (!own.empty()) xml.append("<w:rPr>").append(own).append("</w:rPr>");
}

}  // namespace

void appendRun(std::string& xml, std::string_view text, const RunFormat& format, RunFont font) {
  if (text.empty()) return;
  xml.append("<w:r>");
  appendFormat(xml, format, font);
  while (!text.empty()) {
    const size_t end = std::min(text.find_first_of("\t\n"), text.size());
    if (end > 0) {
      xml.append("<w:t xml:space=\"preserve\">");
      appendEscaped(xml, text.substr(0, end));
      xml.append("</w:t>");
    }
    if (end < text.size()) xml.append(text[end] == '\t' ? "<w:tab/>" : "<w:br/>");
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  xml.append("</w:r>");
}

void appendMarkdownRuns(std::string& xml, std::string_view line, const RunFormat& format,
                        const RunSources& sources) {
  RunWriter(xml, format, sources).write(markdownInlines(dialectAsHTML(line, sources.notes)));
}

std::string plainText(std::string_view line) {
  std::string words;
  for (const MarkdownInline& part : markdownInlines(dialectAsHTML(line, nullptr))) {
    const bool isHTML = part.kind == MarkdownInline::Kind::html;
    const auto tag = isHTML ? inlineTag(part.text) : std::nullopt;
    const bool breaks = part.kind == MarkdownInline::Kind::lineBreak || (tag && tag->name == "br");
    if (breaks) words.push_back(' ');
    if (part.kind == MarkdownInline::Kind::text || part.kind == MarkdownInline::Kind::code) {
      words.append(part.text);
    }
  }
  return words;
}

}  // namespace lk::word
