#include "Tools/GeneratedBook.h"

#include <fstream>
#include <stdexcept>

#include "LKCore/Base/Words.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "Tools/Numbers.h"

namespace lk::test {

namespace {

constexpr size_t kBookChapters = 40;
constexpr size_t kChaptersOfPart = 10;
constexpr size_t kScenesOfChapter = 2;
constexpr const char* kBookTag = "book/long";

// Paragraphs of prose, some with emphasis, at least so many words.
void addProse(std::string& body, size_t words, Numbers& numbers) {
  for (size_t written = 0; written < words;) {
    std::string paragraph = numbers.sentence();
    for (size_t left = 2 + numbers.below(5); left > 0; --left) {
      paragraph.append(" ").append(numbers.sentence());
    }
    if (numbers.below(4) == 0) {
      paragraph.append(" A *").append(numbers.word()).append("*, a **");
      paragraph.append(numbers.word()).append("**.");
    }
    written += wordCount(paragraph);
    body.append(paragraph).append("\n\n");
  }
}

void addTable(std::string& body, Numbers& numbers) {
  body.append("| Thing | Count | Where |\n| --- | ---: | --- |\n");
  for (size_t row = 0; row < 6; ++row) {
    body.append("| ").append(numbers.word()).append(" | ").append(std::to_string(row * 7));
    body.append(" | ").append(numbers.word()).append(" |\n");
  }
  body.append("\n");
}

void addCode(std::string& body, Numbers& numbers) {
  body.append("```python\ndef ").append(kMadeUpWords[numbers.below(19)]);
  body.append("(count):\n    # what is left\n    return \"");
  body.append(numbers.word()).append("\" * (count + ");
  body.append(std::to_string(numbers.below(100))).append(")\n```\n\n");
}

void addFootnotes(std::string& body, Numbers& numbers) {
  body.append("It was said before.[^1] And once more.[^2]\n\n");
  body.append("[^1]: ").append(numbers.sentence()).append("\n[^2]: ");
  body.append(numbers.sentence()).append("\n\n");
}

std::string pictureName(size_t chapter) {
  return "plate-" + std::to_string(chapter) + ".svg";
}

GeneratedBookNote chapterNote(size_t chapter, size_t words, Numbers& numbers) {
  GeneratedBookNote note{"Chapter " + std::to_string(chapter), "", "chapter"};
  note.body.append("# The ").append(numbers.word()).append(" & the ").append(numbers.word());
  note.body.append("\n\n#").append(kBookTag).append("\n\n");
  addProse(note.body, words / 2, numbers);
  note.body.append("## ").append(numbers.word()).append("\n\n");
  addTable(note.body, numbers);
  addCode(note.body, numbers);
  note.body.append("![Plate ").append(std::to_string(chapter)).append("](.attachments/");
  note.body.append(pictureName(chapter)).append(")\n\n---\n\n");
  addProse(note.body, words - words / 2, numbers);
  addFootnotes(note.body, numbers);
  return note;
}

GeneratedBookNote sceneNote(size_t chapter, size_t scene, size_t words, Numbers& numbers) {
  const std::string number = std::to_string(chapter) + "-" + std::to_string(scene);
  GeneratedBookNote note{"Scene " + number, "", "scene"};
  note.body.append("# Scene ").append(number).append("\n\n#").append(kBookTag).append("\n\n");
  addProse(note.body, words, numbers);
  addFootnotes(note.body, numbers);
  return note;
}

void writeBookFile(const std::filesystem::path& file, const std::string& bytes) {
  std::ofstream out(file, std::ios::binary);
  out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

// "a0007": ranks are compared as text.
std::string rankOf(size_t place) {
  const std::string digits = std::to_string(place);
  return "a" + std::string(digits.size() < 4 ? 4 - digits.size() : 0, '0') + digits;
}

}  // namespace

std::vector<GeneratedBookNote> generatedBook(size_t words, uint64_t seed) {
  Numbers numbers(seed);
  const size_t ofChapter = words / kBookChapters + 1;
  const size_t ofScene = ofChapter / 4;
  std::vector<GeneratedBookNote> notes;
  for (size_t chapter = 0; chapter < kBookChapters; ++chapter) {
    if (chapter % kChaptersOfPart == 0) {
      notes.push_back({"Part " + std::to_string(chapter / kChaptersOfPart + 1),
                       "#" + std::string(kBookTag) + "\n\n" + numbers.sentence() + "\n", "part"});
    }
    notes.push_back(chapterNote(chapter + 1, ofChapter - kScenesOfChapter * ofScene, numbers));
    for (size_t scene = 1; scene <= kScenesOfChapter; ++scene) {
      notes.push_back(sceneNote(chapter + 1, scene, ofScene, numbers));
    }
  }
  return notes;
}

uint64_t writeGeneratedBook(const std::filesystem::path& folder, size_t words, uint64_t seed) {
  std::filesystem::create_directories(folder / ".attachments");
  Numbers numbers(~seed);
  uint64_t written = 0;
  size_t place = 0;
  for (const GeneratedBookNote& note : generatedBook(words, seed)) {
    LKFileFrontMatter frontMatter;
    frontMatter.id = numbers.id();
    frontMatter.created = {1'767'225'600 + static_cast<int64_t>(place), 0};
    frontMatter.title = note.title;
    frontMatter.userProperties = {{"manuscript-role", note.role}};
    frontMatter.tagRanks = {{kBookTag, rankOf(++place)}};
    const std::string bytes = serialize(frontMatter, note.body);
    writeBookFile(folder / (note.title + ".md"), bytes);
    written += bytes.size();
  }
  for (size_t chapter = 1; chapter <= kBookChapters; ++chapter) {
    writeBookFile(folder / ".attachments" / pictureName(chapter),
                  "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"320\" height=\"200\">"
                  "<rect x=\"20\" y=\"20\" width=\"" +
                      std::to_string(chapter * 7) + "\" height=\"160\" fill=\"#888\"/></svg>\n");
  }
  return written;
}

}  // namespace lk::test
