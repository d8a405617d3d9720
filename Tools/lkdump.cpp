// lkdump: prints what the library sees in a text, one readable line each.
//
//   lkdump inline FILE    the tokens of the inline lexer: byte range, kind, payload
//   lkdump block FILE     the tokens of the block lexer
//
// FILE "-" is standard input.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/ParagraphLexer.h"

namespace {

template <typename AnyLexer, typename Kind>
void dump(AnyLexer lexer, Kind end) {
  for (;;) {
    const auto token = lexer.nextToken();
    std::puts(describe(token).c_str());
    if (token.kind == end) return;
  }
}

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), {}};
}

int run(std::string_view what, const std::string& file) {
  std::ifstream in;
  if (file != "-") in.open(file, std::ios::binary);
  const std::string text = readAll(file == "-" ? std::cin : in);
  if (file != "-" && !in) {
    std::fprintf(stderr, "lkdump: cannot read %s\n", file.c_str());
    return 1;
  }
  if (!lk::text::isValidUTF8(text)) {
    std::fprintf(stderr, "lkdump: %s is not valid UTF-8\n", file.c_str());
    return 1;
  }
  if (what == "inline") {
    dump(lk::Lexer(text), lk::LTokenKind::end);
  } else {
    dump(lk::ParagraphLexer(text), lk::PTokenKind::end);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string_view what = argc == 3 ? argv[1] : "";
  if (what != "inline" && what != "block") {
    std::fputs("usage: lkdump inline|block FILE\n", stderr);
    return 64;
  }
  return run(what, argv[2]);
}
