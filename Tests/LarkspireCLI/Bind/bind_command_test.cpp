// `lk bind`: which notes become a book and in which order, where it is written, and what is refused.

#include "LKCore/Base/Pattern.h"
#include "LarkspireCLI/Reading/ReadingFixture.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;

class Bind : public test::Reading {
 protected:
  // A note of the novel whose body is one word; `rank` may be empty.
  void part(const std::string& title, const std::string& word, const std::string& rank,
            const std::string& role = "", const std::string& tag = "novel") const {
    note(title, "# " + title + "\n\n" + word + "zz #" + tag, 1, [&](LKFileFrontMatter& block) {
      if (!rank.empty()) block.tagRanks["novel"] = rank;
      if (!role.empty()) block.userProperties["manuscript-role"] = role;
    });
  }

  // The words "…zz" of the book, in their order.
  static std::string wordsOf(const std::string& document) {
    static const Pattern word("([a-z]+)zz");
    std::string found;
    for (const Pattern::Match& match : word.findAll(document)) {
      const TextRange range = match.at(1).value_or(TextRange{});
      found += found.empty() ? "" : " ";
      found += range.of(document);
    }
    return found;
  }

  void expectRefusal(const std::string& line, const std::string& message) const {
    const ProcessResult result = lk(line + "|--quiet");
    EXPECT_EQ(result.err, "Error: " + message + "\n") << line;
    EXPECT_EQ(result.status, 1) << line;
    EXPECT_EQ(result.out, "") << line;
  }

  fs::path written(const std::string& name) const { return sandbox.home() / name; }
};

TEST_F(Bind, TakesTheNotesOfATagInTheirOrder) {
  part("A", "third", "c_0000");
  part("B", "second", "b_0000", "", "novel/middle");
  part("C", "first", "a_0000");
  part("D", "front", "d_0000", "front-matter");
  part("E", "left", "b_0000", "Skip");
  part("F", "other", "a_0000", "", "novella");
  part(".trash/G", "trashed", "a_0000");
  part("H", "end", "a_0000", " End-Matter ");
  note("I", "archivedzz #novel", 0, [](LKFileFrontMatter& block) { block.isArchived = true; });
  note("J", "newerzz #novel", 0);
  note("K", "olderzz #novel", 5);
  for (const std::string tag : {"novel", "#Novel"}) {
    const ProcessResult result = lk("bind|--output|-|--quiet|--tag|" + tag);
    EXPECT_EQ(wordsOf(result.out), "front first second third newer older end") << tag;
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out.starts_with("<!DOCTYPE html>")) << result.out.substr(0, 80);
  }
}

TEST_F(Bind, WritesTheBookWhereItIsAskedTo) {
  part("A", "only", "");
  const std::string path = written("novel.html").string();
  const ProcessResult first = lk("bind|--tag|novel");
  EXPECT_EQ(first.out, "✓ Wrote " + path + "\n");
  EXPECT_EQ(first.err, std::string(kHint) + "Binding 1 note from novel as html.\n");
  const std::string document = test::readWhole(path);
  EXPECT_EQ(wordsOf(document), "only");

  test::writeWhole(path, "old");
  EXPECT_EQ(parseJson(lk("bind|--tag|novel|--json|--quiet").out),
            Json({{"format", "html"}, {"noteCount", 1}, {"path", path}}));
  EXPECT_EQ(test::readWhole(path), document);

  part("B", "deep", "", "", "a/b");
  EXPECT_EQ(lk("bind|--tag|a/b|--quiet").status, 0);
  EXPECT_EQ(wordsOf(test::readWhole(written("a-b.html"))), "deep");
  EXPECT_EQ(lk("bind|--tag|novel|--quiet|--output|book.md").status, 0);
  EXPECT_EQ(test::readWhole(written("book.md")), document);
  EXPECT_EQ(lk("bind|--tag|novel|--quiet|--output|book.pdf|--format|HTML").status, 0);
  EXPECT_EQ(test::readWhole(written("book.pdf")), document);
}

