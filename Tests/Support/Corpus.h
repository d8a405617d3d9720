#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "LKCore/Base/Text.h"
#include "Support/TempFolder.h"

namespace lk::test {

// The folder of real notes that the environment variable LARKSPIRE_CORPUS names; empty without it.
//
//     if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
inline std::filesystem::path corpus() {
  const char* folder = std::getenv("LARKSPIRE_CORPUS");
  return folder == nullptr ? "" : folder;
}

inline constexpr const char* kNoCorpus = "LARKSPIRE_CORPUS names no folder of real notes";

// Visits the file and the text of every note of the corpus. A folder without notes is a failure.
template <typename Visit>
void forEachNote(const Visit& visit) {
  size_t notes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(corpus())) {
    if (!entry.is_regular_file() || entry.path().extension() != ".md") continue;
    const std::string text = readWhole(entry.path());
    if (!text::isValidUTF8(text)) continue;
    ++notes;
    visit(entry.path(), text);
  }
  EXPECT_GT(notes, 0U) << "no notes in " << corpus();
}

}  // namespace lk::test
