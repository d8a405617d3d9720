#pragma once

#include <string_view>

namespace lk {

// Whether an SVG document may go into a book as it is: it has no scripts, no handlers of events, no
// entities and no embedded pages, and refers to nothing but itself and pictures in its own text. On
// the safe side: a text that only looks like one of these counts too. Linear.
bool isSelfContainedSVG(std::string_view svg);

}  // namespace lk
