#pragma once

// Numbers within the bytes of a picture's file, which may end anywhere.

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lk {

// Where a file has its numbers; bytes beyond its end count as 0.
class PictureBytes {
 public:
  enum class Order { bigEndian, littleEndian };

  PictureBytes(std::string_view bytes, Order order) : bytes_(bytes), order_(order) {}

  uint32_t u8(size_t at) const {
    return at < bytes_.size() ? static_cast<unsigned char>(bytes_[at]) : 0;
  }
  uint32_t u16(size_t at) const {
    return order_ == Order::bigEndian ? (u8(at) << 8) | u8(at + 1) : u8(at) | (u8(at + 1) << 8);
  }
  uint32_t u24(size_t at) const {
    return order_ == Order::bigEndian ? (u16(at) << 8) | u8(at + 2) : u16(at) | (u8(at + 2) << 16);
  }
  uint32_t u32(size_t at) const {
    return order_ == Order::bigEndian ? (u16(at) << 16) | u16(at + 2)
                                      : u16(at) | (u16(at + 2) << 16);
  }

  size_t size() const { return bytes_.size(); }
  bool has(size_t at, std::string_view mark) const {
    return at <= bytes_.size() && bytes_.substr(at).starts_with(mark);
  }
  // What begins there, at most so many bytes.
  std::string_view from(size_t at, size_t length = std::string_view::npos) const {
    return at <= bytes_.size() ? bytes_.substr(at, length) : std::string_view();
  }

 private:
  std::string_view bytes_;
  Order order_;
};

// What a picture's file says of itself, before its orientation is followed.
struct StoredPicture {
  double width = 0;  // pixels
  double height = 0;
  double dotsPerInchX = 0;
  double dotsPerInchY = 0;
  int orientation = 1;
};

// The root of an SVG document in CSS pixels; sizes of 0 when there is none or it names no size.
StoredPicture storedSVG(std::string_view document);

// Whether the bytes begin as an SVG document does.
bool isSVG(std::string_view bytes);

}  // namespace lk
