#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSyncError.h"

namespace lk {
namespace {

constexpr std::string_view kID = "0B54D1C6-52AE-4E0B-8B37-E27E5A4F9D10";
constexpr std::string_view kTaskID = "C0E3A5D8-1F57-4A43-9B6D-7D0B8E2F6A11";

LKFileFrontMatter minimal() {
  LKFileFrontMatter frontMatter;
  frontMatter.id = *UUID::parse(kID);
  frontMatter.created = *parseISO8601("2025-11-02T07:15:00Z");
  return frontMatter;
}

std::string fileWith(const std::string& lines, const std::string& body = "") {
  return "---\nid: " + std::string(kID) + "\ncreated: 2025-11-02T07:15:00Z\n" + lines + "---\n" +
         body;
}

TEST(NoteFormat, WritesEveryLineInItsPlace) {
  LKFileFrontMatter full = minimal();
  full.title = "Sunday";
  full.foldedIndices = {3, 7};
  full.cursorIndex = 4;
  full.dailyDate = Day{2025, 11, 2};
  full.taskEntries = {{2, *UUID::parse(kTaskID), "8f14e45f"}, {3, UUID(), std::nullopt}};
  full.userProperties = {{"mood", "calm: no calls"}, {"Area", ""}};
  full.nameLocked = full.isFavourite = full.isArchived = full.isBook = true;
  full.contentHash = "of an older body";
  full.tagRanks = {{"journal/autumn", "r_3fa0"}, {"__all", "i"}};
  EXPECT_EQ(serialize(full, "# Sunday\n"),
            "---\n"
            "id: 0B54D1C6-52AE-4E0B-8B37-E27E5A4F9D10\n"
            "created: 2025-11-02T07:15:00Z\n"
            "title: Sunday\n"
            "lk-folded: 3,7\n"
            "lk-cursor: 4\n"
            "lk-daily: 2025-11-02\n"
            "lk-tasks: 2:C0E3A5D8-1F57-4A43-9B6D-7D0B8E2F6A11:8f14e45f,"
            "3:00000000-0000-0000-0000-000000000000\n"
            "lk-name-locked: true\nlk-favourite: true\nlk-archived: true\nlk-book: true\n"
            "lk-hash: " +
                computeContentHash("# Sunday\n") +
                "\n"
                "lk-tag-rank:\n  __all: i\n  journal/autumn: r_3fa0\n"
                "Area: \nmood: calm: no calls\n"
                "---\n"
                "# Sunday\n");
}

struct EdgeCase {
  std::string name;
  std::string lines;
  std::string expected;  // as written again, less what every note has
};

class ParserEdge : public testing::TestWithParam<EdgeCase> {};

TEST_P(ParserEdge, ReadsAsExpected) {
  const LKParsedDocument read = parseDocument(fileWith("lk-cursor: 0\n" + GetParam().lines));
  std::string again = serialize(read.frontMatter, "");
  const size_t hash = again.find("lk-hash: ");
  again.erase(hash, again.find('\n', hash) + 1 - hash);
  again = text::replacingAll(again, "lk-cursor: 0\n", "");
  EXPECT_EQ(again, fileWith(GetParam().expected));
}

const std::string kTask = ":" + std::string(kTaskID);
INSTANTIATE_TEST_SUITE_P(
    Lines, ParserEdge,
    testing::Values(
        EdgeCase{"bad_index", "lk-folded: 1, x,3,,9999999999,-2\n", "lk-folded: 1,3,-2\n"},
        EdgeCase{"old_names", "folded: 1\ncursor: 2\ndaily: 2025-01-02\nhash: ab\n",
                 "lk-folded: 1\nlk-cursor: 2\nlk-daily: 2025-01-02\n"},
        EdgeCase{"bad_task",
                 "tasks: x" + kTask + ":ab,1:short,,2,2" + kTask + ":a:b, 3" + kTask + ":\n",
                 "lk-tasks: 2" + kTask + ":a:b,3" + kTask + "\n"},
        EdgeCase{"flags", "lk-archived: TRUE\nlk-book: yes\n", "lk-archived: true\n"},
        EdgeCase{"status", "status: Archived\n", "lk-archived: true\nstatus: Archived\n"},
        EdgeCase{"role", "manuscript-role: Chapters\n",
                 "lk-book: true\nmanuscript-role: Chapters\n"},
        EdgeCase{"unreadable", "lk-cursor: many\nlk-daily: soon\ntitle:\nlk-hash: \n", ""},
        EdgeCase{"unreadable_id_after_a_good_one", "id: none\ncreated: never\n", ""},
        EdgeCase{"later_line_wins", "a: 1\nid : x\na: 2\nlk-cursor: 1\nlk-cursor: 5\n",
                 "lk-cursor: 5\na: 2\n"},
        EdgeCase{"whole_right_side", "color:  blue # comment \nurl: http://a:80\n: none\nword\n",
                 "color: blue # comment\nurl: http://a:80\n"},
        EdgeCase{"later_version_of_ours", "lk-anything-new: 1\nlk-x : 2\n", ""},
        EdgeCase{"ranks_end_at_a_full_line",
                 "lk-tag-rank: here\n  a/b: m: n\n\tid: x\n \n  lone\n  c:\nd: e\n  f: g\n",
                 "lk-tag-rank:\n  a/b: m: n\n  id: x\nd: e\nf: g\n"},
        EdgeCase{"empty_line_ends_ranks", "lk-tag-rank:\n  a: b\n\n  c: d\n",
                 "lk-tag-rank:\n  a: b\nc: d\n"},
        EdgeCase{"every_newline", "a: 1\r\nb: 2\u0085c: 3\u2028d: 4\u2029e: 5\vf: 6\fg: 7\n",
                 "a: 1\nb: 2\nc: 3\nd: 4\ne: 5\nf: 6\ng: 7\n"},
        EdgeCase{"old_name_as_property", "hash : x\n", "hash : x\n"},
        EdgeCase{"padded", " \ttitle:\u00A0 Plan \u3000\n", "title: Plan\n"}),
    [](const auto& testCase) { return testCase.param.name; });

TEST(NoteFormat, RefusesWhatHasNoWholeBlock) {
  const std::string lines = "id: " + std::string(kID) + "\ncreated: 2025-11-02T07:15:00Z\n";
  for (const std::string& text : std::vector<std::string>{
           "", "---", "---\n", "---\n---", "# Plan", "---\n" + lines, "----\n" + lines + "---\n",
           "\n---\n" + lines + "---\n", "\uFEFF---\n" + lines + "---\n",
           "---\nid: " + std::string(kID) + "\n---\n", "---\ncreated: 2025-11-02T07:15:00Z\n---\n",
           "---\nid: 12\ncreated: 2025-11-02T07:15:00Z\n---\n",
           "---\nid: " + std::string(kID) + "\ncreated: 2025-11-02\n---\n"}) {
    EXPECT_THROW(parseDocument(text), LKSyncError) << text;
    EXPECT_EQ(readIdentity(text), std::nullopt) << text;
  }
}

// --- The slow reader -----------------------------------------------------------------------------

std::string slowBody(std::string_view text) {
  const std::vector<std::string_view> lines = text::splitLines(text::trimmedLeading(text));
  std::string body;
  bool isInFence = false;
  for (size_t i = 0; i < lines.size(); ++i) {
    std::string_view line = lines[i];
    size_t blanks = 0;
    while (blanks < line.size() && line[blanks] == ' ') ++blanks;
    if (!isInFence && blanks > 0) {
      body += std::string(blanks < 4 ? 1 : blanks / 4, '\t');
      line.remove_prefix(blanks);
    }
    if (text::trimmedSpacesTabs(line).starts_with("```")) isInFence = !isInFence;
    body += line;
    if (i + 1 < lines.size()) body += '\n';
  }
  return body;
}

struct SlowNote {
  std::string title, body;
  std::map<std::string, std::string> properties, ranks;
};

std::optional<SlowNote> slowRead(std::string_view file) {
  const std::vector<std::string_view> lines = text::splitLines(file);
  const auto isFence = [](std::string_view line) { return text::trimmedBlanks(line) == "---"; };
  if (!isFence(lines[0])) return std::nullopt;
  const auto close = std::find_if(lines.begin() + 1, lines.end(), isFence);
  if (close == lines.end()) return std::nullopt;
  SlowNote note;
  bool hasID = false, hasCreated = false, isInRanks = false;
  for (auto line = lines.begin() + 1; line != close; ++line) {
    isInRanks = isInRanks && !line->empty() && (line->front() == ' ' || line->front() == '\t');
    const std::string all(text::trimmedBlanks(*line));
    const size_t colon = all.find(':');
    if (colon == std::string::npos) continue;
    const std::string prefix = all.substr(0, colon + 1);
    const std::string key(text::trimmedBlanks(all.substr(0, colon)));
    const std::string value(text::trimmedBlanks(std::string_view(all).substr(colon + 1)));
    if (isInRanks) {
      if (!key.empty() && !value.empty()) note.ranks[key] = value;
    } else if (prefix == "id:") {
      hasID = hasID || UUID::parse(value);
    } else if (prefix == "created:") {
      hasCreated = hasCreated || parseISO8601(value);
    } else if (prefix == "title:") {
      if (!value.empty()) note.title = value;
    } else if (prefix == "lk-tag-rank:") {
      isInRanks = true;
    } else if (prefix != "folded:" && prefix != "cursor:" && prefix != "daily:" &&
               prefix != "tasks:" && prefix != "hash:" && !key.starts_with("lk-") && key != "id" &&
               key != "created" && key != "title" && !key.empty()) {
      note.properties[key] = value;
    }
  }
  if (!hasID || !hasCreated) return std::nullopt;
  if (close + 1 != lines.end()) {
    note.body = slowBody(file.substr(static_cast<size_t>((close + 1)->data() - file.data())));
  }
  return note;
}

// --- Generated notes -----------------------------------------------------------------------------

class Generator {
 public:
  explicit Generator(unsigned seed) : random_(seed) {}

