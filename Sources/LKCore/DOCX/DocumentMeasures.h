#pragma once

// The units of a Word document, and the page of a book in them.

#include <algorithm>
#include <cmath>
#include <string>

#include "LKCore/Bind/LKBindSpec.h"

namespace lk::word {

// Rounded, and within what Word takes: nothing that a bind spec says makes a document unreadable.
inline int wholeWithin(double value, int least, int most) {
  if (!std::isfinite(value)) return least;
  return static_cast<int>(std::lround(std::clamp(value, double(least), double(most))));
}

inline constexpr int kMostTwips = 31680;  // 22 inches
inline int twips(double inches, int least = 0) {
  return wholeWithin(inches * 1440, least, kMostTwips);
}
inline int twipsOfPoints(double points) {
  return wholeWithin(points * 20, 0, kMostTwips);
}
inline int halfPoints(double points) {
  return wholeWithin(points * 2, 2, 3276);
}
inline int emu(double inches) {
  return wholeWithin(inches * 914400, 1, 20116800);
}

inline int lineUnits(LKBindLineSpacing spacing) {
  if (spacing == LKBindLineSpacing::single) return 240;
  return spacing == LKBindLineSpacing::double_ ? 480 : 360;
}

struct PageMeasures {  // twips
  int width, height, top, bottom, left, right;

  int textWidth() const { return std::max(width - left - right, 720); }
  int textHeight() const { return std::max(height - top - bottom, 720); }
};

inline PageMeasures pageMeasures(const LKBindPage& page) {
  const bool isLandscape = page.orientation == LKBindOrientation::landscape;
  return {twips(isLandscape ? page.heightIn : page.widthIn, 1440),
          twips(isLandscape ? page.widthIn : page.heightIn, 1440),
          twips(page.marginIn.topIn),
          twips(page.marginIn.bottomIn),
          twips(page.marginIn.leftIn),
          twips(page.marginIn.rightIn)};
}

// `name="12"` with a blank before it.
inline std::string numberAttribute(const char* name, long long value) {
  return std::string(" ") + name + "=\"" + std::to_string(value) + "\"";
}

inline const char* alignmentWord(LKBindAlignment alignment) {
  switch (alignment) {
    case LKBindAlignment::left:
      return "left";
    case LKBindAlignment::center:
      return "center";
    case LKBindAlignment::right:
      return "right";
    case LKBindAlignment::justify:
      break;
  }
  return "both";
}

}  // namespace lk::word
