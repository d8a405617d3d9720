#pragma once

// Links that stand in a text without markup, for texts that mostly have none.

#include <string_view>
#include <vector>

#include "LKCore/Base/LinkDetector.h"
#include "LKCore/Base/UTF16Text.h"

namespace lk::LKAutolinkDetector {

struct Match {
  LinkKind kind = LinkKind::url;
  UTF16Range range;

  bool operator==(const Match&) const = default;
};

// What LinkDetector.h finds, left to right.
std::vector<Match> matches(std::string_view text);

// False only for a text without any link, after one cheap look.
bool mayContainLink(std::string_view text);

}  // namespace lk::LKAutolinkDetector
