// The block lexer on any bytes: it ends, and its tokens cover the text in order.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/LexParse/ParagraphLexer.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lk::ParagraphLexer lexer({reinterpret_cast<const char*>(data), size});
  size_t covered = 0;
  size_t tokens = 0;
  for (;;) {
    const lk::PToken token = lexer.nextToken();
    require(token.range.start == covered && token.range.end >= covered);
    covered = token.range.end;
    require(!lk::describe(token).empty());
    require(++tokens <= 4 * size + 4);
    if (token.kind == lk::PTokenKind::end) break;
  }
  require(covered == size);
  return 0;
}