  int below(int limit) { return std::uniform_int_distribution<int>(0, limit - 1)(random_); }

  // Text made to break a line format.
  std::string text(int pieces) {
    static const std::vector<std::string> kPieces = {"a",
                                                     "Plan",
                                                     "---",
                                                     "\n---\n",
                                                     ":",
                                                     ": ",
                                                     "\n",
                                                     "\r\n",
                                                     "\u2028",
                                                     "\u2029",
                                                     "\u0085",
                                                     " ",
                                                     "  ",
                                                     "\t",
                                                     "\u00A0",
                                                     "\U0001F331",
                                                     "e\u0301",
                                                     "lk-",
                                                     "lk-tag-rank:",
                                                     "id",
                                                     "id: ",
                                                     "created",
                                                     "title",
                                                     "hash",
                                                     "folded",
                                                     "status",
                                                     "archived",
                                                     "manuscript-role",
                                                     "book",
                                                     "true",
                                                     ",",
                                                     "\"",
                                                     "\v",
                                                     "```",
                                                     "\n\t",
                                                     "\n     ",
                                                     "- [ ] ",
                                                     std::string(250, 'x')};
    std::string result;
    for (int count = below(pieces + 1); count > 0; --count) {
      result += kPieces[static_cast<size_t>(below(static_cast<int>(kPieces.size())))];
    }
    return result;
  }

