#pragma once

// Pictures made of shapes, drawn as points.

#include <optional>
#include <string>
#include <string_view>

namespace lk {

// The SVG document as a PNG file of that size in pixels (each 1 to 8192), on no background. Reads
// nothing but the document: references to files and addresses stay empty. Nothing for what is no
// SVG. Throws ModuleError.
std::optional<std::string> pngOfSVG(std::string_view svg, int width, int height);

}  // namespace lk
