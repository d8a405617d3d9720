#pragma once

// The notes of a book in the order of its pages, filtered, with their headings made: what every form
// of the book is written from, so that all of them agree.
//
//     bookPieces({{.noteTitle = "Dawn", .body = "It was early."}}, spec, subject)
//     // a chapter "Chapter 1\nDawn" with the body "It was early.", on a new page
//
// Title pages and front matter come first, then the book, then end matter; LKBindAssembler.h tells
// how a book note is taken apart. A body ends with its note: an open fence is closed, a comment or
// "<pre>" that never ends shows, and a footnote's label means one definition in the whole book. Pure;
// linear.

#include <string>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

struct BookPiece {
  enum class Kind { titlePage, front, part, chapter, scene, plain, end };

  Kind kind = Kind::plain;
  std::string heading;        // of a part or chapter: plain text, may have several lines
  std::string body;           // Markdown
  bool isOnNewPage = false;   // unless it is the first
  bool isAfterScene = false;  // of a scene: another one of its chapter stands before it

  bool operator==(const BookPiece&) const = default;
};

std::vector<BookPiece> bookPieces(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                                  const LKBindSubject& subject);

}  // namespace lk
