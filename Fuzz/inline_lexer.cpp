// The inline lexer on any bytes: it ends, and its tokens cover the text in order.

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "LKCore/LexParse/Lexer.h"

namespace {

std::shared_ptr<const lk::LKProjectTermsSnapshot> terms() {
  auto made = std::make_shared<lk::LKProjectTermsSnapshot>();
  made->metadataKeywords = {"client", "\u00E9t\u00E9", "project"};
  made->setKeywordTables();
  return made;
}

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const auto words = terms();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  lk::Lexer lexer(text, words);
  size_t covered = 0;
  for (;;) {
    const lk::LToken token = lexer.nextToken();
    require(token.range.start == covered && token.range.end >= covered);
    require(token.kind != lk::LTokenKind::ignore);
    covered = token.range.end;
    require(!lk::describe(token).empty());
    if (token.kind == lk::LTokenKind::end) break;
    require(!lk::sourceForm(token).empty() || token.kind == lk::LTokenKind::tabLevel);
    require(token.range.length() > 0 || token.kind == lk::LTokenKind::tabLevel);
  }
  require(covered == size);
  return 0;
}
