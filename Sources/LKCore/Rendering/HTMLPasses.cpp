#include "LKCore/Rendering/HTMLPasses.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/LKInlineImage.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

constexpr std::string_view kSource = "src=\"";
constexpr std::string_view kAlt = "alt=\"";

bool isAnything(std::string_view /*value*/) {
  return true;
}

bool isNotEmpty(std::string_view value) {
  return !value.empty();
}

bool isOfTheWeb(std::string_view source) {
  const std::string start = text::lowercased(source.substr(0, std::string_view("https://").size()));
  return start.starts_with("http://") || start.starts_with("https://");
}

bool isOutside(std::string_view source) {
  return isOfTheWeb(source) || source.starts_with("data:");
}

std::string pixels(double points) {
  return std::to_string(std::llround(points)) + "px;";
}

// Empty without a size.
std::string sizeStyle(std::optional<double> width, std::optional<double> height) {
  if (width && height) return "max-width:" + pixels(*width) + "max-height:" + pixels(*height);
  if (width) return "max-width:" + pixels(*width) + "max-height:none;";
  if (height) return "max-height:" + pixels(*height) + "max-width:none;";
  return {};
}

// What stands between an attribute and the end of the tag, without the slash that ends it.
std::string_view attributesBehind(const html::TagMatch& tag, std::string_view html) {
  std::string_view rest = html::trimmed(tag.after.of(html));
  if (rest.ends_with('/')) rest.remove_suffix(1);
  return html::trimmed(rest);
}

std::string withSizesFromAlts(std::string_view cell) {
  return html::rewriteImages(
      cell, kAlt, isAnything, [&](const html::TagMatch& tag) -> std::optional<std::string> {
        const std::string_view alt = tag.value.of(cell);
        const auto qualifiers = LKInlineImageParser::splitQualifiers(alt);
        const std::string style = sizeStyle(qualifiers.width, qualifiers.height);
        if (style.empty()) return std::nullopt;
        const std::string_view rest = attributesBehind(tag, cell);
        std::string result = "<img ";
        result.append(tag.before.of(cell)).append(kAlt).append(alt).append("\"");
        if (!rest.empty()) result.append(" ").append(rest);
        return result.append(" style=\"").append(style).append("height:auto;\" />");
      });
}

// The alt of an image's tag; empty when it has none.
std::string_view altOf(std::string_view tag) {
  const auto match = html::nextImage(tag, kAlt, isNotEmpty, 0);
  return match ? match->value.of(tag) : std::string_view{};
}

// The link that stands for an image whose file is none; nothing for one that stays.
std::optional<std::string> linkForImage(std::string_view tag, std::string_view source,
                                        Attachments types) {
  if (isOutside(source)) return std::nullopt;
  const std::string plain = html::unescaped(source);
  const std::string path = percentDecoded(std::string_view(plain).substr(0, plain.find('#')));
  const std::string_view extension = LKAttachmentTypes::pathExtension(path);
  const bool isKnown = LKAttachmentTypes::contains(LKAttachmentTypes::all, extension);
  if (LKAttachmentTypes::contains(LKAttachmentTypes::images, extension) ||
      (!isKnown && types == Attachments::known)) {
    return std::nullopt;
  }
  const std::string_view alt = altOf(tag);
  std::string result = "<a href=\"";
  result.append(source).append("\"");
  if (!isKnown) result.append(" data-lk-attachment=\"1\"");
  const std::string label =
      alt.empty() ? html::escaped(path.substr(path.rfind('/') + 1)) : std::string(alt);
  return result.append(">").append(label).append("</a>");
}

}  // namespace

std::string bindTaskIDs(std::string html, Checkboxes boxes) {
  // A search that fails behind the attributes fails from every place within them.
  static const Pattern box(
      R"re(<input type="checkbox"([^>]*+)(*SKIP)>(\s*+)<!--lkid:([0-9A-Fa-f-]+)-->)re");
  static const Pattern disabled(R"re(\s+disabled(="")?)re");
  // Where cmark saw no task (in code, or within a block of HTML) a marker has no box before it.
  static const Pattern unbound("(?:<|&lt;)!--lkid:[0-9A-Fa-f-]{36}--(?:>|&gt;)");
  if (html.find("!--lkid:") == std::string::npos) return html;
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  for (const Pattern::Match& match : box.findAll(html)) {
    std::string attributes(match[1]->of(html));
    if (boxes == Checkboxes::interactive) attributes = disabled.replacingAll(attributes, "");
    const bool isClosed = attributes.ends_with('/');
    if (isClosed) attributes.pop_back();
    while (isClosed && !attributes.empty() && html::isSpace(attributes.back())) {
      attributes.pop_back();
    }
    result.append(html, copied, match[0]->start - copied).append("<input type=\"checkbox\"");
    result.append(attributes).append(" data-task-id=\"").append(match[3]->of(html));
    result.append(isClosed ? "\" />" : "\">").append(match[2]->of(html));
    copied = match[0]->end;
  }
  result.append(html, copied);
  if (result.find("!--lkid:") == std::string::npos) return result;
  // What such a marker stood in can complete a page's tag within raw HTML.
  return neutralisePageTags(unbound.replacingAll(result, ""));
}