TEST_F(Bind, TakesOneBookNoteByItsTitle) {
  const auto isBook = [](LKFileFrontMatter& block) { block.isBook = true; };
  expectRefusal("bind|--book|Saga",
                "No book notes found in this collection. Mark one with `lk-book: true` in its "
                "front matter (or use the Mac bind sheet's 'Mark as Book' action), then re-run.");
  note("Saga 10", "# Chapter: Dawn\n\ndawnzz\n# Skip: Notes\n\nleftzz\n# Kapítel: Dusk\n\nduskzz",
       0, isBook);
  note("Saga 9", "ninthzz", 0, isBook);
  note(".trash/Old saga", "oldzz", 0, isBook);
  note("Plain", "plainzz");
  const ProcessResult bound = lk("bind|--book|Saga 10");
  EXPECT_EQ(bound.out, "✓ Wrote " + written("Saga 10.html").string() + "\n");
  EXPECT_EQ(bound.err, std::string(kHint) + "Binding 1 note from book \"Saga 10\" as html.\n");
  EXPECT_EQ(wordsOf(test::readWhole(written("Saga 10.html"))), "dawn dusk");
  for (const std::string title : {"Plain", "saga 9", "Old saga"}) {
    expectRefusal("bind|--book|" + title, "No book note titled '" + title +
                                              "' was found. Available book notes in this "
                                              "collection:\n  - Saga 9\n  - Saga 10");
  }
  note("A saga-like iX", "xzz", 0, isBook);
  EXPECT_NE(
      lk("bind|--book|A saga-like iX|--output|-|--quiet").out.find("<title>A saga-like iX</title>"),
      std::string::npos);
}

TEST_F(Bind, AddsATitlePageWhereNoNoteIsOne) {
  part("A", "only", "");
  const auto bound = [&](const std::string& options) {
    return lk("bind|--tag|novel|--output|-|--quiet" + options).out;
  };
  EXPECT_NE(bound("|--author|Ann <Green> #x")
                .find("<p class=\"bind-author\">Ann &#60;Green&#62; &#35;x</p>"),
            std::string::npos);
  const std::string unsignedBook = bound("");
  EXPECT_NE(unsignedBook.find("<h1 class=\"bind-title\">Novel</h1>"), std::string::npos);
  EXPECT_EQ(unsignedBook.find("<p class=\"bind-author\">"), std::string::npos);
  test::writeWhole(
      written("spec.json"),
      R"({"front_matter": {"title_page": {"include": false, "title": "", "subtitle": "",
                       "author": "", "alignment": "left", "vertical_position": "top"},
                       "table_of_contents": {"include": false, "title": "", "max_depth": 1}}})");
  EXPECT_EQ(bound("|--spec-file|spec.json").find("<h1 class=\"bind-title\">"), std::string::npos);
  part("B", "own", "", "title-page");
  const std::string own = bound("");
  EXPECT_EQ(own.find("<h1 class=\"bind-title\">"), std::string::npos);
  EXPECT_EQ(wordsOf(own), "own only");
}

TEST_F(Bind, AddsTheNotesThatASpecNames) {
  part("A", "chapter", "");
  part("B", "draft", "", "", "novel #draft");
  note("Rights", "rightszz");
  note("Me", "mezz");
  test::writeWhole(written("spec.json"),
                   R"({"filters": {"skip_notes_tagged": "draft"}, "theme": "swiss",
                       "back_matter": {"about_author_note": "Me"}, "front_matter": {
                       "title_page": {"include": true, "title": "T", "subtitle": "{wordcount} titlezz by {author_surname} {x}",
                       "author": "", "alignment": "left", "vertical_position": "top"},
                       "copyright_note": "Rights",
                       "table_of_contents": {"include": false, "title": "", "max_depth": 1}}})");
  const std::string line = "bind|--tag|novel|--output|-|--spec-file|spec.json";
  EXPECT_NE(lk(line + "|--quiet").out.find(">4 titlezz by  &#123;x&#125;</p>"), std::string::npos);
  // The options that shape a preset do not apply, be they right or wrong.
  EXPECT_EQ(wordsOf(lk(line + "|--style|none|--quiet").out), "title rights chapter me");
  fs::remove(file("Me"));
  const ProcessResult refused = lk(line + "|--quiet");
  EXPECT_EQ(refused.status, 1);
  EXPECT_NE(refused.err.find("'Me'"), std::string::npos) << refused.err;
}

