// Megabytes that nobody writes by hand, through everything that reads a note's text: the slowest of
// them for each reader. An honest megabyte takes some hundredths of a second.
//
// What a list of a million lines takes beyond the program's own time, `user_s`, is the kernel's,
// which hands out fresh memory; `freshMemory` tells how long a quarter of a gigabyte takes.

#include <benchmark/benchmark.h>
#include <sys/resource.h>

#include <chrono>
#include <cstdlib>
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

struct Spent {
  double user;  // seconds that the program ran itself
  double wall;
};

Spent spent() {
  rusage used{};
  getrusage(RUSAGE_SELF, &used);
  const std::chrono::duration<double> wall = std::chrono::steady_clock::now().time_since_epoch();
  return {
      static_cast<double>(used.ru_utime.tv_sec) + static_cast<double>(used.ru_utime.tv_usec) / 1e6,
      wall.count()};
}

// Line ends and blanks as they are written in C.
std::string visible(const std::string& words) {
  std::string result;
  for (const char c : words) {
    if (c == '\n') {
      result += "\\n";
    } else if (c == '\r') {
      result += "\\r";
    } else if (c == '\t') {
      result += "\\t";
    } else {
      result += c;
    }
  }
  return '"' + result + '"';
}

template <typename Read>
void slowestMegabyte(benchmark::State& state, const Read& read) {
  Spent slowest{0, 0};
  std::string which;
  for (auto _ : state) {
    for (const auto& [start, words] : patterns()) {
      std::string text = start;
      while (text.size() < kMegabyte) text += words;
      const Spent before = spent();
      read(text);
      const Spent after = spent();
      if (after.wall - before.wall <= slowest.wall) continue;
      slowest = {after.user - before.user, after.wall - before.wall};
      which = visible(start) + " and " + visible(words) + " again and again";
    }
  }
  state.counters["slowest_s"] = slowest.wall;
  state.counters["user_s"] = slowest.user;
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

void freshMemory(benchmark::State& state) {
  constexpr size_t kBytes = size_t{256} << 20U;
  constexpr size_t kPage = 4096;
  for (auto _ : state) {
    auto* memory = static_cast<volatile char*>(std::malloc(kBytes));
    if (memory == nullptr) return state.SkipWithError("no memory");
    for (size_t at = 0; at < kBytes; at += kPage) memory[at] = 1;
    std::free(const_cast<char*>(memory));
  }
}

BENCHMARK(inlineLexer)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(blockLexer)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(paragraphs)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(extraction)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(projectRewriting)->Iterations(1)->Unit(benchmark::kSecond);
BENCHMARK(freshMemory)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace
