#include "LarkspireCLI/Commands/BindTitlePage.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/TitlePageTexts.h"

namespace lk {

namespace {

// The text for HTML that stands in Markdown: no sign of it means anything to either, nor to the
// notes' own dialect.
std::string withoutMarkup(std::string_view text) {
  constexpr std::string_view kSigns = "&<>\"'#[]{}=*_~@:`|^$+-\\";
  std::string result;
  for (const char c : text) {
    if (c == '\n') {
      result += "<br>";
    } else if (kSigns.find(c) != std::string_view::npos) {
      result += "&#" + std::to_string(static_cast<int>(c)) + ";";
    } else {
      result += c;
    }
  }
  return result;
}

std::string titlePageLine(const std::string& tag, const std::string& className,
                          const std::string& text) {
  if (text.empty()) return "";
  return "<" + tag + " class=\"" + className + "\">" + withoutMarkup(text) + "</" + tag + ">\n\n";
}

}  // namespace

std::optional<LKBindNoteInput> titlePageOf(const LKBindSpec& spec, const LKBindSubject& subject,
                                           const std::vector<LKBindNoteInput>& notes) {
  const LKBindTitlePage& page = spec.frontMatter.titlePage;
  const bool isThere =
      std::ranges::count(notes, LKBindNoteRole::titlePage, &LKBindNoteInput::role) > 0;
  if (!page.include || isThere) return std::nullopt;
  const TitlePageTexts texts = titlePageTexts(notes, spec, subject);
  LKBindNoteInput note;
  note.noteTitle = LKBindEngine::bookTitle(spec, subject);
  note.role = LKBindNoteRole::titlePage;
  note.body = titlePageLine("h1", "bind-title", texts.title) +
              titlePageLine("p", "bind-subtitle", texts.subtitle) +
              titlePageLine("p", "bind-author", texts.author);
  if (note.body.empty()) return std::nullopt;
  return note;
}

}  // namespace lk
