#pragma once

// Links and tasks found by patterns over lines, without the lexer: what an extraction of real
// notes is compared with. It knows the notes' usual forms, not every crafted one.

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace lk::test {

struct SlowReading {
  std::set<std::string> backlinks;
  std::vector<std::pair<int, char>> tasks;  // line and mark
};

SlowReading slowReading(const std::string& text);

}  // namespace lk::test
