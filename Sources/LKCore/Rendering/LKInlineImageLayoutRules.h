#pragma once

// How large the pictures of a note are drawn, and what keeping them costs.

#include <cstdint>
#include <string>
#include <string_view>

#include "LKCore/Rendering/LKInlineImage.h"

namespace lk::LKInlineImageLayoutRules {

struct Size {
  double width = 0;
  double height = 0;

  bool operator==(const Size&) const = default;
};

inline constexpr double placeholderHeight = 120;  // points
inline constexpr double audioWidth = 48;          // points
inline constexpr double stackGap = 6;             // points
inline constexpr int64_t bitmapByteBudget = 100663296;
inline constexpr int widthsPerReference = 2;

// In points, from the file's own size and what the note asks for. A picture without a size of its
// own is as wide as there is room, and `placeholderHeight` high.
Size fittedSize(const Size& intrinsic, const LKInlineImage& image, double availableWidth);

// "REFERENCE|400x300|7": one drawing of one picture.
std::string bitmapKey(std::string_view reference, const Size& size, int64_t generation);

// Bytes.
int64_t bitmapCost(const Size& pixelSize, double scale);

}  // namespace lk::LKInlineImageLayoutRules
