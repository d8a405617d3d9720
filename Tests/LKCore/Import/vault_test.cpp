// A vault on its way in: blocks, dates, folders, attachments, and its links, which are compared with
// a reading by patterns.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKObsidianImporter.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKNoteEdit.h"
#include "Support/Corpus.h"
#include "Support/Growth.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
namespace vault = LKObsidianImporter;
using vault::ObsidianFrontMatter;

// --- Blocks --------------------------------------------------------------------------------------

TEST(VaultBlock, IsReadLineByLine) {
  struct Row {
    const char* name;
    std::string text;
    std::optional<ObsidianFrontMatter> block;
    std::string body;
  };
  for (const Row& row : std::vector<Row>{
           {"none", "# Plan\n", {}, "# Plan\n"},
           {"not closed", "---\ntags: a\nb", {}, "---\ntags: a\nb"},
           {"empty", "---\n---\nb", ObsidianFrontMatter{}, "b"},
           {"inline tags", "---\ntags: [a, \"b\"]\n---\nb", ObsidianFrontMatter{.tags = {"a", "b"}},
            "b"},
           {"tags in lines", "---\ntags:\n- a\n  - '#b'\n---\nb",
            ObsidianFrontMatter{.tags = {"a", "b"}}, "b"},
           {"tags with commas", "---\ntags: a, #b,,\n---\nb",
            ObsidianFrontMatter{.tags = {"a", "b"}}, "b"},
           {"lines of another key", "---\ntags: a\nup:\n- b\n# note\n\nalias: 'Al'\n- Bo\n---\n",
            ObsidianFrontMatter{.aliases = {"Al", "Bo"}, .tags = {"a"}}, ""},
           {"the last date",
            "---\nDate: 2024-01-01\ncreated: \"2024-01-02 10:00\"\ntitle: 'A: b'\n"
            "cssclasses: wide\nno colon\n --- \nb",
            ObsidianFrontMatter{.title = "A: b", .date = "2024-01-02 10:00", .cssclass = "wide"},
            "b"},
       }) {
    const auto [block, body] = vault::parseFile(row.text);
    EXPECT_EQ(block, row.block) << row.name;
    EXPECT_EQ(body, row.body) << row.name;
  }
}

TEST(VaultBlock, DatesAreThoseOfTheCurrentZone) {
  setenv("TZ", "Europe/Berlin", 1);
  tzset();
  const std::vector<std::pair<std::string, std::string>> rows = {
      {" 2024-03-01 ", "2024-02-29T23:00:00Z"},
      {"2024-03-01T10:20:30", "2024-03-01T09:20:30Z"},
      {"2024-07-01 10:20:30", "2024-07-01T08:20:30Z"},
      {"2024-07-01 10:20", "2024-07-01T08:20:00Z"},
      {"2024-07-01T10:20:30+05:00", "2024-07-01T05:20:30Z"},
  };
  for (const auto& [text, expected] : rows) {
    const auto date = vault::parseDate(text);
    EXPECT_EQ(date ? formatISO8601(*date) : "none", expected) << text;
  }
  for (const char* text : {"", "soon", "2024-02-30", "2024-03-01 1:20", "2024-03-01 10:20:3x",
                           "2024-03-01 10:20:-1"}) {
    EXPECT_FALSE(vault::parseDate(text)) << text;
  }
  setenv("TZ", "UTC", 1);
  tzset();
}

// --- Rewriting -----------------------------------------------------------------------------------

const vault::ImageMapping& images() {
  static const vault::ImageMapping mapping = {{"b.png", "stored.png"}, {"c d.png", "c_d.png"}};
  return mapping;
}

