// How fast note files are read, written and hashed, in bytes of note files a second, beside the
// plain reading of the same files with read(2) into one buffer. The notes are those of
// LARKSPIRE_CORPUS, with a block put before each, or else made up.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"

namespace {

namespace fs = std::filesystem;

std::vector<std::string> bodies() {
  std::vector<std::string> result;
  if (const char* corpus = std::getenv("LARKSPIRE_CORPUS")) {
    for (const auto& entry : fs::recursive_directory_iterator(corpus)) {
      if (!entry.is_regular_file() || entry.path().extension() != ".md") continue;
      std::ifstream in(entry.path(), std::ios::binary);
      result.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    return result;
  }
  for (int note = 0; note < 1000; ++note) {
    std::string body = "# Note " + std::to_string(note) + "\n\n";
    for (int line = 0; line < 60; ++line) {
      body += line % 6 == 0 ? "- [ ] Water bed " + std::to_string(line) + " due:2026-03-20\n"
                            : "    Rows of beans, caf\u00E9 and thyme \u2014 to the wall.\n";
    }
    result.push_back(std::move(body));
  }
  return result;
}

// The notes in memory and, under the same numbers, in a folder of their own.
class Notes {
 public:
  Notes() {
    std::string name = fs::temp_directory_path() / "bench-note_format-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the notes");
    folder_ = name;
    lk::LKFileFrontMatter frontMatter;
    frontMatter.title = "A note";
    frontMatter.userProperties = {{"area", "Garden"}, {"status", "Draft"}};
    for (std::string& body : bodies()) {
      frontMatter.id = lk::UUID::random();
      frontMatter.taskEntries = lk::deriveTaskEntries(body, {});
      files.push_back(lk::serialize(frontMatter, body));
      paths.push_back((folder_ / std::to_string(files.size())).string());
      std::ofstream(paths.back(), std::ios::binary) << files.back();
      parsed.push_back(lk::parseDocument(files.back()));
      bytes += files.back().size();
    }
  }
  ~Notes() { fs::remove_all(folder_); }
  Notes(const Notes&) = delete;
  Notes& operator=(const Notes&) = delete;

  std::vector<std::string> files;
  std::vector<std::string> paths;
  std::vector<lk::LKParsedDocument> parsed;
  size_t bytes = 0;

 private:
  fs::path folder_;
};

const Notes& notes() {
  static const Notes instance;
  return instance;
}

void report(benchmark::State& state) {
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(notes().bytes));
  state.counters["notes"] = static_cast<double>(notes().files.size());
}

void readPlainly(benchmark::State& state) {
  std::string buffer(1 << 20, '\0');
  for ([[maybe_unused]] auto _ : state) {
    for (const std::string& path : notes().paths) {
      const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
      while (read(file, buffer.data(), buffer.size()) > 0) benchmark::DoNotOptimize(buffer.data());
      close(file);
    }
  }
  report(state);
}

template <typename Work>
void overFiles(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto _ : state) {
    for (const std::string& file : notes().files) benchmark::DoNotOptimize(work(file));
  }
  report(state);
}

template <typename Work>
void overParsed(benchmark::State& state, Work work) {
  for ([[maybe_unused]] auto _ : state) {
    for (const auto& [frontMatter, body] : notes().parsed) {
      benchmark::DoNotOptimize(work(frontMatter, body));
    }
  }
  report(state);
}

BENCHMARK(readPlainly);
BENCHMARK_CAPTURE(overFiles, parseDocument,
                  [](const std::string& file) { return lk::parseDocument(file); });
BENCHMARK_CAPTURE(overFiles, readIdentity,
                  [](const std::string& file) { return lk::readIdentity(file); });
BENCHMARK_CAPTURE(overFiles, computeContentHash,
                  [](const std::string& file) { return lk::computeContentHash(file); });
BENCHMARK_CAPTURE(overParsed, serialize,
                  [](const lk::LKFileFrontMatter& frontMatter, const std::string& body) {
                    return lk::serialize(frontMatter, body);
                  });
BENCHMARK_CAPTURE(overParsed, deriveTaskEntries,
                  [](const lk::LKFileFrontMatter& frontMatter, const std::string& body) {
                    return lk::deriveTaskEntries(body, frontMatter.taskEntries);
                  });

}  // namespace
