#include "LKCore/Bind/BookPieces.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Bind/FootnoteLabels.h"
#include "LKCore/Bind/LKBindAssembler.h"
#include "LKCore/Bind/LKBindFilter.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk {

namespace {

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

// HTML that goes on over empty lines, up to its end; both in lower case.
struct LongHTML {
  std::string_view start;
  std::string_view end;
};

constexpr std::array<LongHTML, 6> kLongHTML = {{{"<!--", "-->"},
                                                {"<![cdata[", "]]>"},
                                                {"<?", "?>"},
                                                {"<pre>", "</pre>"},
                                                {"<pre ", "</pre>"},
                                                {"<pre\n", "</pre>"}}};

// Tells where such HTML begins that nothing in the body ends.
class EndlessHTML {
 public:
  explicit EndlessHTML(std::string_view body) : body_(body) {}

  // `place` is where the text begins in the body.
  bool beginsWith(std::string_view text, size_t place) {
    if (!text.starts_with('<')) return false;
    const std::string start = text::lowercased(text.substr(0, kLongestStart)) + "\n";
    for (size_t i = 0; i < kLongHTML.size(); ++i) {
      if (!start.starts_with(kLongHTML[i].start)) continue;
      if (!lastEnds_[i]) lastEnds_[i] = lastPlace(body_, kLongHTML[i].end);
      return place >= *lastEnds_[i];
    }
    return false;
  }

 private:
  static constexpr size_t kLongestStart = 9;

  // 0 without one.
  static size_t lastPlace(std::string_view body, std::string_view end) {
    const auto isSame = [](char inBody, char lower) {
      return inBody == lower || (inBody >= 'A' && inBody <= 'Z' && inBody + ('a' - 'A') == lower);
    };
    const auto* const found =
        std::find_end(body.begin(), body.end(), end.begin(), end.end(), isSame);
    return found == body.end() ? 0 : static_cast<size_t>(found - body.begin());
  }

  std::string_view body_;
  std::array<std::optional<size_t>, kLongHTML.size()> lastEnds_;  // searched for once needed
};

std::string_view indentOf(std::string_view line) {
  return line.substr(0, std::min(line.find_first_not_of(" \t"), line.size()));
}

// Both lines of a fence as far in as the one that is less so. Where they differ, the Markdown reader
// takes the closing line for an opening one, and all notes behind it for code.
void levelFences(std::vector<std::string_view>& lines) {
  CodeFenceWalk fences;
  std::string_view* opening = nullptr;
  for (std::string_view& line : lines) {
    const CodeFenceWalk::Line kind = fences.take(line);
    if (kind == CodeFenceWalk::Line::opening) opening = &line;
    if (kind != CodeFenceWalk::Line::closing || opening == nullptr) continue;
    const std::string_view first = indentOf(*opening);
    const std::string_view last = indentOf(line);
    const auto common = static_cast<size_t>(std::ranges::mismatch(first, last).in1 - first.begin());
    opening->remove_prefix(first.size() - common);
    line.remove_prefix(last.size() - common);
  }
  // The closing line that it gets is not indented.
  if (opening != nullptr && fences.closingLine()) opening->remove_prefix(indentOf(*opening).size());
}

// The body so that it ends with its note: an open fence is closed, and HTML that never ends, which
// would take in all that follows, shows.
std::string sealed(std::string_view body) {
  EndlessHTML endless(body);
  std::string result;
  result.reserve(body.size() + 8);
  std::vector<std::string_view> lines = text::split(body, '\n');
  levelFences(lines);
  CodeFenceWalk fences;
  for (const std::string_view line : lines) {
    const auto offset = static_cast<size_t>(line.data() - body.data());
    const bool isOutside = fences.take(line) == CodeFenceWalk::Line::outside;
    const size_t mark = std::min(line.find_first_not_of(' '), line.size());
    const bool neverEnds = isOutside && endless.beginsWith(line.substr(mark), offset + mark);
    result.append(line.substr(0, mark)).append(neverEnds ? "&lt;" : "");
    result.append(line.substr(mark + (neverEnds ? 1 : 0))).push_back('\n');
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
    if (isChapter && LKBindAssembler::bodyContainsRolePrefixH1(filtered.body))
      filtered.role = LKBindNoteRole::book;
    places.of(note.role).push_back(std::move(filtered));
  }
  std::vector<std::string*> bodies;
  for (auto* list : {&places.titlePages, &places.frontMatter, &places.main, &places.endMatter}) {
    for (FilteredNote& note : *list) bodies.push_back(&note.body);
  }
  makeFootnoteLabelsUnique(bodies);
  return places;
}

// --- Notes as pieces -----------------------------------------------------------------------------

class PieceMaker {
 public:
  PieceMaker(const LKBindSpec& spec, const LKBindSubject& subject)
      : spec_(spec), context_(subject.tokens()) {}

