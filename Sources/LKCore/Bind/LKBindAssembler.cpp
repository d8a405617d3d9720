#include "LKCore/Bind/LKBindAssembler.h"

#include <utility>

#include "LKCore/Bind/BookPieces.h"

namespace lk::LKBindAssembler {

namespace {

constexpr std::string_view kPageBreak = "<div class=\"bind-pagebreak\"></div>";

class Manuscript {
 public:
  void add(const BookPiece& piece) {
    if (piece.isOnNewPage) breakPage();
    beginBlock();
    switch (piece.kind) {
      case BookPiece::Kind::titlePage:
      case BookPiece::Kind::front:
        text_.append("<div class=\"bind-titlepage\">\n\n");
        appendLines(piece.body);
        text_.append("</div>\n");
        return;
      case BookPiece::Kind::part:
        text_.append("<h1 class=\"bind-part\">").append(headingHTML(piece.heading));
        text_.append("</h1>\n\n");
        break;
      case BookPiece::Kind::chapter:
        text_.append("<h1 class=\"bind-chapter\">").append(headingHTML(piece.heading));
        text_.append("</h1>\n\n");
        break;
      case BookPiece::Kind::scene:
        if (piece.isAfterScene) text_.append("---\n\n");
        break;
      case BookPiece::Kind::plain:
      case BookPiece::Kind::end:
        break;
    }
    appendLines(piece.body);
  }

  std::string take() { return std::move(text_); }

 private:
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

  std::string text_;
};

}  // namespace

std::string assemble(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                     const LKBindSubject& subject) {
  Manuscript manuscript;
  for (const BookPiece& piece : bookPieces(notes, spec, subject)) manuscript.add(piece);
  return manuscript.take();
}

}  // namespace lk::LKBindAssembler
