#pragma once

// What the first bytes of a picture's file say of it. Nothing is decoded.

#include <optional>
#include <string_view>

namespace lk {

enum class PictureFormat { png, jpeg, gif, webp, tiff, svg };

struct PictureHeader {
  PictureFormat format = PictureFormat::png;
  int width = 0;  // pixels as it is shown, after its orientation; at least 1. SVG: CSS pixels
  int height = 0;
  double dotsPerInchX = 0;  // 0: the file does not say
  double dotsPerInchY = 0;
  int orientation = 1;  // 1 to 8 as Exif counts; 1: upright
  double widthIn = 0;   // inches on paper at its own density; 96 dots an inch where it says none
  double heightIn = 0;

  bool operator==(const PictureHeader&) const = default;
};

// Nothing for bytes that are no picture of these formats or name no size. For any bytes; linear.
std::optional<PictureHeader> pictureHeader(std::string_view bytes);

// "image/png" and ".png".
std::string_view mediaType(PictureFormat format);
std::string_view extensionOf(PictureFormat format);

}  // namespace lk