  void addFront(BookPiece::Kind kind, std::string body) { add(kind, std::move(body), true); }

  void addMain(FilteredNote note) {
    context_.noteTitle = note.title;
    switch (note.role) {
      case LKBindNoteRole::chapter:
      case LKBindNoteRole::part: {
        LKBindAssembler::SplitBody split = LKBindAssembler::splitFirstH1(note.body);
        addHeaded(note.role, split.title.value_or(std::string()), std::move(split.rest));
        break;
      }
      case LKBindNoteRole::scene:
        ++scenes_;
        add(BookPiece::Kind::scene, LKBindAssembler::splitFirstH1(note.body).rest, false);
        pieces_.back().isAfterScene = scenes_ > 1;
        break;
      case LKBindNoteRole::book:
        addBook(note.body);
        break;
      default:
        add(BookPiece::Kind::plain, std::move(note.body), spec_.headings.h1.pageBreakBefore);
        scenes_ = 0;
    }
  }

  void addEnd(std::string body) { add(BookPiece::Kind::end, std::move(body), true); }

  void addEndSections() {
    for (std::string& body : std::exchange(endSections_, {})) addEnd(std::move(body));
  }

  std::vector<BookPiece> take() { return std::move(pieces_); }

 private:
  void add(BookPiece::Kind kind, std::string body, bool isOnNewPage) {
    pieces_.push_back({kind, "", std::move(body), isOnNewPage});
  }

  void addHeaded(LKBindNoteRole role, const std::string& title, std::string rest) {
    const bool isPart = role == LKBindNoteRole::part;
    const LKBindHeading& heading = isPart ? spec_.headings.part : spec_.headings.h1;
    std::optional<int64_t>& number = isPart ? context_.partNumber : context_.chapterNumber;
    number = number.value_or(0) + 1;
    context_.chapterTitle = title.empty() ? context_.noteTitle : title;
    add(isPart ? BookPiece::Kind::part : BookPiece::Kind::chapter, std::move(rest),
        heading.pageBreakBefore);
    pieces_.back().heading = headingText(heading);
    scenes_ = 0;
  }

  std::string headingText(const LKBindHeading& heading) const {
    std::string text = LKBindTokenResolver::resolve(heading.prefix, context_) +
                       LKBindTokenResolver::resolve(heading.suffix, context_);
    return text::trimmed(text).empty() ? *context_.chapterTitle : text;
  }

  void addBook(std::string_view body) {
    LKBindAssembler::BookBody book = LKBindAssembler::parseBookBody(body);
    if (!text::trimmed(book.preamble).empty()) {
      addFront(BookPiece::Kind::front, std::move(book.preamble));
    }
    for (LKBindAssembler::BookBodySection& section : book.sections) {
      const bool isHeaded =
          section.role == LKBindNoteRole::chapter || section.role == LKBindNoteRole::part;
      if (isHeaded) {
        addHeaded(section.role, section.title, std::move(section.body));
        continue;
      }
      std::string withHeading =
          section.title.empty() ? section.body : "# " + section.title + "\n\n" + section.body;
      if (section.role == LKBindNoteRole::frontMatter) {
        addFront(BookPiece::Kind::front, std::move(withHeading));
      } else if (section.role == LKBindNoteRole::endMatter) {
        endSections_.push_back(std::move(withHeading));
      }
    }
  }

  const LKBindSpec& spec_;
  LKBindTokenContext context_;
  std::vector<BookPiece> pieces_;
  std::vector<std::string> endSections_;
  size_t scenes_ = 0;  // of this chapter
};

}  // namespace

std::vector<BookPiece> bookPieces(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                                  const LKBindSubject& subject) {
  NotesByPlace places = sortedNotes(notes, spec.filters);
  PieceMaker maker(spec, subject);
  for (FilteredNote& note : places.titlePages) {
    maker.addFront(BookPiece::Kind::titlePage, std::move(note.body));
  }
  for (FilteredNote& note : places.frontMatter) {
    maker.addFront(BookPiece::Kind::front, std::move(note.body));
  }
  for (FilteredNote& note : places.main) maker.addMain(std::move(note));
  maker.addEndSections();
  for (FilteredNote& note : places.endMatter) maker.addEnd(std::move(note.body));
  return maker.take();
}

}  // namespace lk
