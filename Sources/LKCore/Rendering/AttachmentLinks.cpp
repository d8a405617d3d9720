// What becomes of links to attachments.

#include <algorithm>
#include <optional>
#include <utility>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLPasses.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/NextPlace.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

constexpr std::string_view kParagraph = "<p>";
constexpr std::string_view kParagraphEnd = "</p>";

// `<a href="HREF" ...>LABEL</a>` on one line.
struct LinkMatch {
  TextRange whole;
  TextRange openingTag;
  TextRange href;
  TextRange label;
};

// All links of some HTML, in one go over it.
class LinkFinder {
 public:
  explicit LinkFinder(std::string_view html) : html_(html) {}

  std::optional<LinkMatch> next() {
    while (true) {
      const size_t start = html_.find("<a", from_);
      if (start == std::string_view::npos) return std::nullopt;
      from_ = start + 2;
      const auto link = linkAt(start);
      if (!link) continue;
      from_ = link->whole.end;
      return link;
    }
  }

 private:
  static constexpr std::string_view kHref = "href=\"";
  static constexpr std::string_view kEnd = "</a>";

  std::optional<LinkMatch> linkAt(size_t start) {
    size_t name = start + 2;
    while (name < html_.size() && html::isSpace(html_[name])) ++name;
    if (name == start + 2 || !html_.substr(name).starts_with(kHref)) return std::nullopt;
    const size_t href = name + kHref.size();
    const size_t quote = html_.find('"', href);
    const size_t bracket = quote == std::string_view::npos ? quote : brackets_.from(quote);
    if (bracket == std::string_view::npos) {
      from_ = html_.size();  // and so it is for every link behind this one
      return std::nullopt;
    }
    const size_t end = quote == href ? std::string_view::npos : endFrom(bracket + 1);
    if (end == std::string_view::npos) return std::nullopt;
    return LinkMatch{
        {start, end + kEnd.size()}, {start, bracket + 1}, {href, quote}, {bracket + 1, end}};
  }

  // The "</a>" on the line, which is looked for once a line.
  size_t endFrom(size_t label) {
    if (label < lineEnd_ && end_ == std::string_view::npos) return end_;
    lineEnd_ = std::min(html_.find_first_of("\n\r", label), html_.size());
    end_ = html_.substr(0, lineEnd_).find(kEnd, label);
    return end_;
  }

  std::string_view html_;
  NextPlace brackets_{html_, ">"};
  size_t from_ = 0;
  size_t lineEnd_ = 0;
  size_t end_ = 0;
};

// The link's own paragraph, where it has nothing else in it: the range of both, else the link's.
TextRange cardRange(std::string_view html, const TextRange& link) {
  size_t start = link.start;
  while (start > 0 && html::isSpace(html[start - 1])) --start;
  size_t end = link.end;
  while (end < html.size() && html::isSpace(html[end])) ++end;
  if (!html.substr(0, start).ends_with(kParagraph) ||
      !html.substr(end).starts_with(kParagraphEnd)) {
    return link;
  }
  return {start - kParagraph.size(), end + kParagraphEnd.size()};
}

// The href without a fragment that only says how to show the file; nothing for one that leads out
// of the collection.
std::optional<std::string_view> localHrefWithoutDisplayFragment(std::string_view href) {
  static const Pattern display("^(?:hide|[0-9]{1,5}(?:x[0-9]{1,5})?)$", Pattern::Case::insensitive);
  if (href.find(':') != std::string_view::npos) return std::nullopt;
  const size_t hash = href.rfind('#');
  const bool isDisplay = hash != std::string_view::npos && display.matches(href.substr(hash + 1));
  return href.substr(0, isDisplay ? hash : href.size());
}

// The extension of the file that an href names, as it is written there.
std::string extensionOf(std::string_view href) {
  const std::string plain = html::unescaped(href);
  return std::string(
      LKAttachmentTypes::pathExtension(std::string_view(plain).substr(0, plain.find('#'))));
}

std::optional<std::string_view> attachmentHref(std::string_view href) {
  if (!LKAttachmentTypes::contains(LKAttachmentTypes::all, extensionOf(href))) return std::nullopt;
  return localHrefWithoutDisplayFragment(href);
}

std::string chipMarkup(std::string_view href, std::string_view label, bool card) {
  const std::string extension = extensionOf(href);
  std::string result(card ? "<p><a class=\"lk-attachment lk-attachment-card\" href=\""
                          : "<a class=\"lk-attachment\" href=\"");
  result.append(href).append("\"><span class=\"lk-attachment-badge\">");
  result.append(extension.empty() ? "FILE" : html::escaped(text::uppercased(extension)));
  result.append("</span><span class=\"lk-attachment-name\">").append(label).append("</span></a>");
  return result.append(card ? kParagraphEnd : "");
}

std::string plainLink(std::string_view href, std::string_view label, bool card) {
  std::string result(card ? kParagraph : "");
  result.append("<a href=\"").append(href).append("\">").append(label).append("</a>");
  return result.append(card ? kParagraphEnd : "");
}

std::string attachmentMarkup(std::string_view href, std::string_view label, bool card,
                             SharingOptions::AttachmentHandling handling) {
  switch (handling) {
    case SharingOptions::AttachmentHandling::chip:
      return chipMarkup(href, label, card);
    case SharingOptions::AttachmentHandling::strip:
      return std::string(card ? "" : label);
    case SharingOptions::AttachmentHandling::keepLinks:
      return plainLink(href, label, card);
  }
  return {};
}

}  // namespace

std::string renderAttachmentLinks(std::string html, SharingOptions::AttachmentHandling handling) {
  if (html.find("<a ") == std::string::npos) return html;
  std::string result;
  result.reserve(html.size());
  size_t copied = 0;
  LinkFinder links(html);
  const std::string_view text = html;
  for (auto link = links.next(); link; link = links.next()) {
    const bool isMarked = link->openingTag.of(text).ends_with(" data-lk-attachment=\"1\">");
    const std::string_view written = link->href.of(text);
    const auto href = isMarked ? localHrefWithoutDisplayFragment(written) : attachmentHref(written);
    if (!href) continue;
    const TextRange range = cardRange(text, link->whole);
    result.append(text.substr(copied, range.start - copied));
    result.append(attachmentMarkup(*href, link->label.of(text), range != link->whole, handling));
    copied = range.end;
  }
  if (copied == 0) return html;
  result.append(html, copied);
  // What is left when a link goes can complete a page's tag within raw HTML.
  if (handling == SharingOptions::AttachmentHandling::strip) {
    return neutralisePageTags(std::move(result));
  }
  return result;
}

}  // namespace lk::LKMarkdownToHTML