TEST(VaultLinks, BecomeThoseOfTheDialect) {
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"[[Target|shown]] [[Plain]]", "[[Target]] [[Plain]]"},
      {"| [[Target\\|shown]] |", "| [[Target]] |"},
      {"![[b.png|300]] ![[sub/b.png]] ![[x.png]]",
       "![](.attachments/stored.png) ![](.attachments/stored.png) ![[x.png]]"},
      {"| ![[b.png\\|300]] |", "| ![](.attachments/stored.png) |"},
      {"![alt](a/c%20d.png) ![](https://x.org/b.png)",
       "![alt](.attachments/c_d.png) ![](https://x.org/b.png)"},
      {"```\n[[a|b]] ![[b.png]]\n```", "```\n[[a|b]] ![[b.png]]\n```"},
      {"[[a\n|b]]", "[[a\n|b]]"},
  };
  for (const auto& [before, after] : rows) {
    std::string body = vault::convertImageEmbeds(before, images());
    body = vault::rewriteStandardImagePaths(body, images());
    EXPECT_EQ(vault::convertAliasedLinks(body), after);
  }
}

std::string lastComponent(const std::string& reference) {
  return reference.substr(reference.rfind('/') + 1);
}

// The same rules as patterns over one line.
std::string replacedByPattern(const std::string& line, const Pattern& pattern,
                              const std::function<std::string(const Pattern::Match&)>& with) {
  std::string result;
  size_t copied = 0;
  for (const Pattern::Match& match : pattern.findAll(line)) {
    result += line.substr(copied, match[0]->start - copied) + with(match);
    copied = match[0]->end;
  }
  return result + line.substr(copied);
}

std::string embedsByPattern(const std::string& line) {
  static const Pattern embed(R"(!\[\[([^\]\|]+?)(?:\|[^\]]*?)?\]\])");
  return replacedByPattern(line, embed, [&](const Pattern::Match& match) {
    const auto found = images().find(lastComponent(std::string(match[1]->of(line))));
    return found == images().end() ? std::string(match[0]->of(line))
                                   : "![](.attachments/" + found->second + ")";
  });
}

std::string imagesByPattern(const std::string& line) {
  static const Pattern image(R"(!\[([^\]]*)\]\((?!https?://)([^)]+)\))");
  return replacedByPattern(line, image, [&](const Pattern::Match& match) {
    const std::string target = LKImportEngine::percentDecoded(match[2]->of(line));
    const auto found = images().find(lastComponent(target));
    return found == images().end()
               ? std::string(match[0]->of(line))
               : "![" + std::string(match[1]->of(line)) + "](.attachments/" + found->second + ")";
  });
}

std::string aliasesByPattern(const std::string& line) {
  static const Pattern alias(R"(\[\[([^\]\|]+)\|[^\]]+\]\])");
  return alias.replacingAllByTemplate(line, "[[$1]]");
}

TEST(VaultLinks, AreWhatPatternsFindInRandomLines) {
  const std::vector<std::string> pieces = {"![[", "[[", "]]", "|",   "a",       "b.png",
                                           "](",  ")",  "!",  "[",   "]",       "/",
                                           " ",   "![", "(",  "%20", "http://", "c d.png"};
  std::mt19937 random(20260314);
  for (int i = 0; i < 30'000; ++i) {
    std::string line;
    for (size_t count = random() % 14; count > 0; --count) line += pieces[random() % pieces.size()];
    ASSERT_EQ(vault::convertImageEmbeds(line, images()), embedsByPattern(line)) << line;
    ASSERT_EQ(vault::rewriteStandardImagePaths(line, images()), imagesByPattern(line)) << line;
    ASSERT_EQ(vault::convertAliasedLinks(line), aliasesByPattern(line)) << line;
  }
}

TEST(VaultLinks, TakeTimeInProportionToTheText) {
  for (const std::string unit : {"![[", "[[a|", "![](", "![", "![[a]", "[[", "#1", "#_ "}) {
    const double times = test::growth(unit, 200'000, [](const std::string& text) {
      vault::convertImageEmbeds(text, images());
      vault::rewriteStandardImagePaths(text, images());
      vault::convertAliasedLinks(text);
      LKImportEngine::prefixInlineTags(text, "p/");
    });
    EXPECT_LE(times, 8) << unit;
  }
}

// --- Whole vaults --------------------------------------------------------------------------------

