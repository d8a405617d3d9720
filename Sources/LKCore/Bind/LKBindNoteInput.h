#pragma once

// One note on its way into a book: what the assembler and every builder of a book read.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

// What a note is in the book.
enum class LKBindNoteRole {
  chapter,
  part,
  scene,
  book,  // a whole manuscript in one note
  titlePage,
  frontMatter,
  endMatter,
  plain,
  skip,  // never appears
};

// "chapter", "title-page", "front-matter" ...
std::string_view rawValue(LKBindNoteRole role);

namespace LKBindNoteRoles {

// The role of a "manuscript-role" value, whatever its case and the blanks around it; "chapters" is a
// book. Nothing for any other value.
std::optional<LKBindNoteRole> parse(std::string_view value);

}  // namespace LKBindNoteRoles

struct LKBindNoteInput {
  std::string noteTitle;
  std::string body;  // Markdown, UTF-8, without the note file's front matter
  LKBindNoteRole role = LKBindNoteRole::chapter;
  std::vector<std::string> tags = {};  // without "#"; what `skip_notes_tagged` looks at

  bool operator==(const LKBindNoteInput&) const = default;
};

}  // namespace lk