  LKParsedDocument note() {
    LKFileFrontMatter f = minimal();
    f.created = {static_cast<int64_t>(random_()) * (below(2) == 0 ? 1 : 1'000'000), below(1000)};
    if (below(3) > 0) f.title = text(4);
    for (int i = below(3); i > 0; --i) f.foldedIndices.push_back(below(90) - 9);
    f.cursorIndex = below(2000) - 10;
    if (below(4) == 0) f.dailyDate = Day{below(12'000), 1 + below(12), 1 + below(28)};
    for (int i = below(3); i > 0; --i) {
      f.taskEntries.push_back({below(90), UUID::random(), text(2)});
    }
    for (int i = below(4); i > 0; --i) f.userProperties[text(2)] = text(3);
    for (int i = below(3); i > 0; --i) f.tagRanks[text(2)] = text(2);
    f.isFavourite = below(2) == 0;
    f.isBook = below(4) == 0;
    return {f, text(12)};
  }

 private:
  std::mt19937 random_;
};

void expectSlowReading(const std::string& file) {
  const std::optional<SlowNote> slow = slowRead(file);
  if (!slow) {
    EXPECT_THROW(parseDocument(file), LKSyncError) << file;
    return;
  }
  const auto [frontMatter, body] = parseDocument(file);
  EXPECT_EQ(frontMatter.title.value_or(""), slow->title);
  EXPECT_EQ(frontMatter.userProperties, slow->properties);
  EXPECT_EQ(frontMatter.tagRanks, slow->ranks);
  EXPECT_EQ(body, slow->body);
}

TEST(NoteFormat, WhatIsWrittenReadsBackAndIsWrittenAgainByteForByte) {
  Generator generator(20'251'102);
  for (int i = 0; i < 10'000 && !HasFailure(); ++i) {
    const LKParsedDocument note = generator.note();
    const std::string file = serialize(note.frontMatter, note.body);
    SCOPED_TRACE(file);
    expectSlowReading(file);
    LKParsedDocument read = parseDocument(file);
    EXPECT_EQ(read.frontMatter.id, note.frontMatter.id);
    ASSERT_EQ(read.frontMatter.taskEntries.size(), note.frontMatter.taskEntries.size());
    for (size_t t = 0; t < read.frontMatter.taskEntries.size(); ++t) {
      EXPECT_EQ(read.frontMatter.taskEntries[t].id, note.frontMatter.taskEntries[t].id);
    }
    EXPECT_EQ(read.body, slowBody(note.body));
    for (const auto& [key, value] : note.frontMatter.userProperties) {
      const bool isPlain = text::splitLines(key).size() == 1 && text::trimmedBlanks(key) == key;
      if (isPlain) {
        EXPECT_EQ(read.frontMatter.userProperties.contains(key), isWritablePropertyKey(key));
      }
    }
    const std::string again = serialize(read.frontMatter, read.body);
    const bool hadOlderFlag = read.frontMatter.isArchived != note.frontMatter.isArchived ||
                              read.frontMatter.isBook != note.frontMatter.isBook;
    if (read.body == note.body && !hadOlderFlag) {
      EXPECT_EQ(again, file);
    }
    read.frontMatter.contentHash = computeContentHash(read.body);
    EXPECT_TRUE(parseDocument(again) == read);
  }
}

TEST(NoteFormat, ReadsAnyTextAsTheSlowReaderDoes) {
  Generator generator(3);
  for (int i = 0; i < 3'000 && !HasFailure(); ++i) {
    expectSlowReading(fileWith(generator.text(20), generator.text(20)));
    expectSlowReading("---" + generator.text(9));
  }
}

TEST(NoteFormat, EveryPrefixReadsOrFailsCleanly) {
  LKFileFrontMatter full = minimal();
  full.taskEntries = {{0, *UUID::parse(kTaskID), "8f14e45f"}};
  full.tagRanks = {{"garden", "m"}};
  full.userProperties = {{"mood", "c\u00E9lme"}};
  const std::string file = serialize(full, "- [ ] Rake\n  the leaves\u2028now");
  const size_t blockEnd = file.find("\n---\n") + 4;
  for (size_t size = 0; size <= file.size(); ++size) {
    const std::string_view prefix = std::string_view(file).substr(0, size);
    const bool isWhole = size > blockEnd;
    EXPECT_EQ(readIdentity(prefix), isWhole ? std::optional(full.id) : std::nullopt) << size;
    const auto block = readFrontMatter(prefix);
    EXPECT_EQ(block.has_value(), isWhole) << size;
    if (block) EXPECT_EQ(*block, parseDocument(prefix).frontMatter) << size;
    if (size < blockEnd) {
      EXPECT_THROW(parseDocument(prefix), LKSyncError) << size;
    } else {
      EXPECT_EQ(parseDocument(prefix).frontMatter.userProperties, full.userProperties) << size;
    }
  }
}

}  // namespace
}  // namespace lk
