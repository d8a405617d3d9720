// Extraction and renaming over the notes of LARKSPIRE_CORPUS, each against a slow reading that
// knows nothing of the lexer. Passes at once when the variable is not set.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tags/LKTagRewriter.h"
#include "Support/SlowReading.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

template <typename Visit>
size_t forEachCorpusNote(const Visit& visit) {
  size_t notes = 0;
  const char* folder = std::getenv("LARKSPIRE_CORPUS");
  if (folder == nullptr) return notes;  // there is none to read
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.path().extension() != ".md") continue;
    const std::string text = test::readWhole(entry.path());
    if (!text::isValidUTF8(text)) continue;
    ++notes;
    visit(entry.path(), text);
  }
  EXPECT_GT(notes, 0U) << "no notes in " << folder;
  return notes;
}

TEST(Corpus, IsExtractedAsASlowReadingFinds) {
  size_t links = 0;
  size_t tasks = 0;
  const size_t notes = forEachCorpusNote([&](const fs::path& path, const std::string& text) {
    const ExtractionResult found = LKTagExtractor::extract(text);
    const test::SlowReading slow = test::slowReading(text);
    EXPECT_EQ(std::set<std::string>(found.backlinks.begin(), found.backlinks.end()), slow.backlinks)
        << path;
    std::vector<std::pair<int, char>> lines;
    for (const TaskInfo& task : found.tasks) {
      lines.emplace_back(task.paragraphIndex, " /x-"[task.statusRaw]);
    }
    std::vector<std::pair<int, char>> expected = slow.tasks;
    for (auto& [line, mark] : expected) mark = mark == 'X' ? 'x' : mark;
    EXPECT_EQ(lines, expected) << path;
    links += slow.backlinks.size();
    tasks += slow.tasks.size();
  });
  EXPECT_TRUE(notes == 0 || (links > 100 && tasks > 10))
      << links << " links, " << tasks << " tasks";
}

// Renames by looking at each "#", without patterns.
std::string slowlyRenamed(const std::string& text, const std::string& from, const std::string& to) {
  const auto goesOn = [](char32_t c) {
    static const Pattern letterOrNumber(R"([\p{L}\p{N}])");
    std::string one;
    text::append(one, c);
    return c == '-' || letterOrNumber.matches(one);
  };
  std::string result;
  for (size_t at = 0; at < text.size();) {
    const size_t behind = at + 1 + from.size();
    const bool isHit = text[at] == '#' && text.compare(at + 1, from.size(), from) == 0 &&
                       (behind == text.size() || !goesOn(text::decode(text, behind).scalar));
    result += isHit ? "#" + to : std::string(1, text[at]);
    at = isHit ? behind : at + 1;
  }
  return result;
}

TEST(Corpus, IsRenamedAndElseUntouched) {
  const test::TempFolder folder;
  const LKTagIconStore icons(folder.path());
  const std::string head =
      "---\nid: 6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F\ncreated: 2026-03-14T09:26:53Z\nlk-hash: ";
  size_t renamed = 0;
  const size_t notes = forEachCorpusNote([&](const fs::path& path, const std::string& text) {
    const fs::path copy = folder / "Copy.md";
    auto tags = LKTagExtractor::extractTags(text);
    tags.emplace("a");
    for (const std::string& tag : tags) {
      test::writeWhole(copy, std::string(head).append("0\n---\n").append(text));
      const bool changes =
          !LKTagRewriter::renameInFiles({{copy, text}}, tag, "new/name", true, icons).empty();
      const std::string body = slowlyRenamed(text, tag, "new/name");
      const std::string file = test::readWhole(copy);
      ASSERT_EQ(changes, body != text) << path << tag;
      if (!changes) continue;
      ++renamed;
      const LKParsedDocument read = parseDocument(file);
      EXPECT_EQ(read.frontMatter.contentHash, computeContentHash(read.body)) << path;
      ASSERT_TRUE(file.starts_with(head) || file.find("\nlk-tasks: ") < file.find("\nlk-hash: "));
      EXPECT_EQ(file.substr(file.find("\n---\n") + 5), body) << path << tag;
    }
  });
  EXPECT_TRUE(notes == 0 || renamed > 10) << renamed;
}

}  // namespace
}  // namespace lk
