// What binding a book costs: the manuscript alone, and the whole page, over a made-up book of
// 120,000 words in 40 chapters, in bytes of note bodies a second.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <utility>
#include <vector>

#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "Tools/GeneratedBook.h"

namespace {

constexpr size_t kBookWords = 120'000;

struct BookToBind {
  std::vector<lk::LKBindNoteInput> notes;
  int64_t bytes = 0;
};

const BookToBind& bookToBind() {
  static const BookToBind book = [] {
    BookToBind made;
    for (lk::test::GeneratedBookNote& note : lk::test::generatedBook(kBookWords, 1)) {
      made.bytes += static_cast<int64_t>(note.body.size());
      made.notes.push_back({std::move(note.title), std::move(note.body),
                            lk::LKBindNoteRoles::parse(note.role).value()});
    }
    return made;
  }();
  return book;
}

const lk::LKBindSubject kBoundSubject = {.tagName = "book/long", .author = "Ann Lee"};

void assemble(benchmark::State& state) {
  const lk::LKBindSpec spec;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(
        lk::LKBindAssembler::assemble(bookToBind().notes, spec, kBoundSubject));
  }
  state.SetBytesProcessed(state.iterations() * bookToBind().bytes);
}

void bindPage(benchmark::State& state) {
  lk::LKBindSpec spec;
  spec.frontMatter.tableOfContents.include = true;
  spec.filters.footnotePlacement = lk::LKBindFootnotePlacement::endOfChapter;
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(lk::LKBindEngine::bind(bookToBind().notes, spec, kBoundSubject));
  }
  state.SetBytesProcessed(state.iterations() * bookToBind().bytes);
}

BENCHMARK(assemble)->Unit(benchmark::kMillisecond);
BENCHMARK(bindPage)->Unit(benchmark::kMillisecond);

}  // namespace
