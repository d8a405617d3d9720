// Where the time of an index goes: each stage over the same made-up collection, in bytes of note
// files a second, and the whole for the parts that commands ask for. LARKSPIRE_BENCH_NOTES says how
// many notes there are (10,000 when not told).

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "LKCore/Backlinks/LKTitleIndex.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "Tools/GeneratedNotes.h"

namespace {

namespace fs = std::filesystem;

size_t noteCount() {
  const char* const told = std::getenv("LARKSPIRE_BENCH_NOTES");
  int64_t count = 0;
  return told != nullptr && lk::text::parseInteger(told, count) && count > 0
             ? static_cast<size_t>(count)
             : 10'000;
}

class IndexedCollection {
 public:
  IndexedCollection() {
    std::string name = fs::temp_directory_path() / "bench-index-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the notes");
    folder = name;
    bytes = lk::test::writeGeneratedNotes(folder, noteCount(), 1);
    for (const fs::path& path : lk::LKFileIndex::noteFiles(folder)) {
      paths.push_back(path.lexically_relative(folder).string());
    }
    lk::FolderReader reader(folder);
    for (const std::string& path : paths) {
      files.emplace_back(reader.read(path).value().bytes);
      parsed.push_back(lk::parseDocument(files.back()));
    }
  }
  ~IndexedCollection() { fs::remove_all(folder); }
  IndexedCollection(const IndexedCollection&) = delete;
  IndexedCollection& operator=(const IndexedCollection&) = delete;

  fs::path folder;
  uint64_t bytes = 0;
  std::vector<std::string> paths;
  std::vector<std::string> files;
  std::vector<lk::LKParsedDocument> parsed;
};

const IndexedCollection& collection() {
  static const IndexedCollection instance;
  return instance;
}

void reportNotes(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(collection().bytes));
  state.counters["notes"] = static_cast<double>(collection().paths.size());
}

void walk(benchmark::State& state) {
  for ([[maybe_unused]] auto _ : state) {
    size_t entries = 0;
    lk::walkFolder(collection().folder, [&](const lk::WalkEntry&) {
      ++entries;
      return lk::WalkStep::proceed;
    });
    benchmark::DoNotOptimize(entries);
  }
  reportNotes(state);
}

void readFiles(benchmark::State& state) {
  lk::FolderReader reader(collection().folder);
  for ([[maybe_unused]] auto _ : state) {
    for (const std::string& path : collection().paths) {
      benchmark::DoNotOptimize(reader.read(path));
    }
  }
  reportNotes(state);
}

template <typename Work>
void eachFile(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto _ : state) {
    for (const std::string& file : collection().files) benchmark::DoNotOptimize(work(file));
  }
  reportNotes(state);
}

template <typename Work>
void eachNote(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto _ : state) {
    for (const lk::LKParsedDocument& note : collection().parsed) {
      benchmark::DoNotOptimize(work(note));
    }
  }
  reportNotes(state);
}

void resolveTitles(benchmark::State& state) {
  const auto index = lk::LKFileIndex::build(collection().folder, lk::LKParts::links);
  const auto links = index->backLinks().fetch();
  for ([[maybe_unused]] auto _ : state) {
    lk::LKTitleIndex titles(*index);
    for (const lk::LKBackLink* link : links) {
      benchmark::DoNotOptimize(titles.noteForTitle(link->targetNoteReference));
    }
  }
  reportNotes(state);
}

void build(benchmark::State& state, lk::LKParts parts) {
  for ([[maybe_unused]] auto _ : state) {
    benchmark::DoNotOptimize(lk::LKFileIndex::build(collection().folder, parts));
  }
  reportNotes(state);
}

BENCHMARK(walk)->Unit(benchmark::kMillisecond);
BENCHMARK(readFiles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(eachFile, isValidUTF8, [](const std::string& file) {
  return lk::text::isValidUTF8(file);
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(eachFile, parseDocument, [](const std::string& file) {
  return lk::parseDocumentIfValid(file);
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(eachNote, extract, [](const lk::LKParsedDocument& note) {
  return lk::LKTagExtractor::extract(note.body);
})->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(eachNote, deriveTaskEntries, [](const lk::LKParsedDocument& note) {
  return lk::deriveTaskEntries(note.body, note.frontMatter.taskEntries);
})->Unit(benchmark::kMillisecond);
BENCHMARK(resolveTitles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, namesAlone, lk::LKParts::none)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, text, lk::LKParts::text)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, tags, lk::LKParts::tags)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, tasks, lk::LKParts::tasks)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, links, lk::LKParts::links)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(build, all, lk::LKParts::all)->Unit(benchmark::kMillisecond);

}  // namespace
