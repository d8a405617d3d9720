// Real Markdown: what the commands say of every note of LARKSPIRE_CORPUS, against a slow count.

#include <algorithm>

#include "LKCore/NoteFiles/LKIndentation.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "ReadingFixture.h"
#include "Support/Corpus.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

class Corpus : public test::Reading {
 protected:
  Corpus() {
    if (test::corpus().empty()) return;
    fs::copy(test::corpus(), notes(), fs::copy_options::recursive);
    for (const auto& entry : fs::recursive_directory_iterator(notes())) {
      if (!entry.is_regular_file() || entry.path().extension() != ".md") continue;
      const std::string inside = entry.path().lexically_relative(notes()).string();
      if (inside.front() == '.' || inside.find("/.") != std::string::npos) continue;
      files.push_back(entry.path());
    }
    std::ranges::sort(files);
    EXPECT_FALSE(files.empty());
  }

  static std::string lower(std::string text) {
    for (char& c : text) {
      if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
  }

  // The numbers of the lines that hold the word, in a file that has no block of ours.
  static std::vector<int> linesWith(const std::string& word, const std::string& text) {
    std::vector<int> numbers;
    std::string line;
    int number = 1;
    for (const char c : text + "\n") {
      if (c != '\n') {
        line += c;
        continue;
      }
      if (lower(line).find(word) != std::string::npos) numbers.push_back(number);
      line.clear();
      ++number;
    }
    return numbers;
  }

  std::vector<fs::path> files;
};

TEST_F(Corpus, IsListedWhole) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  std::vector<std::string> expected;
  for (const fs::path& each : files) expected.push_back(each.stem());
  std::vector<std::string> listed = titles("list");
  std::ranges::sort(expected);
  std::ranges::sort(listed);
  EXPECT_EQ(listed, expected);
}

TEST_F(Corpus, IsSearchedLineByLine) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  for (const std::string word : {"note", "plugin", "e", "qzqzq"}) {
    std::map<std::string, std::vector<int>> expected;
    for (const fs::path& each : files) {
      auto lines = linesWith(word, test::readWhole(each));
      if (!lines.empty()) expected[each] = std::move(lines);
    }
    std::map<std::string, std::vector<int>> found;
    const std::string out = lk("search|--json|" + word).out;
    for (const Json& row : parseJson(out)) {
      for (const Json& match : row.at("matches")) {
        found[row.at("filePath")].push_back(match.at("lineNumber"));
      }
    }
    EXPECT_EQ(found, expected) << word;
    EXPECT_EQ(found.empty(), word == "qzqzq") << word;
  }
}

TEST_F(Corpus, HasTheTagsOfItsFiles) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  std::map<std::string, int> expected;
  for (const fs::path& each : files) {
    for (const std::string& tag :
         LKTagExtractor::extractTags(spacesToTabs(test::readWhole(each)))) {
      ++expected[tag];
    }
  }
  std::map<std::string, int> listed;
  for (const Json& row : parseJson(lk("tags|--json|--quiet").out)) {
    listed[row.at("tag")] = row.at("noteCount");
  }
  EXPECT_EQ(listed, expected);
}

}  // namespace
}  // namespace lk
