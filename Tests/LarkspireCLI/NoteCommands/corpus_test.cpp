// Real Markdown through the tool: every file of LARKSPIRE_CORPUS becomes a note, is shown and
// changed, and must come back as an independent reading of the rules says.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "Support/Corpus.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

std::vector<fs::path> corpusFiles() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(test::corpus())) {
    if (entry.is_regular_file() && entry.path().extension() == ".md") files.push_back(entry.path());
  }
  EXPECT_FALSE(files.empty()) << "no notes in " << test::corpus();
  std::ranges::sort(files);
  return files;
}

// --- The rules of a body, read once more, slowly ---------------------------------------------

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines(1);
  for (const char c : text) {
    if (c == '\n') {
      lines.emplace_back();
    } else {
      lines.back() += c;
    }
  }
  return lines;
}

std::string joined(const Lines& lines) {
  std::string text;
  for (size_t i = 0; i < lines.size(); ++i) text += (i > 0 ? "\n" : "") + lines[i];
  return text;
}

void replaceEach(std::string& text, const std::string& from, const std::string& to) {
  for (size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

bool isDashes(std::string line) {
  std::erase_if(line, [](char c) { return c == ' ' || c == '\t' || c == '\r'; });
  return line == "---";
}

std::string withoutBlock(const std::string& text) {
  const Lines lines = linesOf(text);
  if (!isDashes(lines[0])) return text;
  for (size_t i = 1; i < lines.size(); ++i) {
    if (isDashes(lines[i]))
      return joined(Lines(lines.begin() + static_cast<long>(i) + 1, lines.end()));
  }
  return text;
}

size_t leadingSpaces(const std::string& line) {
  return std::min(line.find_first_not_of(' '), line.size());
}

// As it is stored.
std::string stored(std::string text) {
  replaceEach(text, "\r\n", "\n");
  replaceEach(text, "\r", "\n");
  Lines lines = linesOf(text);
  for (std::string& line : lines) {
    const size_t n = leadingSpaces(line);
    if (n >= 4) line = std::string(n / 4, '\t') + std::string(n % 4, ' ') + line.substr(n);
  }
  return joined(lines);
}

// As it is read.
std::string read(std::string text) {
  for (const char* newline : {"\v", "\f", "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
    replaceEach(text, newline, "\n");
  }
  for (bool trimming = true; trimming;) {
    trimming = false;
    for (const char* blank : {" ", "\t", "\n", "\xC2\xA0", "\xE3\x80\x80"}) {
      if (text.starts_with(blank)) {
        text.erase(0, std::string(blank).size());
        trimming = true;
      }
    }
  }
  Lines lines = linesOf(text);
  bool inFence = false;
  for (std::string& line : lines) {
    const size_t text0 = std::min(line.find_first_not_of(" \t"), line.size());
    if (line.substr(text0).starts_with("```")) {
      // A fence line itself still counts as outside when it opens one.
      const size_t n = leadingSpaces(line);
      if (!inFence && n > 0) line = std::string(std::max<size_t>(n, 4) / 4, '\t') + line.substr(n);
      inFence = !inFence;
      continue;
    }
    const size_t n = leadingSpaces(line);
    if (!inFence && n > 0) line = std::string(std::max<size_t>(n, 4) / 4, '\t') + line.substr(n);
  }
  return joined(lines);
}

// What `show --body` prints: a line feed is added where there is none.
std::string printed(std::string body) {
  if (!body.ends_with('\n')) body += '\n';
  return body;
}

// --- The tests ---------------------------------------------------------------------------------

TEST(Corpus, BecomesNotesAndComesBackWordForWord) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const std::vector<fs::path> files = corpusFiles();
  const test::Sandbox sandbox;
  fs::create_directory(sandbox.home() / "Notes");
  const auto lk = [&](std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--collection", "Notes"});
    return sandbox.lk(arguments);
  };
  for (const fs::path& file : files) {
    SCOPED_TRACE(file.string());
    const std::string title = file.stem().string();
    const ProcessResult created = lk({"create", "--json", "--from", file.string(), "--", title});
    ASSERT_EQ(created.status, 0) << created.err;
    const fs::path note = parseJson(created.out).at("path").get<std::string>();
    const std::string noteTitle = note.stem().string();
    const std::string expected = printed(read(stored(withoutBlock(test::readWhole(file)))));
    const ProcessResult shown = lk({"show", "--body", "--", noteTitle});
    ASSERT_EQ(shown.out, expected);
    ASSERT_EQ(lk({"edit", "--set-property", "k=v", "--force", "--", noteTitle}).status, 0);
    ASSERT_EQ(parseDocument(test::readWhole(note)).frontMatter.userProperties.at("k"), "v");
    ASSERT_EQ(lk({"edit", "--remove-property", "k", "--", noteTitle}).status, 0);
    const std::string whole = test::readWhole(note);
    const LKParsedDocument document = parseDocument(whole);
    ASSERT_FALSE(document.frontMatter.userProperties.contains("k"));
    ASSERT_EQ(document.frontMatter.contentHash, computeContentHash(document.body));
    ASSERT_EQ(lk({"show", "--body", "--", noteTitle}).out, expected);
  }
  const auto notes = fs::directory_iterator(sandbox.home() / "Notes");
  EXPECT_EQ(static_cast<size_t>(std::distance(begin(notes), end(notes))), files.size());
}

TEST(Corpus, LeftPlainIsNeverTouched) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  const std::vector<fs::path> files = corpusFiles();
  const test::Sandbox sandbox;
  const fs::path folder = sandbox.home() / "Plain";
  fs::create_directory(folder);
  for (size_t i = 0; i < files.size(); ++i) {
    const std::string title = "plain " + std::to_string(i);
    const fs::path copy = folder / (title + ".md");
    fs::copy_file(files[i], copy);
    const std::string before = test::readWhole(copy);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"show", title, "--collection", "Plain"},
          std::vector<std::string>{"edit", title, "--append", "x", "--collection", "Plain"}}) {
      const ProcessResult result = sandbox.lk(arguments);
      ASSERT_EQ(result.status, 5) << files[i];
      ASSERT_NE(result.err.find("This is a plain Markdown file"), std::string::npos) << result.err;
    }
    ASSERT_EQ(test::readWhole(copy), before);
  }
}

}  // namespace
}  // namespace lk