std::string applySourceFragments(std::string html) {
  if (html.find('#') == std::string::npos || html.find("<img") == std::string::npos) return html;
  return html::rewriteImages(
      html, kSource, isNotEmpty, [&](const html::TagMatch& tag) -> std::optional<std::string> {
        const std::string_view source = tag.value.of(html);
        if (isOutside(source)) return std::nullopt;
        const auto sized = LKInlineImageParser::splitSizeFragment(source);
        if (!sized.width && !sized.height && !sized.isHidden) return std::nullopt;
        const std::string style = sizeStyle(sized.width, sized.height);
        std::string result = "<img ";
        result.append(tag.before.of(html)).append(kSource).append(sized.reference).append("\" ");
        result.append(attributesBehind(tag, html));
        if (!style.empty()) result.append(" style=\"").append(style).append("\"");
        return result.append(" />");
      });
}

std::string applyTableImageSizes(std::string html) {
  if (html.find("<td") == std::string::npos && html.find("<th") == std::string::npos) return html;
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  std::array<bool, 2> hasEnd = {true, true};  // of "td" and "th", from here on
  for (size_t start = html.find("<t"); start != std::string::npos;
       start = html.find("<t", std::max(copied, start + 2))) {
    const std::string_view name = std::string_view(html).substr(start + 1, 2);
    const size_t kind = name == "th" ? 1 : 0;
    const bool isCell = (name == "td" || name == "th") && start + 3 < html.size() &&
                        (html[start + 3] == '>' || html::isSpace(html[start + 3]));
    const size_t bracket = isCell && hasEnd[kind] ? html.find('>', start) : std::string::npos;
    if (bracket == std::string::npos) continue;
    const size_t end = html.find(kind == 1 ? "</th>" : "</td>", bracket);
    hasEnd[kind] = end != std::string::npos;
    if (!hasEnd[kind]) continue;
    result.append(html, copied, start - copied);
    result.append(withSizesFromAlts(std::string_view(html).substr(start, end - start)));
    copied = end;
  }
  if (copied == 0) return html;
  return result.append(html, copied);
}

std::string stripImageSizeQualifiers(std::string html) {
  if (html.find("<img") == std::string::npos) return html;
  return html::rewriteImages(
      html, kAlt, isAnything, [&](const html::TagMatch& tag) -> std::optional<std::string> {
        const std::string_view alt = tag.value.of(html);
        const std::string plain = LKInlineImageParser::splitQualifiers(alt).alt;
        if (plain == alt) return std::nullopt;
        std::string result = html.substr(tag.whole.start, tag.value.start - tag.whole.start);
        result.append(plain);
        return result.append(html, tag.value.end, tag.whole.end - tag.value.end);
      });
}

std::string demoteNonImageImages(std::string html, Attachments types) {
  if (html.find("<img") == std::string::npos) return html;
  return html::rewriteImages(html, kSource, isNotEmpty, [&](const html::TagMatch& tag) {
    return linkForImage(tag.whole.of(html), tag.value.of(html), types);
  });
}

std::string promoteCaptionedFigures(std::string html) {
  static constexpr std::string_view kOpen = "<p>";
  static constexpr std::string_view kClose = "</p>";
  if (html.find("<img") == std::string::npos) return html;
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  const std::string_view text = html;
  for (size_t start = text.find(kOpen); start != std::string_view::npos;
       start = text.find(kOpen, start + 1)) {
    size_t tag = start + kOpen.size();
    while (tag < text.size() && html::isSpace(text[tag])) ++tag;
    if (!text.substr(tag).starts_with("<img")) continue;
    const size_t bracket = text.find('>', tag);
    if (bracket == std::string_view::npos) break;
    size_t end = bracket + 1;
    while (end < text.size() && html::isSpace(text[end])) ++end;
    if (!text.substr(end).starts_with(kClose)) continue;
    const std::string_view image = text.substr(tag, bracket + 1 - tag);
    const std::string_view alt = altOf(image);
    if (alt.empty()) continue;
    result.append(text.substr(copied, start - copied)).append("<figure class=\"lk-figure\">");
    result.append(image).append("<figcaption>").append(alt).append("</figcaption></figure>");
    copied = end + kClose.size();
  }
  if (copied == 0) return html;
  return result.append(html, copied);
}

std::string blockWebImages(std::string html) {
  static constexpr std::string_view kUnnamed = "Web image not loaded";
  if (html.find("<img") == std::string::npos) return html;
  return html::rewriteImages(
      html, kSource, isOfTheWeb, [&](const html::TagMatch& tag) -> std::optional<std::string> {
        const std::string_view alt = altOf(tag.whole.of(html));
        const bool hasCaption =
            std::string_view(html).substr(tag.whole.end).starts_with("<figcaption");
        std::string result = "<a href=\"";
        result.append(blockedImageURL).append("\" class=\"lk-web-image-blocked\">");
        return result.append(alt.empty() || hasCaption ? kUnnamed : alt).append("</a>");
      });
}

}  // namespace lk::LKMarkdownToHTML
