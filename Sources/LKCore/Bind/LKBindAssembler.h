#pragma once

// The notes of a book as one Markdown manuscript: title pages, front matter, the book, end matter.
//
//     assemble({{.noteTitle = "Dawn", .body = "It was early."}}, spec, subject)
//     // <h1 class="bind-chapter">Chapter 1<br>Dawn</h1>
//     //
//     // It was early.
//
// Every note is filtered (LKBindFilter). Headings are written as HTML that only this stage writes:
// a title cannot make anything else of it, neither here nor in the passes to come. A note cannot
// reach into the next one: an open fence or comment ends with its note, and a footnote's label means
// a definition in its own note alone. Words are never lost: what has no heading has the note's
// title, and an empty section stays.
//
// Pure functions of valid UTF-8; time is linear in the notes, nothing throws.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk::LKBindAssembler {

// What stands below one level-1 heading of a book note.
struct BookBodySection {
  LKBindNoteRole role = LKBindNoteRole::chapter;
  std::string title;
  std::string body;

  bool operator==(const BookBodySection&) const = default;
};

struct BookBody {
  std::string preamble;  // what stands before the first section
  std::vector<BookBodySection> sections;

  bool operator==(const BookBody&) const = default;
};

struct SplitBody {
  std::optional<std::string> title;
  std::string rest;

  bool operator==(const SplitBody&) const = default;
};

// The manuscript; empty without notes.
std::string assemble(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                     const LKBindSubject& subject);

// The level-1 heading that a body begins with, and the lines below it; without one the whole body.
SplitBody splitFirstH1(std::string_view body);

// The body at its level-1 headings. A heading without a role keyword opens a chapter; fenced code
// has no headings.
BookBody parseBookBody(std::string_view body);

// Whether a level-1 heading of the body has a role keyword, which makes the note a book.
bool bodyContainsRolePrefixH1(std::string_view body);

// A title as plain text: without the brackets of links, without blanks around it.
std::string headingWords(std::string_view title);

// A title as HTML text on one line, each line feed as "<br>". What the dialect of notes would read
// in it (links, tags, highlights, footnotes) is plain text.
std::string headingHTML(std::string_view title);

}  // namespace lk::LKBindAssembler
