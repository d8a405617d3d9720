#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindSyntaxHighlighter.h"

namespace lk::word {

// The tokens of a code as ranges within each of its lines; one that spans lines is in each of them.
std::vector<std::vector<LKBindSyntaxHighlighter::Token>> splitTokensByLine(
    std::string_view code, const std::vector<LKBindSyntaxHighlighter::Token>& tokens);

// The runs of every line of code, in colours when the language is known; empty: plain.
std::vector<std::string> codeRuns(const std::vector<std::string>& lines, std::string_view language);

}  // namespace lk::word
