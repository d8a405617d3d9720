#include "LKCore/LexParse/CharacterSets.h"

#include <algorithm>

namespace lk::lexing {

int indentLevel(size_t tabs, size_t spaces) {
  constexpr size_t kDeepest = 22;
  size_t level = 0;
  if (tabs == 0) {
    level = (spaces + 3) / 4;
  } else if (spaces == 0) {
    level = tabs;
  } else {
    level = tabs + std::max<size_t>(spaces, 4) / 4;
  }
  return static_cast<int>(std::min(level, kDeepest));
}

}  // namespace lk::lexing
