// The lexers, the paragraphs and the extraction of tags and tasks over real notes, beside a Markdown
// parser that reads the same bytes.
//
// The notes are those of the folder LARKSPIRE_CORPUS, else of Samples in the working directory.

#include <benchmark/benchmark.h>
#include <cmark-gfm.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/ParagraphLexer.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace {

const std::vector<std::string>& notes() {
  static const std::vector<std::string> all = [] {
    std::vector<std::string> read;
    const char* folder = std::getenv("LARKSPIRE_CORPUS");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(folder != nullptr ? folder : "Samples")) {
      if (entry.path().extension() != ".md") continue;
      std::ifstream in(entry.path(), std::ios::binary);
      read.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
    }
    return read;
  }();
  return all;
}

template <typename Read>
void overAllNotes(benchmark::State& state, const Read& read) {
  size_t bytes = 0;
  for (const std::string& note : notes()) bytes += note.size();
  for (auto _ : state) {
    for (const std::string& note : notes()) read(note);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

void inlineLexer(benchmark::State& state) {
  const auto terms = std::make_shared<const lk::LKProjectTermsSnapshot>();
  overAllNotes(state, [&](const std::string& note) {
    lk::Lexer lexer(note, terms);
    for (;;) {
      lk::LToken token = lexer.nextToken();
      benchmark::DoNotOptimize(token);
      if (token.kind == lk::LTokenKind::end) break;
    }
  });
}
BENCHMARK(inlineLexer);

void inlineLexerToAList(benchmark::State& state) {
  const auto terms = std::make_shared<const lk::LKProjectTermsSnapshot>();
  overAllNotes(state, [&](const std::string& note) {
    benchmark::DoNotOptimize(lk::Lexer(note, terms).lex().data());
  });
}
BENCHMARK(inlineLexerToAList);

void blockLexer(benchmark::State& state) {
  overAllNotes(state, [](const std::string& note) {
    lk::ParagraphLexer lexer(note);
    for (;;) {
      lk::PToken token = lexer.nextToken();
      benchmark::DoNotOptimize(token);
      if (token.kind == lk::PTokenKind::end) break;
    }
  });
}
BENCHMARK(blockLexer);

void paragraphsOfNotes(benchmark::State& state) {
  overAllNotes(state, [](const std::string& note) {
    benchmark::DoNotOptimize(lk::makeParagraphs(note).data());
  });
}
BENCHMARK(paragraphsOfNotes);

// A hostile megabyte: a paragraph for each few bytes.
void paragraphsOfShortLines(benchmark::State& state) {
  std::string text;
  for (const char* line = "- a\n"; text.size() < 1'000'000;) text += line;
  for (auto _ : state) benchmark::DoNotOptimize(lk::makeParagraphs(text).data());
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(paragraphsOfShortLines);

void extraction(benchmark::State& state) {
  const auto terms = std::make_shared<const lk::LKProjectTermsSnapshot>();
  const lk::Instant now = lk::Instant::now();
  overAllNotes(state, [&](const std::string& note) {
    benchmark::DoNotOptimize(lk::LKTagExtractor::extract(note, std::nullopt, now, terms));
  });
}
BENCHMARK(extraction);

void peerParser(benchmark::State& state) {
  overAllNotes(state, [](const std::string& note) {
    cmark_node* document = cmark_parse_document(note.data(), note.size(), CMARK_OPT_DEFAULT);
    benchmark::DoNotOptimize(document);
    cmark_node_free(document);
  });
}
BENCHMARK(peerParser);

}  // namespace
