#include "LKCore/Rendering/LKAutolinkDetector.h"

#include "LKCore/Base/Text.h"

namespace lk::LKAutolinkDetector {

namespace {

bool isWide(char32_t scalar, std::u32string_view forms) {
  return forms.find(scalar) != std::u32string_view::npos;
}

bool goesOnBehindDot(char32_t scalar) {
  return scalar > 127 || (scalar >= '0' && scalar <= '9') || (scalar >= 'a' && scalar <= 'z') ||
         (scalar >= 'A' && scalar <= 'Z');
}

bool goesOnBehindColon(char32_t scalar) {
  return !isWide(scalar, U"\t\n\r \u00A0\u3000");
}

}  // namespace

std::vector<Match> matches(std::string_view text) {
  std::vector<Match> found;
  if (!mayContainLink(text)) return found;
  const UTF16Text places(text);
  for (const DetectedLink& link : links(text)) {
    const size_t start = places.utf16Offset(link.range.start);
    found.push_back({link.kind, {start, places.utf16Offset(link.range.end) - start}});
  }
  return found;
}

bool mayContainLink(std::string_view text) {
  char32_t before = 0;
  for (size_t i = 0; i < text.size();) {
    const text::Decoded next = text::decode(text, i);
    if (isWide(next.scalar, U"@\uFF20")) return true;
    if (isWide(before, U".\u3002\uFF0E\uFF61") && goesOnBehindDot(next.scalar)) return true;
    if (isWide(before, U":\uFF1A") && goesOnBehindColon(next.scalar)) return true;
    before = next.scalar;
    i += next.length;
  }
  return false;
}

}  // namespace lk::LKAutolinkDetector
