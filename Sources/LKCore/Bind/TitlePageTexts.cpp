#include "LKCore/Bind/TitlePageTexts.h"

#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/Base/Words.h"
#include "LKCore/Bind/LKBindFilter.h"
#include "LKCore/Bind/LKBindTokenResolver.h"

namespace lk {

namespace {

int64_t wordsOfNotes(const std::vector<LKBindNoteInput>& notes, const LKBindFilters& filters) {
  size_t words = 0;
  for (const LKBindNoteInput& note : notes) {
    if (note.role == LKBindNoteRole::skip) continue;
    words += wordCount(LKBindFilter::apply(note.body, filters));
  }
  return static_cast<int64_t>(words);
}

// What is no token stays between its braces.
std::string resolvedTitleText(const std::string& text, const LKBindTokenContext& context) {
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

}  // namespace

TitlePageTexts titlePageTexts(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                              const LKBindSubject& subject) {
  const LKBindTitlePage& page = spec.frontMatter.titlePage;
  LKBindTokenContext context = subject.tokens();
  if ((page.title + page.subtitle + page.author).find("{wordcount}") != std::string::npos) {
    context.wordcount = wordsOfNotes(notes, spec.filters);
  }
  return {resolvedTitleText(page.title, context), resolvedTitleText(page.subtitle, context),
          resolvedTitleText(page.author, context)};
}

}  // namespace lk
