// Any text as a note, with all options on and off: the HTML is the same twice, a page's tags are text,
// and only identifiers that the caller gave stand in it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/LKInlineImage.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// How often `part` occurs.
size_t count(std::string_view text, std::string_view part) {
  size_t found = 0;
  for (size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) {
    ++found;
  }
  return found;
}

// "<scripts" is a tag of another name, which no browser knows.
bool holdsTag(std::string_view html, std::string_view start) {
  for (size_t at = html.find(start); at != std::string_view::npos; at = html.find(start, at + 1)) {
    const size_t end = at + start.size();
    if (end == html.size() || std::string_view(" \t\n\f\r/>").find(html[end]) != start.npos) {
      return true;
    }
  }
  return false;
}

void check(std::string_view text, const lk::LKMarkdownToHTML::SharingOptions& options) {
  static const std::vector<lk::UUID> ids = {
      *lk::UUID::parse("00000000-0000-4000-8000-000000000001")};
  const std::string html = lk::LKMarkdownToHTML::htmlBody(text, options, ids, true, false);
  require(html == lk::LKMarkdownToHTML::htmlBody(text, options, ids, true, false));
  for (const char* tag : {"<script", "<SCRIPT", "<iframe", "</body"}) require(!holdsTag(html, tag));
  const bool isOwn = options.flattenBacklinks || count(text, "data-task-id") > 0;
  require(isOwn || count(html, " data-task-id=\"") <= 1);
  lk::LKMarkdownToHTML::blockWebImages(html);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) return 0;
  lk::LKMarkdownToHTML::SharingOptions options = lk::LKMarkdownToHTML::SharingOptions::preview();
  options.attachmentHandling = lk::LKMarkdownToHTML::SharingOptions::AttachmentHandling::keepLinks;
  options.attachmentsMayBeAnyType = true;
  check(text, options);
  check(text, lk::LKMarkdownToHTML::SharingOptions::sharing());
  const size_t units = lk::text::utf16Count(text);
  for (const auto& match : lk::LKInlineImageParser::parseAll(text)) {
    require(match.range.end() <= units && match.range.length > 0);
  }
  return 0;
}
