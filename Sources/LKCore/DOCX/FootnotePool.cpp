#include "LKCore/DOCX/FootnotePool.h"

#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk::word {

void FootnotePool::define(const std::string& label, std::vector<std::string> lines) {
  if (!places_.emplace(label, definitions_.size()).second) return;
  definitions_.push_back({label, std::move(lines), 0, ""});
}

bool FootnotePool::isDefined(std::string_view label) const {
  return places_.contains(std::string(label));
}

std::string FootnotePool::numberText() const {
  const int number = nextID_ - 1;
  switch (placement_) {
    case LKBindFootnotePlacement::perPage:
      return std::to_string(number);
    case LKBindFootnotePlacement::endOfBook:
      if (const auto roman = LKBindTokenResolver::romanNumeral(number)) {
        return text::lowercased(*roman);
      }
      return std::to_string(number);
    case LKBindFootnotePlacement::endOfChapter:
      break;
  }
  return std::to_string(numberInSection_);
}

std::string FootnotePool::reference(std::string_view label) {
  const auto place = places_.find(std::string(label));
  if (place == places_.end()) return {};
  Definition& definition = definitions_[place->second];
  const std::string kind = areEndnotes() ? "endnote" : "footnote";
  const std::string style = areEndnotes() ? "EndnoteReference" : "FootnoteReference";
  const std::string open = "<w:r><w:rPr><w:rStyle w:val=\"" + style + "\"/></w:rPr>";
  if (definition.id != 0) {
    const std::string mark = "_Note" + std::to_string(definition.id);
    return open + "<w:fldChar w:fldCharType=\"begin\"/></w:r>" + open +
           "<w:instrText xml:space=\"preserve\"> NOTEREF " + mark + " \\h </w:instrText></w:r>" +
           open + "<w:fldChar w:fldCharType=\"separate\"/></w:r>" + open + "<w:t>" +
           definition.number + "</w:t></w:r>" + open + "<w:fldChar w:fldCharType=\"end\"/></w:r>";
  }
  ++numberInSection_;
  definition.number = numberText();
  definition.id = nextID_++;
  bodies_.push_back({definition.id, definition.lines});
  const std::string id = std::to_string(definition.id);
  // Bookmarks of notes are even, of headings odd.
  const std::string bookmark = std::to_string(2 * definition.id);
  return "<w:bookmarkStart w:id=\"" + bookmark + "\" w:name=\"_Note" + id + "\"/>" + open +
         "<w:" + kind + "Reference w:id=\"" + id + "\"/></w:r><w:bookmarkEnd w:id=\"" + bookmark +
         "\"/>";
}

std::vector<const FootnotePool::Definition*> FootnotePool::unreferenced() const {
  std::vector<const Definition*> result;
  for (const Definition& definition : definitions_) {
    if (definition.id == 0) result.push_back(&definition);
  }
  return result;
}

}  // namespace lk::word
