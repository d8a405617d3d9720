#pragma once

// Styles for e-readers, which have no pages of a known size, set the size of letters themselves and
// load nothing from elsewhere.

#include <string>
#include <string_view>

namespace lk::xhtml {

// The sheet of a book without what belongs to paper or is refused: rules that begin with "@",
// running heads and page numbers, places, directions, addresses. Sizes of letters are relative to
// the body's, `bodySizePt`, which stays the reader's choice, as does the height of its lines.
std::string readerSheet(std::string_view sheet, double bodySizePt);

// The declarations of a `style` attribute that can do no harm: looks of text and box, with plain
// words, numbers and colours as values. "color: red; width: 50%"; may be empty.
std::string plainDeclarations(std::string_view declarations);

}  // namespace lk::xhtml
