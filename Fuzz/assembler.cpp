// A manuscript from any notes and texts of a spec: binding ends, the page is one document with one
// style sheet, and the words of a chapter do not get lost.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindEngine.h"

namespace {

using Role = lk::LKBindNoteRole;

constexpr std::string_view kLastWord = "Zwischenraumende";

void requireInBook(bool holds) {
  if (!holds) std::abort();
}

size_t timesIn(std::string_view text, std::string_view part) {
  size_t times = 0;
  for (size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++times;
  return times;
}

// The first line names the book, the second one is a text of the bind spec; the rest is divided into
// notes at lines that begin with "%", whose next letter is the role.
struct BookInput {
  std::vector<lk::LKBindNoteInput> notes;
  lk::LKBindSpec spec;
  lk::LKBindSubject subject;
};

BookInput bookFrom(std::string_view text) {
  BookInput book;
  const std::vector<std::string_view> lines = lk::text::split(text, '\n');
  book.subject.tagName = lines[0];
  book.subject.author = lines[0];
  book.subject.locale = "C";
  const std::string told(lines.size() > 1 ? lines[1] : lines[0]);
  book.spec.headings.h1.prefix = told;
  book.spec.headerFooter.footerCenter = book.spec.sceneBreak.text = told;
  book.spec.typography.bodyFont = book.spec.frontMatter.tableOfContents.title = told;
  book.spec.frontMatter.tableOfContents.include = text.size() % 2 == 0;
  book.spec.filters.stripComments = text.size() % 3 != 0;
  if (text.size() % 5 < 2) {
    book.spec.filters.footnotePlacement = lk::LKBindFootnotePlacement::endOfChapter;
  }
  for (size_t i = 2; i < lines.size(); ++i) {
    if (lines[i].starts_with('%') || book.notes.empty()) {
      const size_t role = lines[i].size() > 1 ? static_cast<unsigned char>(lines[i][1]) % 8 : 0;
      book.notes.push_back({std::string(lines[i]), "", static_cast<Role>(role)});
    } else {
      book.notes.back().body.append(lines[i]).append("\n");
    }
  }
  // Whatever the notes before it leave open, the last one shows.
  book.notes.push_back({"Last", std::string(kLastWord), Role::endMatter});
  return book;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) return 0;
  const BookInput book = bookFrom(text);
  const std::string page = lk::LKBindEngine::bind(book.notes, book.spec, book.subject);
  requireInBook(lk::text::isValidUTF8(page));
  requireInBook(timesIn(page, "</head>\n<body>\n") == 1 && page.ends_with("\n</body>\n</html>"));
  requireInBook(timesIn(page.substr(0, page.find("</head>")), "</style>") == 1);
  requireInBook(timesIn(page, kLastWord) >= 1);
  return 0;
}
