#pragma once

#include <string_view>
#include <vector>

#include "LKCore/LexParse/LToken.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk::testing {

// A second inline lexer, written from the rules of the syntax with nothing remembered: each
// search walks the line anew, scalar by scalar. Slow, and what Lexer must agree with.
std::vector<LToken> referenceTokens(std::string_view text, const LKProjectTermsSnapshot& terms);

}  // namespace lk::testing