TEST_F(Bind, RefusesWhatItCannotDo) {
  part("A", "only", "");
  part("B", "gone", "", "", "lost");
  fs::create_directories(file(".trash/B").parent_path());
  fs::rename(file("B"), file(".trash/B"));
  test::writeWhole(written("bad.json"), "{\n\"theme\": 3}");
  test::writeWhole(written("later.json"), "{\"schema_version\": 2}");
  const std::string novel = "bind|--tag|novel|";
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"bind", "Must specify either --tag <path> or --book \"<note title>\"."},
      {novel + "--book|X|--style|none", "--tag and --book are mutually exclusive. Pick one."},
      {"bind|--tag|#", "No source specified."},
      {"bind|--tag|nove",
       "Tag 'nove' was not found in this collection. Run `lk tags` to list available tags."},
      {"bind|--tag|lost",
       "Tag 'lost' exists but every note carrying it is trashed or archived. Restore one before "
       "binding."},
      {novel + "--format|Word", "Unknown format 'Word'. Use pdf, docx, epub, or html."},
      {novel + "--spec-file|bad.json", "bad.json: Line 2: \"theme\" is not a string."},
      {novel + "--spec-file|none.json", "none.json: No such file or directory"},
      {novel + "--spec-file|later.json",
       "Bind spec uses schema version 2; this app supports up to 1. Upgrade Larkspire to read this "
       "spec."},
      {novel + "--output|", "--output names no file."},
      {novel + "--output|Notes/A.md", "The output " + file("A").string() +
                                          " is a note of this collection. Choose another "
                                          "--output."},
      {novel + "--output|none/book.html",
       "The output folder " + written("none").string() + " does not exist."},
      {novel + "--output|later.json/book.docx",
       "The output folder " + written("later.json").string() + " is not a folder."},
      {novel + "--output|Notes",
       "Could not write " + written("Notes").string() + ": Is a directory"},
  };
  for (const auto& [line, message] : cases) expectRefusal(line, message);
  EXPECT_NE(test::readWhole(file("A")).find("onlyzz"), std::string::npos);
  EXPECT_FALSE(fs::exists(written("novel.html")));
  for (const std::string date : {"yesterday", "-1", "253402300800", "17 March"}) {
    const ProcessResult undated = lk(novel + "--quiet", {{"SOURCE_DATE_EPOCH", date}});
    EXPECT_TRUE(undated.err.starts_with("Error: SOURCE_DATE_EPOCH is '" + date + "'."))
        << undated.err;
    EXPECT_EQ(undated.status, 1);
  }
}

TEST_F(Bind, LeavesOutWhatCannotBeRead) {
  part("A", "kept", "a_0000");
  part("B", "lost", "b_0000");
  plantStore();
  fs::remove(file("B"));
  const ProcessResult partial = lk("bind|--tag|novel|--output|-");
  EXPECT_EQ(wordsOf(partial.out), "kept");
  EXPECT_TRUE(partial.err.starts_with("Warning: 'B' cannot be bound: ")) << partial.err;
  fs::remove(file("A"));
  expectRefusal("bind|--tag|novel",
                "Tag 'novel' matches 2 note(s) but none could be loaded from disk. The "
                "collection's source files may be out of sync with the SwiftData cache — open "
                "Larkspire once to refresh.");
}

}  // namespace
}  // namespace lk
