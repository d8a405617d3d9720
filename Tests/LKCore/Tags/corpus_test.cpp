// Extraction and renaming over the notes of LARKSPIRE_CORPUS, each against a slow reading that
// knows nothing of the lexer.

#include <gtest/gtest.h>

#include <algorithm>
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
#include "Support/Corpus.h"
#include "Support/SlowReading.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

TEST(Corpus, IsExtractedAsASlowReadingFinds) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  size_t links = 0;
  size_t tasks = 0;
  test::forEachNote([&](const fs::path& path, const std::string& text) {
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
  EXPECT_GT(links, 100U);
  EXPECT_GT(tasks, 10U);
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
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const test::TempFolder folder;
  const LKTagIconStore icons(folder.path());
  const std::string head =
      "---\nid: 6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F\ncreated: 2026-03-14T09:26:53Z\nlk-hash: ";
  size_t renamed = 0;
  test::forEachNote([&](const fs::path& path, const std::string& text) {
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
  EXPECT_GT(renamed, 10U);
}

}  // namespace
}  // namespace lk
