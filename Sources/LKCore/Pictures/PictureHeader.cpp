#include "LKCore/Pictures/PictureHeader.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "LKCore/Pictures/PictureBytes.h"

namespace lk {

namespace {

using ByteOrder = PictureBytes::Order;

constexpr double kCentimetresPerInch = 2.54;
constexpr double kCSSPixelsPerInch = 96;
constexpr double kMostPixels = 1e8;  // on one side

// --- TIFF, which Exif is too ---------------------------------------------------------------------

// The value of a directory's entry that is one number.
double tiffNumber(const PictureBytes& tiff, size_t entry) {
  constexpr uint32_t kShort = 3;
  constexpr uint32_t kLong = 4;
  constexpr uint32_t kRational = 5;
  switch (tiff.u16(entry + 2)) {
    case kShort:
      return tiff.u16(entry + 8);
    case kLong:
      return tiff.u32(entry + 8);
    case kRational: {
      const size_t place = tiff.u32(entry + 8);
      const uint32_t divisor = tiff.u32(place + 4);
      return divisor == 0 ? 0 : static_cast<double>(tiff.u32(place)) / divisor;
    }
    default:
      return 0;
  }
}

StoredPicture storedTIFF(std::string_view bytes) {
  StoredPicture picture;
  const bool isBig = bytes.starts_with(std::string_view("MM\0*", 4));
  if (!isBig && !bytes.starts_with(std::string_view("II*\0", 4))) return picture;
  const PictureBytes tiff(bytes, isBig ? ByteOrder::bigEndian : ByteOrder::littleEndian);
  const size_t directory = tiff.u32(4);
  double unit = 1;  // inches in the unit of density
  for (size_t i = 0; i < tiff.u16(directory); ++i) {
    const size_t entry = directory + 2 + 12 * i;
    if (entry >= tiff.size()) break;
    const double number = tiffNumber(tiff, entry);
    switch (tiff.u16(entry)) {
      case 0x0100:
        picture.width = number;
        break;
      case 0x0101:
        picture.height = number;
        break;
      case 0x0112:
        if (number >= 1 && number <= 8) picture.orientation = static_cast<int>(number);
        break;
      case 0x011A:
        picture.dotsPerInchX = number;
        break;
      case 0x011B:
        picture.dotsPerInchY = number;
        break;
      case 0x0128:
        unit = number == 3 ? kCentimetresPerInch : number == 2 ? 1 : 0;
        break;
      default:
        break;
    }
  }
  picture.dotsPerInchX *= unit;
  picture.dotsPerInchY *= unit;
  return picture;
}

// The block of a camera within another file: orientation, and density where there is none yet.
void takeExif(StoredPicture& picture, std::string_view block) {
  const std::string_view mark("Exif\0\0", 6);
  if (block.starts_with(mark)) block.remove_prefix(mark.size());
  const StoredPicture exif = storedTIFF(block);
  picture.orientation = exif.orientation;
  if (picture.dotsPerInchX > 0 && picture.dotsPerInchY > 0) return;
  picture.dotsPerInchX = exif.dotsPerInchX;
  picture.dotsPerInchY = exif.dotsPerInchY;
}

// --- The other files of points -------------------------------------------------------------------

StoredPicture storedPNG(std::string_view bytes) {
  const PictureBytes png(bytes, ByteOrder::bigEndian);
  StoredPicture picture;
  if (!png.has(12, "IHDR")) return picture;
  picture.width = png.u32(16);
  picture.height = png.u32(20);
  constexpr size_t kSignature = 8;
  for (size_t chunk = kSignature; chunk < bytes.size() && !png.has(chunk + 4, "IDAT");) {
    constexpr double kMetresPerInch = 0.0254;
    constexpr uint32_t kPerMetre = 1;
    if (png.has(chunk + 4, "pHYs") && png.u8(chunk + 16) == kPerMetre) {
      picture.dotsPerInchX = png.u32(chunk + 8) * kMetresPerInch;
      picture.dotsPerInchY = png.u32(chunk + 12) * kMetresPerInch;
    }
    chunk += 12 + static_cast<size_t>(png.u32(chunk));
  }
  return picture;
}

bool isFrameMarker(uint32_t marker) {
  return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

void takeJFIF(StoredPicture& picture, const PictureBytes& jpeg, size_t segment) {
  constexpr uint32_t kPerInch = 1;
  constexpr uint32_t kPerCentimetre = 2;
  const uint32_t unit = jpeg.u8(segment + 9);
  const double inches = unit == kPerInch ? 1 : unit == kPerCentimetre ? kCentimetresPerInch : 0;
  picture.dotsPerInchX = jpeg.u16(segment + 10) * inches;
  picture.dotsPerInchY = jpeg.u16(segment + 12) * inches;
}

StoredPicture storedJPEG(std::string_view bytes) {
  const PictureBytes jpeg(bytes, ByteOrder::bigEndian);
  StoredPicture picture;
  size_t place = 2;
  while (place + 4 <= bytes.size() && jpeg.u8(place) == 0xFF) {
    const uint32_t marker = jpeg.u8(place + 1);
    constexpr uint32_t kStartOfScan = 0xDA;
    if (marker == kStartOfScan) break;
    if (marker == 0xFF || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD8)) {
      place += marker == 0xFF ? 1 : 2;  // a fill byte, or a marker without a segment
      continue;
    }
    const size_t segment = place + 2;
    const size_t length = jpeg.u16(segment);
    if (length < 2) break;
    if (isFrameMarker(marker)) {
      picture.height = jpeg.u16(segment + 3);
      picture.width = jpeg.u16(segment + 5);
      break;
    }
    if (marker == 0xE0 && jpeg.has(segment + 2, std::string_view("JFIF\0", 5))) {
      takeJFIF(picture, jpeg, segment);
    } else if (marker == 0xE1 && jpeg.has(segment + 2, std::string_view("Exif\0\0", 6))) {
      takeExif(picture, jpeg.from(segment + 2, length - 2));
    }
    place = segment + length;
  }
  return picture;
}

StoredPicture storedGIF(std::string_view bytes) {
  const PictureBytes gif(bytes, ByteOrder::littleEndian);
  StoredPicture picture;
  picture.width = gif.u16(6);
  picture.height = gif.u16(8);
  return picture;
}

StoredPicture storedWebP(std::string_view bytes) {
  const PictureBytes webp(bytes, ByteOrder::littleEndian);
  constexpr uint32_t kSide = 0x3FFF;  // the bits of one
  constexpr size_t kFirst = 12;
  const size_t data = kFirst + 8;
  StoredPicture picture;
  if (webp.has(kFirst, "VP8 ") && webp.has(data + 3, "\x9D\x01\x2A")) {
    picture.width = webp.u16(data + 6) & kSide;
    picture.height = webp.u16(data + 8) & kSide;
  } else if (webp.has(kFirst, "VP8L") && webp.u8(data) == 0x2F) {
    picture.width = (webp.u32(data + 1) & kSide) + 1;
    picture.height = ((webp.u32(data + 1) >> 14) & kSide) + 1;
  } else if (webp.has(kFirst, "VP8X") && data + 10 <= bytes.size()) {
    picture.width = webp.u24(data + 4) + 1;
    picture.height = webp.u24(data + 7) + 1;
    for (size_t chunk = kFirst; chunk + 8 <= bytes.size();) {
      const size_t length = webp.u32(chunk + 4);
      if (webp.has(chunk, "EXIF")) takeExif(picture, webp.from(chunk + 8, length));
      chunk += 8 + length + length % 2;
    }
  }
  return picture;
}

// --- All -----------------------------------------------------------------------------------------

std::optional<PictureFormat> formatOf(std::string_view bytes) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return PictureFormat::png;
  if (bytes.starts_with("\xFF\xD8\xFF")) return PictureFormat::jpeg;
  if (bytes.starts_with("GIF87a") || bytes.starts_with("GIF89a")) return PictureFormat::gif;
  if (bytes.starts_with("RIFF") && bytes.substr(0, 12).ends_with("WEBP")) {
    return PictureFormat::webp;
  }
  if (bytes.starts_with(std::string_view("II*\0", 4)) ||
      bytes.starts_with(std::string_view("MM\0*", 4))) {
    return PictureFormat::tiff;
  }
  return isSVG(bytes) ? std::optional(PictureFormat::svg) : std::nullopt;
}

StoredPicture storedPicture(std::string_view bytes, PictureFormat format) {
  switch (format) {
    case PictureFormat::png:
      return storedPNG(bytes);
    case PictureFormat::jpeg:
      return storedJPEG(bytes);
    case PictureFormat::gif:
      return storedGIF(bytes);
    case PictureFormat::webp:
      return storedWebP(bytes);
    case PictureFormat::tiff:
      return storedTIFF(bytes);
    case PictureFormat::svg:
      break;
  }
  return storedSVG(bytes);
}

// A density that no printer or camera means counts as none; one side alone says nothing either.
bool isDensity(double x, double y) {
  return x >= 5 && y >= 5 && x <= 20000 && y <= 20000;
}

struct PictureKind {
  PictureFormat format;
  std::string_view mediaType;
  std::string_view extension;
};

constexpr std::array<PictureKind, 6> kPictureKinds = {{
    {PictureFormat::png, "image/png", ".png"},
    {PictureFormat::jpeg, "image/jpeg", ".jpg"},
    {PictureFormat::gif, "image/gif", ".gif"},
    {PictureFormat::webp, "image/webp", ".webp"},
    {PictureFormat::tiff, "image/tiff", ".tiff"},
    {PictureFormat::svg, "image/svg+xml", ".svg"},
}};

const PictureKind& pictureKind(PictureFormat format) {
  return *std::ranges::find(kPictureKinds, format, &PictureKind::format);
}

}  // namespace

