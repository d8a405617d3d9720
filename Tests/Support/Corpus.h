#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "LKCore/Base/Text.h"
#include "Support/TempFolder.h"

namespace lk::test {

// Visits the text of every note in the folder that the environment variable LARKSPIRE_CORPUS names
// and tells how many there were: none without the variable. A folder without notes is a failure.
template <typename Visit>
size_t forEachNote(const Visit& visit) {
  const char* folder = std::getenv("LARKSPIRE_CORPUS");
  if (folder == nullptr) return 0;
  size_t notes = 0;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".md") continue;
    const std::string text = readWhole(entry.path());
    if (!text::isValidUTF8(text)) continue;
    ++notes;
    visit(text);
  }
  EXPECT_GT(notes, 0U) << "no notes in " << folder;
  return notes;
}

}  // namespace lk::test
