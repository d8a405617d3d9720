// The start of any file as a picture: it ends, and what is told of a picture can be used.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/Pictures/PictureHeader.h"
#include "LKCore/Pictures/SelfContainedSVG.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  static_cast<void>(lk::isSelfContainedSVG(bytes));
  const auto header = lk::pictureHeader(bytes);
  if (!header) return 0;
  const bool isUsable = header->width >= 1 && header->height >= 1 && header->orientation >= 1 &&
                        header->orientation <= 8 && std::isfinite(header->widthIn) &&
                        std::isfinite(header->heightIn) && header->widthIn > 0 &&
                        header->heightIn > 0;
  if (!isUsable) std::abort();
  return 0;
}