class Vault : public testing::Test {
 protected:
  Vault() {
    write(".obsidian/app.json", R"({"attachmentFolderPath": "Files"})");
    fs::create_directories(notes());
    context.destinationFolder = notes();
    context.attachmentsDirectory = notes() / ".attachments";
  }

  fs::path root() const { return folder / "vault"; }
  fs::path notes() const { return folder / "notes"; }

  void write(const std::string& name, const std::string& bytes) const {
    fs::create_directories((root() / name).parent_path());
    test::writeWhole(root() / name, bytes);
  }

  vault::ImportBatchResult imported(const fs::path& from) {
    std::vector<vault::ImportProblem> unreadable;
    const auto entries = vault::collectEntries(from, unreadable);
    auto result = vault::performImport(entries, vault::collectImages(from), from, {}, context, {});
    result.errors.insert(result.errors.end(), unreadable.begin(), unreadable.end());
    return result;
  }

  std::string body(const std::string& name) const {
    return parseDocument(test::readWhole(notes() / (name + ".md"))).body;
  }

  const test::TempFolder folder;
  vault::ImportContext context;
};

TEST_F(Vault, ComesWithFoldersTagsDatesAndPictures) {
  setenv("TZ", "UTC", 1);
  tzset();
  write("Home.md", "See [[Plan|the plan]] #start ![[photo.png|300]]");
  write("Work/My notes/Plan.md",
        "---\ntitle: The plan\ntags: [a, \"b c\"]\ndate: 2024-03-01\nup: x\n---\n"
        "![here](./photo.png) ![[Manual.pdf#page=3]] ![[Home]]\n");
  write("Files/photo.png", "of all");
  write("Work/My notes/photo.png", "of work");
  write("Work/manual.PDF", "pages");
  write("Files/unused.png", "nobody");
  write("Sketch.excalidraw.md", "drawing");
  write(".trash/Old.md", "old");
  write("node_modules/x/readme.md", "code");
  write("Latin.md", "caf\xE9");
  fs::create_symlink("/etc/passwd", root() / "leak.md");
  fs::create_directory_symlink("/etc", root() / "etc");
  const auto result = imported(root());
  EXPECT_EQ(result.importedCount, 2U);
  const std::vector<vault::ImportProblem> expected = {
      {"Latin.md", "Could not read or decode file"},
      {"leak.md", "Could not read or decode file"},
  };
  EXPECT_EQ(result.errors, expected);
  EXPECT_EQ(body("Home"),
            "See [[Plan]] #imported/obsidian/start ![](.attachments/photo.png)\n\n"
            "#imported/obsidian\n");
  EXPECT_EQ(body("Plan"),
            "![here](.attachments/photo%202.png) ![](.attachments/manual.PDF#page=3) ![[Home]]\n\n"
            "#imported/obsidian/a\n\n#imported/obsidian/b-c\n\n"
            "#imported/obsidian/Work/My-notes\n");
  const auto plan = parseDocument(test::readWhole(notes() / "Plan.md")).frontMatter;
  EXPECT_EQ(plan.title, "The plan");
  EXPECT_EQ(formatISO8601(plan.created), "2024-03-01T00:00:00Z");
  EXPECT_EQ(test::readWhole(notes() / ".attachments/photo.png"), "of all");
  EXPECT_EQ(test::readWhole(notes() / ".attachments/photo 2.png"), "of work");
  EXPECT_FALSE(fs::exists(notes() / ".attachments/unused.png"));
}

TEST_F(Vault, TakesNoNewNameOfAPictureForAnOldOne) {
  write("Home.md", "![[a b.png]] ![[a_b.png]] ![](a_b.png)");
  write("a b.png", "first");
  write("a_b.png", "second");
  EXPECT_EQ(imported(root()).importedCount, 1U);
  EXPECT_EQ(test::readWhole(notes() / ".attachments/a_b 2.png"), "second");
  EXPECT_EQ(body("Home"),
            "![](.attachments/a_b.png) ![](.attachments/a_b%202.png) "
            "![](.attachments/a_b%202.png)\n\n#imported/obsidian\n");
}

