// lkdump: prints what the library sees in a text, one readable line each.
//
//   lkdump inline FILE        the tokens of the inline lexer: byte range, kind, payload
//   lkdump block FILE         the tokens of the block lexer
//   lkdump paragraphs FILE    the paragraphs: range in UTF-16 units, type, flags
//   lkdump extract FILE       tags, dates, links, pictures and tasks
//
// FILE "-" is standard input. The text is read as a note's body.

#include <cstdio>
#include <fstream>
#include <iostream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/ParagraphLexer.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace {

template <typename AnyLexer, typename Kind>
void dumpTokens(AnyLexer lexer, Kind end) {
  for (;;) {
    const auto token = lexer.nextToken();
    std::puts(describe(token).c_str());
    if (token.kind == end) return;
  }
}

void dumpInline(std::string_view text) {
  dumpTokens(lk::Lexer(text), lk::LTokenKind::end);
}

void dumpBlock(std::string_view text) {
  dumpTokens(lk::ParagraphLexer(text), lk::PTokenKind::end);
}

void dumpParagraphs(std::string_view text) {
  for (const lk::Paragraph& paragraph : lk::makeParagraphs(text)) {
    std::puts(describe(paragraph).c_str());
  }
}

void dumpExtraction(std::string_view text) {
  std::fputs(describe(lk::LKTagExtractor::extract(text)).c_str(), stdout);
}

const std::map<std::string_view, void (*)(std::string_view)> kDumps = {
    {"inline", dumpInline},
    {"block", dumpBlock},
    {"paragraphs", dumpParagraphs},
    {"extract", dumpExtraction},
};

std::string readAll(std::istream& in) {
  return {std::istreambuf_iterator<char>(in), {}};
}

int fail(const std::string& message) {
  std::fprintf(stderr, "lkdump: %s\n", message.c_str());
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  const auto dump = kDumps.find(argc == 3 ? argv[1] : "");
  if (dump == kDumps.end()) {
    std::fputs("usage: lkdump inline|block|paragraphs|extract FILE\n", stderr);
    return 64;
  }
  const std::string file = argv[2];
  std::ifstream in;
  if (file != "-") in.open(file, std::ios::binary);
  if (!in) return fail("cannot read " + file);
  const std::string text = readAll(file == "-" ? std::cin : in);
  if (!lk::text::isValidUTF8(text)) return fail(file + " is not valid UTF-8");
  dump->second(text);
  return 0;
}
