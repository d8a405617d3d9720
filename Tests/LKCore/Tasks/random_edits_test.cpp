// Random edits of random notes, which another program changes in between, beside a slow model that
// knows the rules by other means: the patterns themselves, and lines that carry their old numbers.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Tasks/LKTaskFileSurgeon.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  for (const auto piece : text::split(text, '\n')) lines.emplace_back(piece);
  return lines;
}

std::string textOf(const Lines& lines) {
  std::string text = lines.front();
  for (size_t i = 1; i < lines.size(); ++i) text += "\n" + lines[i];
  return text;
}

// --- The model -----------------------------------------------------------------------------------

const Pattern& patternOf(const std::string& source) {
  static std::map<std::string, Pattern> compiled;
  return compiled.try_emplace(source, source).first->second;
}

std::string without(const std::string& line, const char* pattern) {
  return patternOf(pattern).replacingAll(line, "");
}

std::string withLast(const std::string& line, const std::string& word) {
  return without(line, R"(\s+$)") + " " + word;
}

struct ModelEntry {
  int index = 0;
  std::string id;
  std::string hash;
};

class ModelNote {
 public:
  explicit ModelNote(const std::string& text) : lines_(linesOf(text)) {
    const Pattern& fence = patternOf(R"(^\s*---\s*$)");
    if (!fence.matches(lines_[0])) return;
    size_t closing = 1;
    while (closing < lines_.size() && !fence.matches(lines_[closing])) ++closing;
    if (closing == lines_.size()) return;
    start_ = closing + 1;
    for (size_t i = 1; i < closing; ++i) readBlockLine(i);
  }

  size_t start() const { return start_; }
  bool knows(const UUID& id) const { return entryOf(id) != entries_.end(); }

  std::optional<size_t> locate(const UUID& id, int fallback) const {
    const auto entry = entryOf(id);
    if (entry == entries_.end()) return isTaskAt(fallback) ? place(fallback) : std::nullopt;
    const bool isThere = isTaskAt(entry->index);
    if (entry->hash.empty()) return isThere ? place(entry->index) : std::nullopt;
    if (isThere && fits(lines_[*place(entry->index)], entry->hash)) return place(entry->index);
    for (size_t i = start_; i < lines_.size(); ++i) {
      if (isTaskLine(lines_[i]) && fits(lines_[i], entry->hash)) return i;
    }
    return std::nullopt;
  }

  std::optional<std::string> edited(const UUID& id, int fallback, const TaskEdit& edit) {
    const auto at = locate(id, fallback);
    if (!at) return std::nullopt;
    const std::string before = textOf(lines_);
    size_t end = *at + 1;
    while (end < lines_.size() && patternOf(R"(^\s*>(\s*$| ))").matches(lines_[end])) ++end;
    if (const auto* all = std::get_if<SetTaskComments>(&edit)) {
      Lines changed;
      for (const std::string& line : all->lines) changed.push_back(commentFrom(line, *at));
      replace(*at + 1, end, changed);
    } else if (const auto* add = std::get_if<AddTaskComment>(&edit)) {
      replace(end, end, {indent(lines_[*at]) + "> " + add->text + ending(lines_[*at])});
    } else if (const auto* one = std::get_if<SetTaskComment>(&edit)) {
      const size_t line = *at + 1 + one->offset;
      if (line >= end) return std::nullopt;
      const std::string old = lines_[line];
      const std::string changed = indent(old) + "> " + one->text + ending(old);
      replace(line, line + 1, one->text.empty() ? Lines{} : Lines{changed});
    } else {
      const auto changed = line(lines_[*at], edit);
      if (!changed) return std::nullopt;
      lines_[*at] = *changed;
    }
    if (textOf(lines_) == before) return std::nullopt;
    writeBlock(id, *at, std::holds_alternative<SetTaskText>(edit));
    return textOf(lines_);
  }

 private:
  void readBlockLine(size_t i) {
    if (lines_[i].starts_with("lk-tasks:")) {
      tasksLine_ = i;
      const Pattern& item =
          patternOf(R"((?:^lk-tasks: |,)(-?\d+):([0-9A-F-]{36})(?::(\w+))?(?=[,\s]|$))");
      for (const auto& match : item.findAll(lines_[i])) {
        entries_.push_back({std::stoi(std::string(match[1]->of(lines_[i]))),
                            std::string(match[2]->of(lines_[i])),
                            match[3] ? std::string(match[3]->of(lines_[i])) : ""});
      }
    } else if (lines_[i].starts_with("lk-folded:")) {
      foldedLine_ = i;
      for (const auto& match : patternOf(R"(\d+)").findAll(lines_[i])) {
        folded_.push_back(std::stoi(std::string(match[0]->of(lines_[i]))));
      }
    }
  }