TEST_F(Vault, FindsAttachmentsInTheToldOrder) {
  for (const char* name : {"Files/a.png", "Work/a.png", "Work/b.png", "b.png", "Deep/er/c.png",
                           "Deep/Ä d.png", "Work/sub/e.png"}) {
    write(name, name);
  }
  const vault::AttachmentIndex index(root(), vault::collectImages(root()));
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"a.png", "Files/a.png"},
      {"b.png", "Work/b.png"},
      {"/b.png", "b.png"},
      {"../b.png", "b.png"},
      {"sub/e.png", "Work/sub/e.png"},
      {"ER/C.png", "Deep/er/c.png"},
      {"elsewhere/c.png", "Deep/er/c.png"},
      {"a%CC%88%20d.png", "Deep/Ä d.png"},
      {"../../../../etc/passwd", ""},
      {"Work", ""},
      {"", ""},
      {"c.png#x", "Deep/er/c.png"},
  };
  for (const auto& [reference, expected] : rows) {
    const fs::path* const found = index.resolve(reference, root() / "Work/Note.md");
    EXPECT_EQ(found == nullptr ? "" : found->lexically_relative(root()).string(), expected)
        << reference;
  }
}

std::string nameOf(const vault::ObsidianEntry& entry) {
  return LKImportEngine::sanitizeFilename(entry.url.stem().string());
}

// The lines that hold nothing an import rewrites.
std::vector<std::string> plainLines(const std::string& body) {
  std::vector<std::string> lines;
  const std::string inMemory = LKNoteEdit::bodyInMemory(body);
  for (const std::string_view line : text::split(inMemory, '\n')) {
    const bool isRewritten = line.find("[[") != std::string_view::npos ||
                             line.find("](") != std::string_view::npos ||
                             line.find('#') != std::string_view::npos;
    if (!isRewritten && !text::trimmed(line).empty()) lines.emplace_back(line);
  }
  return lines;
}

bool hasLinesInOrder(const std::string& text, const std::vector<std::string>& lines) {
  auto wanted = lines.begin();
  for (const std::string_view line : text::split(text, '\n')) {
    if (wanted != lines.end() && line == *wanted) ++wanted;
  }
  return wanted == lines.end();
}

TEST_F(Vault, OfTheCorpusKeepsItsWordsAndLosesNoNote) {
  if (test::corpus().empty()) GTEST_SKIP() << test::kNoCorpus;
  size_t languages = 0;
  for (const auto& language : fs::directory_iterator(test::corpus())) {
    if (!language.is_directory()) continue;
    ++languages;
    const fs::path copy = folder / language.path().filename().string();
    fs::copy(language.path(), copy, fs::copy_options::recursive);
    fs::remove_all(notes());
    fs::create_directories(notes());
    context = {.destinationFolder = notes(), .attachmentsDirectory = notes() / ".attachments"};
    std::vector<vault::ImportProblem> unreadable;
    const auto entries = vault::collectEntries(copy, unreadable);
    EXPECT_TRUE(unreadable.empty());
    const auto result = imported(copy);
    EXPECT_EQ(result.importedCount, entries.size());
    EXPECT_TRUE(result.errors.empty());
    std::map<std::string, size_t> named;
    for (const auto& entry : entries) ++named[nameOf(entry)];
    for (const auto& entry : entries) {
      if (named[nameOf(entry)] > 1) continue;  // which of them has which number is another test's
      const std::string text = body(nameOf(entry));
      EXPECT_TRUE(text.ends_with("#imported/obsidian\n") || entry.folderTag) << entry.url;
      EXPECT_TRUE(hasLinesInOrder(text, plainLines(entry.body))) << entry.url;
    }
    size_t made = 0;
    for (const auto& entry : fs::directory_iterator(notes())) {
      if (entry.path().extension() == ".md") ++made;
    }
    EXPECT_EQ(made, entries.size());
  }
  EXPECT_GT(languages, 0U);
}

}  // namespace
}  // namespace lk
