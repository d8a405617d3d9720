#include "LKCore/Base/UTF16Text.h"

#include <algorithm>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr size_t kBytesInABlock = 64;

}  // namespace

UTF16Text::UTF16Text(std::string_view text) : text_(text), length_(text::utf16Count(text)) {
  if (length_ == text.size()) return;
  size_t units = 0;
  unitsBefore_.reserve(text.size() / kBytesInABlock + 1);
  for (size_t start = 0; start <= text.size(); start += kBytesInABlock) {
    unitsBefore_.push_back(units);
    units += text::utf16Count(text.substr(start, kBytesInABlock));
  }
}

size_t UTF16Text::utf16Offset(size_t byte) const {
  if (unitsBefore_.empty()) return byte;
  const size_t block = byte / kBytesInABlock;
  const size_t start = block * kBytesInABlock;
  return unitsBefore_[block] + text::utf16Count(text_.substr(start, byte - start));
}

size_t UTF16Text::byteOffset(size_t place) const {
  if (place >= length_) return text_.size();
  if (unitsBefore_.empty()) return place;
  const auto after = std::ranges::upper_bound(unitsBefore_, place);
  const auto block = static_cast<size_t>(after - unitsBefore_.begin()) - 1;
  size_t units = unitsBefore_[block];
  size_t byte = block * kBytesInABlock;
  for (; byte < text_.size(); ++byte) {
    const size_t width = text::utf16Count(text_.substr(byte, 1));  // none within a scalar
    if (width != 0 && units + width > place) break;
    units += width;
  }
  return byte;
}

std::string_view UTF16Text::of(const UTF16Range& range) const {
  const size_t start = std::min(range.location, length_);
  const size_t end = start + std::min(range.length, length_ - start);
  const size_t startByte = byteOffset(start);
  return text_.substr(startByte, byteOffset(end) - startByte);
}

}  // namespace lk
