#include "LarkspireCLI/Commands/BindTitlePage.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/Base/Words.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindFilter.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk {

namespace {

int64_t wordsOfBook(const std::vector<LKBindNoteInput>& notes, const LKBindFilters& filters) {
  size_t words = 0;
  for (const LKBindNoteInput& note : notes) {
    if (note.role == LKBindNoteRole::skip) continue;
    words += wordCount(LKBindFilter::apply(note.body, filters));
  }
  return static_cast<int64_t>(words);
}

// What is no token stays between its braces.
std::string titlePageText(const std::string& text, const LKBindTokenContext& context) {
  std::string result;
  LKBindTokenResolver::walk(
      text, [&](std::string_view literal) { result.append(literal); },
      [&](std::string_view name) {
        if (const auto value = LKBindTokenResolver::value(name, context)) {
          result.append(*value);
        } else if (!LKBindTokenResolver::isToken(name)) {
          result.append("{").append(name).append("}");
        }
      });
  return std::string(text::trimmed(result));
}

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
  LKBindTokenContext context = subject.tokens();
  if ((page.title + page.subtitle + page.author).find("{wordcount}") != std::string::npos) {
    context.wordcount = wordsOfBook(notes, spec.filters);
  }
  LKBindNoteInput note;
  note.noteTitle = LKBindEngine::bookTitle(spec, subject);
  note.role = LKBindNoteRole::titlePage;
  note.body = titlePageLine("h1", "bind-title", titlePageText(page.title, context)) +
              titlePageLine("p", "bind-subtitle", titlePageText(page.subtitle, context)) +
              titlePageLine("p", "bind-author", titlePageText(page.author, context));
  if (note.body.empty()) return std::nullopt;
  return note;
}

}  // namespace lk
