// Megabytes that nobody writes by hand, through everything that reads a note's text: the slowest of
// them for each reader. An honest megabyte takes some hundredths of a second.

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/ParagraphLexer.h"
#include "LKCore/Navigation/LKProjectTextRewrite.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace {

constexpr size_t kMegabyte = 1'000'000;

// Each repeated to a megabyte; of the pairs the first stands once in front.
const std::vector<std::pair<std::string, std::string>>& patterns() {
  static const std::vector<std::pair<std::string, std::string>> all = [] {
    std::vector<std::pair<std::string, std::string>> made;
    for (const char c : std::string("[]()*_`~=|<>!#:-+&\\^$%@{} \t\nx1")) {
      made.emplace_back("", std::string(1, c));
    }
    for (const char* words :
         {"- a\n",        "- [ ] a\n",  "- [ ] due:\n", "> ",      "1. ",
          "#a",           "[[a",        "[[a]]",        "[a](",    "![",
          "**a",          "a**",        "`a``",         "~~a",     "==a",
          "|a",           "|a|\n|-|\n", "<!--",         "-->",     "```\n",
          "http://",      "a@b.",       "[^a]",         "[^a]:\n", "project:a ",
          "\xE2\x80\xA8", "\xCC\x81",   "\r\n",         "\r",      "- [ ] #projects/a\n"}) {
      made.emplace_back("", words);
      made.emplace_back("- [ ] ", words);
    }
    return made;
  }();
  return all;
}

template <typename Read>
void slowestMegabyte(benchmark::State& state, const Read& read) {
  double slowest = 0;
  std::string which;
  for (auto _ : state) {
    for (const auto& [start, words] : patterns()) {
      std::string text = start;
      while (text.size() < kMegabyte) text += words;
      const auto before = std::chrono::steady_clock::now();
      read(text);
      const std::chrono::duration<double> took = std::chrono::steady_clock::now() - before;
      if (took.count() <= slowest) continue;
      slowest = took.count();
      which = start + "..." + words;
    }
  }
  for (char& c : which) c = c < ' ' ? ' ' : c;
  state.counters["slowest_s"] = slowest;
  state.SetLabel(which);
}

void inlineLexer(benchmark::State& state) {
  const auto terms = std::make_shared<const lk::LKProjectTermsSnapshot>();
  slowestMegabyte(state, [&](const std::string& text) {
    benchmark::DoNotOptimize(lk::Lexer(text, terms).lex().data());
  });
}

void blockLexer(benchmark::State& state) {
  slowestMegabyte(state, [](const std::string& text) {
    lk::ParagraphLexer lexer(text);
    while (lexer.nextToken().kind != lk::PTokenKind::end) {
    }
  });
}

void paragraphs(benchmark::State& state) {
  slowestMegabyte(state, [](const std::string& text) {
    benchmark::DoNotOptimize(lk::makeParagraphs(text).data());
  });
}

void extraction(benchmark::State& state) {
  const auto terms = std::make_shared<const lk::LKProjectTermsSnapshot>();
  const lk::Instant now = lk::Instant::now();
  slowestMegabyte(state, [&](const std::string& text) {
    benchmark::DoNotOptimize(lk::LKTagExtractor::extract(text, std::nullopt, now, terms));
  });
}

void projectRewriting(benchmark::State& state) {
  const lk::LKProjectTermsSnapshot terms;
  slowestMegabyte(state, [&](const std::string& text) {
    benchmark::DoNotOptimize(
        lk::LKProjectTextRewrite::rename(text, "a", "b", true, terms).text.data());
  });
}

BENCHMARK(inlineLexer)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(blockLexer)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(paragraphs)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(extraction)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(projectRewriting)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
