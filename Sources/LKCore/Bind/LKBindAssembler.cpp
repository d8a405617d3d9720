#include "LKCore/Bind/LKBindAssembler.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Bind/FootnoteLabels.h"
#include "LKCore/Bind/LKBindFilter.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk::LKBindAssembler {

namespace {

constexpr std::string_view kPageBreak = "<div class=\"bind-pagebreak\"></div>";

// --- Notes by their place ------------------------------------------------------------------------

struct FilteredNote {
  std::string title;
  std::string body;
  LKBindNoteRole role = LKBindNoteRole::chapter;
};

struct NotesByPlace {
  std::vector<FilteredNote> titlePages;
  std::vector<FilteredNote> frontMatter;
  std::vector<FilteredNote> main;
  std::vector<FilteredNote> endMatter;

  std::vector<FilteredNote>& of(LKBindNoteRole role) {
    if (role == LKBindNoteRole::titlePage) return titlePages;
    if (role == LKBindNoteRole::frontMatter) return frontMatter;
    return role == LKBindNoteRole::endMatter ? endMatter : main;
  }
};

// The body so that it ends with its note: an open fence is closed, and a comment that never ends,
// which would hide all that follows, shows.
std::string sealed(std::string_view body) {
  const size_t lastEnd = body.rfind("-->");
  std::string result;
  result.reserve(body.size() + 8);
  CodeFenceWalk fences;
  size_t offset = 0;
  for (const std::string_view line : text::split(body, '\n')) {
    const bool isOutside = fences.take(line) == CodeFenceWalk::Line::outside;
    const size_t mark = std::min(line.find_first_not_of(' '), line.size());
    const bool mayEnd = lastEnd != std::string_view::npos && offset + mark < lastEnd;
    const bool neverEnds = isOutside && !mayEnd && line.substr(mark).starts_with("<!--");
    result.append(line.substr(0, mark)).append(neverEnds ? "&lt;" : "");
    result.append(line.substr(mark + (neverEnds ? 1 : 0))).push_back('\n');
    offset += line.size() + 1;
  }
  result.pop_back();  // the last line's end was not there
  const auto closing = fences.closingLine();
  if (!closing) return result;
  if (!result.ends_with('\n')) result.push_back('\n');
  return result.append(*closing).append("\n");
}

NotesByPlace sortedNotes(const std::vector<LKBindNoteInput>& notes, const LKBindFilters& filters) {
  NotesByPlace places;
  for (const LKBindNoteInput& note : notes) {
    if (note.role == LKBindNoteRole::skip) continue;
    FilteredNote filtered{note.noteTitle, sealed(LKBindFilter::apply(note.body, filters)),
                          note.role};
    const bool isChapter = note.role == LKBindNoteRole::chapter;
    if (isChapter && bodyContainsRolePrefixH1(filtered.body)) filtered.role = LKBindNoteRole::book;
    places.of(note.role).push_back(std::move(filtered));
  }
  std::vector<std::string*> bodies;
  for (auto* list : {&places.titlePages, &places.frontMatter, &places.main, &places.endMatter}) {
    for (FilteredNote& note : *list) bodies.push_back(&note.body);
  }
  makeFootnoteLabelsUnique(bodies);
  return places;
}

// --- The manuscript ------------------------------------------------------------------------------

class Manuscript {
 public:
  Manuscript(const LKBindSpec& spec, const LKBindSubject& subject)
      : spec_(spec), context_(subject.tokens()) {}

  void addFront(std::string_view body) {
    breakPage();
    beginBlock();
    text_.append("<div class=\"bind-titlepage\">\n\n");
    appendLines(body);
    text_.append("</div>\n");
  }

  void addMain(const FilteredNote& note) {
    context_.noteTitle = note.title;
    switch (note.role) {
      case LKBindNoteRole::chapter:
      case LKBindNoteRole::part: {
        const SplitBody split = splitFirstH1(note.body);
        addHeaded(note.role, split.title.value_or(std::string()), split.rest);
        break;
      }
      case LKBindNoteRole::scene:
        addScene(splitFirstH1(note.body).rest);
        break;
      case LKBindNoteRole::book:
        emitBook(note.body);
        break;
      default:
        addPlain(note.body);
    }
  }