  std::vector<ModelEntry>::const_iterator entryOf(const UUID& id) const {
    return std::ranges::find(entries_, id.text(), &ModelEntry::id);
  }
  bool isTaskAt(int index) const {
    return index >= 0 && start_ + static_cast<size_t>(index) < lines_.size() &&
           patternOf(R"(^[ \t]*- \[[ /x-]\] )").matches(lines_[*place(index)]);
  }
  std::optional<size_t> place(int index) const { return start_ + static_cast<size_t>(index); }
  static bool fits(const std::string& line, const std::string& stored) {
    const std::string live = taskHash(line);
    const size_t length = std::min(live.size(), stored.size());
    return live.substr(0, length) == stored.substr(0, length);
  }
  static std::string indent(const std::string& line) { return without(line, R"([^ \t](?s:.*))"); }
  static std::string ending(const std::string& line) { return line.ends_with('\r') ? "\r" : ""; }

  std::string commentFrom(const std::string& line, size_t task) const {
    const std::string blanks = indent(line);
    const auto tabs = std::count(blanks.begin(), blanks.end(), '\t');
    const auto level = tabs + (static_cast<ptrdiff_t>(blanks.size()) - tabs) / 4;
    return indent(lines_[task]) + std::string(static_cast<size_t>(level), '\t') + "> " +
           line.substr(blanks.size()) + ending(lines_[task]);
  }

  static std::optional<std::string> line(const std::string& old, const TaskEdit& edit) {
    if (const auto* status = std::get_if<SetTaskStatus>(&edit)) return withStatus(old, *status);
    if (const auto* words = std::get_if<SetTaskText>(&edit)) {
      return indent(old) + old.substr(indent(old).size(), 6) + words->remainder + ending(old);
    }
    std::string bare;
    std::string word;
    if (const auto* due = std::get_if<SetTaskDue>(&edit)) {
      bare = without(old, R"(\s*\bdue:\d{4}-\d{2}-\d{2})");
      if (due->date) word = "due:" + LKDateOnly::text(*due->date);
    } else if (const auto* priority = std::get_if<SetTaskPriority>(&edit)) {
      bare = without(old, R"(\s*\bpriority:\S+)");
      const std::map<int, std::string> words = {{1, "low"}, {2, "medium"}, {3, "high"}};
      if (words.contains(priority->raw)) word = "priority:" + words.at(priority->raw);
    } else if (const auto& name = std::get<SetTaskProject>(edit).name) {
      bare = without(old, R"((?i)\s*\b(?:project):\S+)");
      if (!name->empty()) word = "project:" + *name;
    }
    return word.empty() ? bare : withLast(bare, word);
  }

  static std::optional<std::string> withStatus(std::string line, const SetTaskStatus& edit) {
    const std::string marks = " /x-";
    char& mark = line[indent(line).size() + 3];
    if (edit.raw < 0 || edit.raw > 3 || mark == marks[static_cast<size_t>(edit.raw)]) {
      return std::nullopt;
    }
    const bool wasDone = mark == 'x';
    mark = marks[static_cast<size_t>(edit.raw)];
    if (wasDone) return without(line, R"(\s*done:\d{4}-\d{2}-\d{2})");
    if (edit.raw != 2 || line.find("done:") != std::string::npos) return line;
    return withLast(line, "done:" + LKDateOnly::text(edit.today));
  }

