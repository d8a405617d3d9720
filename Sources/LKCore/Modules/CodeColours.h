#pragma once

// Which stretches of a program's text are keywords, texts, comments and numbers.

#include <optional>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"

namespace lk {

enum class CodeColour { keyword, string, comment, number };

struct ColouredCode {
  TextRange range;  // UTF-8 bytes of the code
  CodeColour colour = CodeColour::keyword;

  bool operator==(const ColouredCode&) const = default;
};

// In the order of the code, without overlap; what lies between is plain. The language by its name,
// an other name or the extension of its files, in any case. Nothing for a language that nobody
// knows, and where the part is not installed.
std::optional<std::vector<ColouredCode>> colouredCode(std::string_view code,
                                                      std::string_view language);

}  // namespace lk