  void addEnd(std::string_view body) {
    breakPage();
    beginBlock();
    appendLines(body);
  }

  void addEndSections() {
    for (const std::string& body : std::exchange(endSections_, {})) addEnd(body);
  }

  std::string take() { return std::move(text_); }

 private:
  void addHeaded(LKBindNoteRole role, const std::string& title, std::string_view rest) {
    const bool isPart = role == LKBindNoteRole::part;
    const LKBindHeading& heading = isPart ? spec_.headings.part : spec_.headings.h1;
    if (isPart) {
      context_.partNumber = context_.partNumber.value_or(0) + 1;
    } else {
      context_.chapterNumber = context_.chapterNumber.value_or(0) + 1;
    }
    context_.chapterTitle = title.empty() ? context_.noteTitle : title;
    if (heading.pageBreakBefore) breakPage();
    beginBlock();
    text_.append(isPart ? "<h1 class=\"bind-part\">" : "<h1 class=\"bind-chapter\">");
    text_.append(headingHTML(headingText(heading))).append("</h1>\n\n");
    appendLines(rest);
    scenes_ = 0;
  }

  std::string headingText(const LKBindHeading& heading) const {
    std::string text = LKBindTokenResolver::resolve(heading.prefix, context_) +
                       LKBindTokenResolver::resolve(heading.suffix, context_);
    return text::trimmed(text).empty() ? *context_.chapterTitle : text;
  }

  void addScene(std::string_view body) {
    ++scenes_;
    beginBlock();
    if (scenes_ > 1) text_.append("---\n\n");
    appendLines(body);
  }

  void addPlain(std::string_view body) {
    if (spec_.headings.h1.pageBreakBefore) breakPage();
    beginBlock();
    appendLines(body);
    scenes_ = 0;
  }

  void emitBook(std::string_view body) {
    const BookBody book = parseBookBody(body);
    if (!text::trimmed(book.preamble).empty()) addFront(book.preamble);
    for (const BookBodySection& section : book.sections) {
      const std::string withHeading =
          section.title.empty() ? section.body : "# " + section.title + "\n\n" + section.body;
      if (section.role == LKBindNoteRole::frontMatter) addFront(withHeading);
      if (section.role == LKBindNoteRole::endMatter) endSections_.push_back(withHeading);
      const bool isHeaded =
          section.role == LKBindNoteRole::chapter || section.role == LKBindNoteRole::part;
      if (isHeaded) addHeaded(section.role, section.title, section.body);
    }
  }

  void breakPage() {
    if (text_.empty()) return;
    beginBlock();
    text_.append(kPageBreak).append("\n\n");
  }

  // An empty line behind what is there, which ends every paragraph and piece of HTML.
  void beginBlock() {
    if (text_.empty() || text_.ends_with("\n\n")) return;
    text_.append(text_.ends_with('\n') ? "\n" : "\n\n");
  }

  void appendLines(std::string_view lines) {
    text_.append(lines);
    if (!lines.ends_with('\n')) text_.push_back('\n');
  }

  const LKBindSpec& spec_;
  LKBindTokenContext context_;
  std::string text_;
  std::vector<std::string> endSections_;
  size_t scenes_ = 0;  // of this chapter
};

}  // namespace

std::string assemble(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                     const LKBindSubject& subject) {
  const NotesByPlace places = sortedNotes(notes, spec.filters);
  Manuscript manuscript(spec, subject);
  for (const FilteredNote& note : places.titlePages) manuscript.addFront(note.body);
  for (const FilteredNote& note : places.frontMatter) manuscript.addFront(note.body);
  for (const FilteredNote& note : places.main) manuscript.addMain(note);
  manuscript.addEndSections();
  for (const FilteredNote& note : places.endMatter) manuscript.addEnd(note.body);
  return manuscript.take();
}

}  // namespace lk::LKBindAssembler