  // Every index is a line that knows its old number; one that is taken out leaves its place.
  void replace(size_t from, size_t to, const Lines& changed) {
    std::vector<int> numbers(lines_.size() + 50);
    for (size_t i = 0; i < numbers.size(); ++i) numbers[i] = static_cast<int>(i);
    const size_t kept = std::min(to - from, changed.size());
    const auto cut = [&](auto& list) {
      const auto first = list.begin() + static_cast<ptrdiff_t>(from + kept);
      return list.erase(first, list.begin() + static_cast<ptrdiff_t>(to));
    };
    const auto hole = static_cast<int>(from + kept - start_);
    numbers.insert(cut(numbers), changed.size() - kept, -1);
    isMoved_ = isMoved_ || changed.size() != to - from;
    std::copy_n(changed.begin(), kept, lines_.begin() + static_cast<ptrdiff_t>(from));
    lines_.insert(cut(lines_), changed.begin() + static_cast<ptrdiff_t>(kept), changed.end());
    const auto move = [&](int& index) {
      const auto now = std::ranges::find(numbers, index + static_cast<int>(start_));
      index = now == numbers.end()
                  ? hole
                  : static_cast<int>(now - numbers.begin()) - static_cast<int>(start_);
    };
    for (ModelEntry& entry : entries_) move(entry.index);
    for (int& index : folded_) move(index);
  }

  void writeBlock(const UUID& id, size_t task, bool hasNewText) {
    const auto found = std::ranges::find(entries_, id.text(), &ModelEntry::id);
    const bool isKnown = found != entries_.end();
    const bool isLost = isKnown && !found->hash.empty() && !fits(lines_[task], found->hash);
    if (isKnown && (hasNewText || isLost)) found->hash = taskHash(lines_[task]);
    if (!isMoved_ && !(isKnown && (hasNewText || isLost))) return;
    if (isKnown) found->index = static_cast<int>(task - start_);
    std::string tasks;
    for (const ModelEntry& entry : entries_) {
      tasks += (tasks.empty() ? "" : ",") + std::to_string(entry.index) + ":" + entry.id +
               (entry.hash.empty() ? "" : ":" + entry.hash);
    }
    std::string folded;
    for (const int index : folded_) folded += (folded.empty() ? "" : ",") + std::to_string(index);
    if (tasksLine_) lines_[*tasksLine_] = "lk-tasks: " + tasks + ending(lines_[*tasksLine_]);
    if (foldedLine_) lines_[*foldedLine_] = "lk-folded: " + folded + ending(lines_[*foldedLine_]);
  }

  Lines lines_;
  size_t start_ = 0;
  std::vector<ModelEntry> entries_;
  std::vector<int> folded_;
  std::optional<size_t> tasksLine_;
  std::optional<size_t> foldedLine_;
  bool isMoved_ = false;
};

// --- Chance --------------------------------------------------------------------------------------

class Dice {
 public:
  size_t below(size_t count) {
    return std::uniform_int_distribution<size_t>(0, count - 1)(engine_);
  }
  bool oneIn(size_t count) { return below(count) == 0; }
  const std::string& of(const Lines& choices) { return choices[below(choices.size())]; }

 private:
  std::mt19937 engine_{20260314};
};

UUID idOf(size_t number) {
  return *UUID::parse("00000000-0000-4000-8000-0000000000" + std::to_string(10 + number));
}
constexpr size_t kIDs = 10;

std::string randomWords(Dice& dice) {
  static const Lines kWords = {"a",
                               "sow",
                               "\u00E9t\u00E9",
                               "(x)",
                               "due:2026-01-02",
                               "due:soon",
                               "xdue:2026-01-02",
                               "due:2026-01-02th",
                               "done:2026-01-03",
                               "undone:2026-01-03",
                               "priority:high",
                               "priority:2",
                               "project:Beds",
                               "Project:x)",
                               "context:home",
                               "id:7",
                               "[x]",
                               "> ",
                               "\t",
                               " "};
  std::string words = dice.of({"sow", "dig", "reap"});
  for (size_t i = dice.below(4); i > 0; --i) words += dice.of({" ", "  "}) + dice.of(kWords);
  return words;
}

std::string randomLine(Dice& dice) {
  const std::string blanks = dice.of({"", "", "\t", "    ", " \t"});
  const size_t kind = dice.below(8);
  if (kind == 0) return blanks + dice.of({"words", "", "* [ ] star", "- [X] old", "- [ ]"});
  if (kind < 4) return blanks + dice.of({">", "> ", "> note", ">\tno", "> > deep", "> tail  "});
  return blanks + dice.of({"- [ ] ", "- [/] ", "- [x] ", "- [-] "}) + randomWords(dice);
}

