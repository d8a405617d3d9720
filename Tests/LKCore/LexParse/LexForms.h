#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/ParagraphLexer.h"

namespace lk::testing {

struct LexRow {
  const char* name;
  std::string_view text;
  std::string form;  // the tokens but "tabLevel 0" and the last "end", joined by " | "
};

inline std::string rowName(const ::testing::TestParamInfo<LexRow>& info) {
  return info.param.name;
}

// Checks the covering law as it goes.
template <typename Tokens>
std::string formOf(const Tokens& tokens, std::string_view text) {
  std::string form;
  size_t covered = 0;
  for (const auto& token : tokens) {
    EXPECT_EQ(token.range.start, covered) << describe(token);
    EXPECT_GE(token.range.end, covered) << describe(token);
    covered = token.range.end;
    const std::string all = describe(token);
    const std::string one = all.substr(all.find(' ') + 1);
    if (one == "tabLevel 0" || one == "end") continue;
    form.append(form.empty() ? "" : " | ").append(one);
  }
  EXPECT_EQ(covered, text.size());
  return form;
}

inline std::vector<PToken> blockTokens(std::string_view text) {
  ParagraphLexer lexer(text);
  std::vector<PToken> tokens;
  do {
    tokens.push_back(lexer.nextToken());
  } while (tokens.back().kind != PTokenKind::end);
  return tokens;
}

}  // namespace lk::testing
