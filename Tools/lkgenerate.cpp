// lkgenerate: writes a made-up collection, for measurements that can be repeated.
//
//   lkgenerate FOLDER COUNT [SEED]
//
// COUNT notes of 1 to 6 KB, 3.7 KB on average, with a block, tags, three tasks and three links
// each, in nested folders. The same seed (1 when not told) gives the same bytes.

#include <cstdint>
#include <cstdio>
#include <exception>
#include <string>

#include "LKCore/Base/Text.h"
#include "Support/GeneratedNotes.h"

int main(int argc, char** argv) {
  int64_t count = 0;
  int64_t seed = 1;
  const bool isUnderstood = (argc == 3 || argc == 4) && lk::text::parseInteger(argv[2], count) &&
                            (argc == 3 || lk::text::parseInteger(argv[3], seed)) && count >= 0;
  if (!isUnderstood) {
    std::fputs("usage: lkgenerate FOLDER COUNT [SEED]\n", stderr);
    return 64;
  }
  try {
    const uint64_t bytes = lk::test::writeGeneratedNotes(argv[1], static_cast<size_t>(count),
                                                         static_cast<uint64_t>(seed));
    std::printf("%lld notes, %llu bytes\n", static_cast<long long>(count),
                static_cast<unsigned long long>(bytes));
  } catch (const std::exception& error) {
    std::fprintf(stderr, "lkgenerate: %s\n", error.what());
    return 1;
  }
  return 0;
}