std::string randomNote(Dice& dice) {
  const std::string end = dice.oneIn(3) ? "\r" : "";
  Lines body;
  for (size_t i = 1 + dice.below(14); i > 0; --i) body.push_back(randomLine(dice) + end);
  std::string tasks;
  for (size_t i = 0; i < body.size() && i < kIDs; ++i) {
    if (!isTaskLine(body[i]) || dice.oneIn(6)) continue;
    tasks +=
        (tasks.empty() ? "" : ",") + std::to_string(i + dice.below(8) / 7) + ":" + idOf(i).text();
    if (!dice.oneIn(5)) tasks += ":" + taskHash(body[i]).substr(0, dice.oneIn(6) ? 4 : 8);
    if (dice.oneIn(9)) tasks += ",x:y";
  }
  Lines block;
  if (!dice.oneIn(5)) {
    block = {"---" + end, "id: " + idOf(0).text() + end, "title: a" + end};
    if (!tasks.empty()) block.push_back("lk-tasks: " + tasks + end);
    if (dice.oneIn(2)) block.push_back("lk-folded: 0," + std::to_string(dice.below(20)) + end);
    block.push_back("---" + end);
  }
  block.insert(block.end(), body.begin(), body.end());
  return textOf(block);
}

// What an editor or a sync program does to a body.
std::string changedByAnother(Dice& dice, const std::string& text) {
  Lines lines = linesOf(text);
  const size_t start = ModelNote(text).start();
  if (start >= lines.size()) return text;
  const size_t at = start + dice.below(lines.size() - start);
  const auto place = lines.begin() + static_cast<ptrdiff_t>(at);
  const size_t kind = dice.below(4);
  if (kind == 0) lines.insert(place, randomLine(dice));
  if (kind == 1) std::swap(lines[start], lines[at]);
  if (kind == 2) lines[at] += " more";
  if (kind == 3 && lines.size() - start > 1) lines.erase(place);
  return textOf(lines);
}

const Day kModelToday{2026, 3, 14};

TaskEdit randomEdit(Dice& dice) {
  const int raw = static_cast<int>(dice.below(6)) - 1;
  const size_t kind = dice.below(8);
  if (kind == 0) return SetTaskStatus{raw, kModelToday};
  if (kind == 1) return SetTaskDue{raw < 1 ? std::nullopt : std::optional(Day{2026, 4, 1})};
  if (kind == 2) return SetTaskPriority{raw};
  if (kind == 3) return SetTaskProject{dice.of({"", "Beds", "Two words"}), {"project"}};
  if (kind == 4) return SetTaskText{randomWords(dice)};
  if (kind == 5) return AddTaskComment{dice.of({"new", "", "  new "})};
  if (kind == 6) return SetTaskComment{dice.below(3), dice.of({"", "note", "changed"})};
  return SetTaskComments{Lines(dice.below(4), dice.of({"a", "\tb", "     c", ""}))};
}

TEST(RandomTaskEdits, DoWhatTheModelDoesAndKeepEveryOtherByte) {
  const test::TempFolder folder(test::memoryFolder());
  LKTaskFileSurgeon surgeon(nullptr);
  Dice dice;
  constexpr int kEdits = 5000;
  int changes = 0;
  int keptIdentities = 0;
  for (int i = 0; i < kEdits; ++i) {
    const auto url = folder / ("Note" + std::to_string(dice.below(20)) + ".md");
    if (!std::filesystem::exists(url) || dice.oneIn(10)) test::writeWhole(url, randomNote(dice));
    if (dice.oneIn(3)) test::writeWhole(url, changedByAnother(dice, test::readWhole(url)));
    const std::string before = test::readWhole(url);
    const LKTaskReference task{url, idOf(dice.below(kIDs)), static_cast<int>(dice.below(16)) - 1};
    const TaskEdit edit = randomEdit(dice);

    ModelNote model(before);
    const auto line = model.locate(task.taskID, task.fallbackParagraphIndex);
    const auto expected = model.edited(task.taskID, task.fallbackParagraphIndex, edit);
    ASSERT_EQ(surgeon.perform(task, edit), expected.has_value()) << i << "\n" << before;
    ASSERT_EQ(test::readWhole(url), expected.value_or(before)) << i << "\n" << before;
    if (!expected) continue;
    ++changes;
    if (!model.knows(task.taskID)) continue;
    ASSERT_EQ(ModelNote(*expected).locate(task.taskID, -1), line) << i << "\n" << before;
    ++keptIdentities;
  }
  EXPECT_GT(changes, kEdits / 5);
  EXPECT_GT(keptIdentities, kEdits / 10);
}

}  // namespace
}  // namespace lk
