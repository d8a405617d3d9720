#pragma once

// The two lines between which a note's text is generated: its tags, links and tasks are copies, and
// no index takes them.
//
//     <!--lk:noindex-->
//     ## Overdue
//
//     - [ ] Pay rent due:2026-03-01 — [[Home]]
//
//     <!--/lk:noindex-->

#include <string_view>

#include "LKCore/Base/Text.h"

namespace lk {

inline constexpr std::string_view kNoIndexOpening = "<!--lk:noindex-->";
inline constexpr std::string_view kNoIndexClosing = "<!--/lk:noindex-->";

// True for a line that is the marker and nothing else, but for blanks around it.
inline bool opensNoIndexRegion(std::string_view line) {
  return text::trimmedBlanks(line) == kNoIndexOpening;
}
inline bool closesNoIndexRegion(std::string_view line) {
  return text::trimmedBlanks(line) == kNoIndexClosing;
}

}  // namespace lk
