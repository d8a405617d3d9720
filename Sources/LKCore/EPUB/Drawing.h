#pragma once

// Drawings in SVG that every e-reader draws and no checker refuses: shapes and words.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lk::xhtml {

// The drawing that begins with "<svg" at `place`, written anew with its namespace, and what stands
// behind it; nothing when it holds more than shapes, words and groups with plain attributes (no
// scripts, styles, identifiers, references), or is not well-formed. `place` is then moved to where
// it failed, so that looking again from there on costs no byte twice.
struct Drawing {
  std::string markup;
  size_t end = 0;
};
std::optional<Drawing> plainDrawing(std::string_view text, size_t& place);

// A whole SVG file as such a drawing: a declaration of XML and comments around it go.
std::optional<std::string> plainDrawingFile(std::string_view bytes);

}  // namespace lk::xhtml
