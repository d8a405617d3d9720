// lkgenerate: writes a made-up collection, for measurements that can be repeated.
//
//   lkgenerate FOLDER COUNT [SEED]
//   lkgenerate --store HOME FOLDER ID
//   lkgenerate --book FOLDER WORDS
//
// COUNT notes of 1 to 6 KB, 3.7 KB on average, with a block, tags, three tasks and three links
// each, in nested folders. The same seed (1 when not told) gives the same bytes. With --store the
// application under HOME comes to know the collection in FOLDER as ID, with an index of it. With
// --book the notes are a manuscript of WORDS words, under the tag "book/long".

#include <cstdint>
#include <cstdio>
#include <exception>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "Tools/GeneratedBook.h"
#include "Tools/GeneratedNotes.h"
#include "Tools/PlantedStore.h"

namespace {

int plant(char** arguments) {
  lk::test::plantApplication(arguments[0], arguments[1], arguments[2]);
  return 0;
}

int generate(const char* folder, int64_t count, int64_t seed) {
  const uint64_t bytes = lk::test::writeGeneratedNotes(folder, static_cast<size_t>(count),
                                                       static_cast<uint64_t>(seed));
  std::printf("%lld notes, %llu bytes\n", static_cast<long long>(count),
              static_cast<unsigned long long>(bytes));
  return 0;
}

int generateBook(const char* folder, int64_t words) {
  const uint64_t bytes = lk::test::writeGeneratedBook(folder, static_cast<size_t>(words), 1);
  std::printf("%lld words, %llu bytes\n", static_cast<long long>(words),
              static_cast<unsigned long long>(bytes));
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const bool isStore = argc == 5 && std::string_view(argv[1]) == "--store";
  int64_t count = 0;
  const bool isBook = argc == 4 && std::string_view(argv[1]) == "--book" &&
                      lk::text::parseInteger(argv[3], count) && count >= 0;
  int64_t seed = 1;
  const bool isFolder = !isBook && (argc == 3 || argc == 4) &&
                        lk::text::parseInteger(argv[2], count) &&
                        (argc == 3 || lk::text::parseInteger(argv[3], seed)) && count >= 0;
  if (!isFolder && !isStore && !isBook) {
    std::fputs(
        "usage: lkgenerate FOLDER COUNT [SEED] | --store HOME FOLDER ID | --book FOLDER WORDS\n",
        stderr);
    return 64;
  }
  try {
    if (isBook) return generateBook(argv[2], count);
    return isStore ? plant(argv + 2) : generate(argv[1], count, seed);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lkgenerate: %s\n", error.what());
    return 1;
  }
}