std::optional<PictureHeader> pictureHeader(std::string_view bytes) {
  const auto format = formatOf(bytes);
  if (!format) return std::nullopt;
  StoredPicture stored = storedPicture(bytes, *format);
  const bool hasSize = stored.width > 0 && stored.height > 0 && stored.width <= kMostPixels &&
                       stored.height <= kMostPixels;
  if (!hasSize) return std::nullopt;
  if (stored.orientation >= 5) {
    std::swap(stored.width, stored.height);
    std::swap(stored.dotsPerInchX, stored.dotsPerInchY);
  }
  PictureHeader header;
  header.format = *format;
  header.width = std::max(1, static_cast<int>(std::lround(stored.width)));
  header.height = std::max(1, static_cast<int>(std::lround(stored.height)));
  header.orientation = stored.orientation;
  const bool isDense = isDensity(stored.dotsPerInchX, stored.dotsPerInchY);
  if (isDense) {
    header.dotsPerInchX = stored.dotsPerInchX;
    header.dotsPerInchY = stored.dotsPerInchY;
  }
  header.widthIn = stored.width / (isDense ? stored.dotsPerInchX : kCSSPixelsPerInch);
  header.heightIn = stored.height / (isDense ? stored.dotsPerInchY : kCSSPixelsPerInch);
  return header;
}

std::string_view mediaType(PictureFormat format) {
  return pictureKind(format).mediaType;
}

std::string_view extensionOf(PictureFormat format) {
  return pictureKind(format).extension;
}

}  // namespace lk
