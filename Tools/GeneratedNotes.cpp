#include "Tools/GeneratedNotes.h"

#include <array>
#include <fstream>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "Tools/Numbers.h"

namespace lk::test {

namespace {

constexpr size_t kAreas = 40;
constexpr size_t kParts = 7;
constexpr size_t kTasks = 3;
constexpr size_t kLinks = 3;

constexpr std::array<std::string_view, 12> kTags = {
    "garden",  "home/repairs", "work/plan", "projects/acme", "projects/acme/site",
    "reading", "travel/spain", "музыка",    "recipes",       "people/ann",
    "health",  "정원"};

Numbers numbersOf(size_t index, uint64_t seed) {
  Numbers mixed(seed);
  return Numbers(mixed.next() ^ (index * 0xD1B54A32D192ED03ULL));
}

std::string titleOf(size_t index, uint64_t seed) {
  Numbers numbers = numbersOf(index, seed);
  std::string title(numbers.word());
  title.append(" ").append(numbers.word()).append(" ").append(std::to_string(index));
  return title;
}

std::string dayFrom(Numbers& numbers) {
  return LKDateOnly::text(Day{2026, 1, 1}.adding(static_cast<int>(numbers.below(365))));
}

std::string taskFrom(Numbers& numbers) {
  constexpr std::array<std::string_view, 4> kMarks = {"- [ ] ", "- [x] ", "- [/] ", "- [-] "};
  std::string task(kMarks[numbers.below(2) == 0 ? 0 : numbers.below(kMarks.size())]);
  task.append("Bring the ").append(numbers.word()).append(" to the ").append(numbers.word());
  if (numbers.below(2) == 0) task.append(" due:").append(dayFrom(numbers));
  if (numbers.below(4) == 0) task.append(" project:acme");
  if (numbers.below(4) == 0) task.append(" context:phone");
  return task;
}

class Body {
 public:
  void add(std::string_view line) {
    text_.append(line).push_back('\n');
    ++lines_;
  }
  void addTask(const std::string& line, Numbers& numbers) {
    entries_.push_back({lines_, numbers.id(), taskHash(line)});
    add(line);
  }

  const std::string& text() const { return text_; }
  const std::vector<TaskEntry>& entries() const { return entries_; }

 private:
  std::string text_;
  int lines_ = 0;
  std::vector<TaskEntry> entries_;
};

std::string tagLine(Numbers& numbers) {
  std::string line;
  for (size_t left = 2 + numbers.below(3); left > 0; --left) {
    line.append("#").append(numbers.oneOf(kTags)).append(" ");
  }
  return line;
}

// Prose between, so that tasks and links stand all over the note.
Body bodyFrom(Numbers& numbers, size_t count, uint64_t seed, size_t size) {
  Body body;
  body.add("# " + numbers.sentence());
  body.add("");
  body.add(tagLine(numbers));
  size_t tasks = 0;
  size_t links = 0;
  const size_t step = size / (kTasks + kLinks + 1);
  while (body.text().size() < size || tasks < kTasks || links < kLinks) {
    const bool isDue = body.text().size() >= (tasks + links + 1) * step;
    if (isDue && tasks <= links && tasks < kTasks) {
      body.addTask(taskFrom(numbers), numbers);
      ++tasks;
    } else if (isDue && links < kLinks) {
      body.add("See [[" + titleOf(numbers.below(count), seed) + "]] too.");
      ++links;
    } else {
      body.add(numbers.sentence());
    }
  }
  return body;
}

}  // namespace

GeneratedNote generatedNote(size_t index, size_t count, uint64_t seed) {
  const std::string title = titleOf(index, seed);
  Numbers numbers = numbersOf(index, ~seed);
  const size_t bodySize = 960 + numbers.below(4700);
  const Body body = bodyFrom(numbers, count, seed, bodySize);
  LKFileFrontMatter frontMatter;
  frontMatter.id = numbers.id();
  frontMatter.created = {1'767'225'600 + static_cast<int64_t>(numbers.below(31'536'000)), 0};
  frontMatter.title = title;
  frontMatter.taskEntries = body.entries();
  frontMatter.userProperties = {{"status", numbers.below(20) == 0 ? "archived" : "draft"},
                                {"area", std::string(numbers.word())}};
  frontMatter.isFavourite = numbers.below(15) == 0;
  const std::string folder = "Area " + std::to_string(index % kAreas) + "/Part " +
                             std::to_string(index / kAreas % kParts) + "/";
  Instant modified = frontMatter.created;
  modified.seconds += static_cast<int64_t>(numbers.below(7'776'000));
  return {folder + title + ".md", serialize(frontMatter, body.text()), modified};
}

uint64_t writeGeneratedNotes(const std::filesystem::path& folder, size_t count, uint64_t seed) {
  uint64_t written = 0;
  for (size_t index = 0; index < count; ++index) {
    const GeneratedNote note = generatedNote(index, count, seed);
    const std::filesystem::path file = folder / note.relativePath;
    if (index < kAreas * kParts) std::filesystem::create_directories(file.parent_path());
    std::ofstream out(file, std::ios::binary);
    out.write(note.bytes.data(), static_cast<std::streamsize>(note.bytes.size()));
    out.close();
    if (!out) throw std::runtime_error("cannot write " + file.string());
    setModified(file, note.modified);
    written += note.bytes.size();
  }
  return written;
}

}  // namespace lk::test
