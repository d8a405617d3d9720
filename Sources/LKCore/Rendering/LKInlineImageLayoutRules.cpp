#include "LKCore/Rendering/LKInlineImageLayoutRules.h"

#include <algorithm>
#include <cmath>

#include "LKCore/Attachments/LKAttachmentTypes.h"

namespace lk::LKInlineImageLayoutRules {

namespace {

// Far above any picture, and still a whole number that a double holds exactly.
constexpr double kMostBytes = 9007199254740992.0;

bool isAudio(std::string_view reference) {
  return LKAttachmentTypes::contains(
      LKAttachmentTypes::audio,
      LKAttachmentTypes::pathExtension(reference.substr(0, reference.find('#'))));
}

}  // namespace

Size fittedSize(const Size& intrinsic, const LKInlineImage& image, double availableWidth) {
  if (!(intrinsic.width > 0) || !(intrinsic.height > 0)) return {availableWidth, placeholderHeight};
  const double ratio = intrinsic.height / intrinsic.width;
  if (image.requestedWidth) {
    const double width = std::max(1.0, std::min(availableWidth, *image.requestedWidth));
    return {width, image.requestedHeight.value_or(ratio * width)};
  }
  if (image.requestedHeight) {
    const double width = std::min(availableWidth, *image.requestedHeight / ratio);
    return {width, ratio * width};
  }
  const double natural =
      isAudio(image.reference) ? std::min(intrinsic.width, audioWidth) : intrinsic.width;
  const double width = std::max(1.0, std::min(availableWidth, natural));
  return {width, ratio * width};
}

std::string bitmapKey(std::string_view reference, const Size& size, int64_t generation) {
  std::string key(reference);
  key.append("|").append(std::to_string(std::llround(size.width)));
  key.append("x").append(std::to_string(std::llround(size.height)));
  return key.append("|").append(std::to_string(generation));
}

int64_t bitmapCost(const Size& pixelSize, double scale) {
  const double bytes =
      std::max(1.0, pixelSize.height * scale) * std::max(1.0, pixelSize.width * scale) * 4;
  return static_cast<int64_t>(std::min(bytes, kMostBytes));
}

}  // namespace lk::LKInlineImageLayoutRules
