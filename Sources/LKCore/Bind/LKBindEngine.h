#pragma once

// A list of notes as one book in HTML, with its style sheet inside: what a browser shows, and what
// the builders of PDF and EPUB read.
//
//     const std::string page = LKBindEngine::bind(notes, spec, {.tagName = "novel", .date = now});
//
// The stages, each a file of its own: LKBindNoteChoice picks the notes (the caller's step),
// LKBindAssembler makes one Markdown manuscript of them, LKMarkdownToHTML renders it, and the engine
// adds contents, footnotes of chapters, diagrams, colours of code and styles.
//
// What the tool itself writes cannot be forged by a title, a tag, an author or a text of the bind spec:
// they are escaped for the place where they stand. Pure functions of valid UTF-8, for any thread;
// nothing throws. Time is linear in the notes. No notes give a document with an empty body.

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

// A diagram as a picture: SVG when there is any, else PNG.
struct LKBindDiagram {
  std::string svg;       // the whole document
  std::string png = {};  // bytes
  double width = 0;      // CSS pixels; 0: the picture's own
  double height = 0;

  bool operator==(const LKBindDiagram&) const = default;
};

// From the text within a "mermaid" fence, without the line feed at its end, to its picture.
using LKBindDiagrams = std::map<std::string, LKBindDiagram, std::less<>>;

namespace LKBindEngine {

// A heading that the contents list.
struct TOCEntry {
  enum class Kind { chapter, part };
  Kind kind = Kind::chapter;
  std::string title;  // plain text
  std::string identifier;

  bool operator==(const TOCEntry&) const = default;
};

// The whole document.
std::string bind(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                 const LKBindSubject& subject, const LKBindDiagrams& mermaidRenders = {});

// The book's title as the title page, the document and the running heads have it: plain text, one
// line.
std::string bookTitle(const LKBindSpec& spec, const LKBindSubject& subject);

// The language of the book as HTML names it, "de-DE" for "de_DE"; empty when the locale names none.
std::string bookLanguage(const LKBindSubject& subject);

}  // namespace LKBindEngine
}  // namespace lk
