#include "LKCore/Templates/LKTemplateResolver.h"

#include <algorithm>

#include "LKCore/Base/DatePattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Templates/LKTemplateError.h"

namespace lk::LKTemplateResolver {

namespace {

constexpr std::string_view kOpener = "{{";
constexpr std::string_view kCloser = "}}";

struct Placeholder {
  size_t begin = 0;  // of its opener
  size_t end = 0;    // behind its closer
  std::string_view name;
};

// The placeholders of a text, one after the other. It looks at each byte a fixed number of times.
class Placeholders {
 public:
  explicit Placeholders(std::string_view text) : text_(text) {}

  std::optional<Placeholder> next() {
    while (true) {
      const size_t closer = text_.find(kCloser, at_);
      if (closer == std::string_view::npos) return std::nullopt;
      const std::string_view before = text_.substr(at_, closer - at_);
      const size_t lineEnd = before.rfind('\n');
      const size_t opener = before.rfind(kOpener);
      const bool isWhole = opener != std::string_view::npos &&
                           (lineEnd == std::string_view::npos || lineEnd < opener);
      if (!isWhole) {
        at_ = closer + 1;
        continue;
      }
      const size_t begin = at_ + opener;
      const size_t nameBegin = begin + kOpener.size();
      at_ = closer + kCloser.size();
      return Placeholder{begin, at_, text_.substr(nameBegin, closer - nameBegin)};
    }
  }

 private:
  std::string_view text_;
  size_t at_ = 0;
};

// A text under way, and the byte at which the caret stands in it.
struct TemplateDraft {
  std::string text;
  std::optional<size_t> cursor;
};

// What stands for a placeholder of that name; nothing keeps it.
using PlaceholderText = std::function<std::optional<std::string>(std::string_view name)>;

void appendWithinLimit(std::string& text, std::string_view part) {
  if (part.size() > kResultLimit - text.size()) {
    throw LKTemplateError("The template makes more text than a note may have (" +
                          std::to_string(kResultLimit / 1'000'000) + " MB).");
  }
  text.append(part);
}

TemplateDraft replaced(const TemplateDraft& draft, const PlaceholderText& textFor) {
  TemplateDraft result;
  size_t copied = 0;
  const auto copyTo = [&](size_t end) {
    if (draft.cursor && !result.cursor && *draft.cursor <= end) {
      result.cursor = result.text.size() + std::max(*draft.cursor, copied) - copied;
    }
    appendWithinLimit(result.text, std::string_view(draft.text).substr(copied, end - copied));
    copied = end;
  };
  Placeholders placeholders(draft.text);
  while (const auto found = placeholders.next()) {
    const std::optional<std::string> text = textFor(found->name);
    if (!text) continue;
    copyTo(found->begin);
    appendWithinLimit(result.text, *text);
    copied = found->end;
  }
  copyTo(draft.text.size());
  return result;
}

// Words are ASCII, so a text of another length is no other case of one.
bool isWord(std::string_view name, std::string_view word) {
  return name.size() == word.size() && text::equalIgnoringCase(name, word);
}

bool isCursor(std::string_view name) {
  return isWord(name, "cursor");
}

TemplateDraft withoutCursors(std::string_view text) {
  TemplateDraft draft{std::string(text), std::nullopt};
  Placeholders placeholders(text);
  while (const auto found = placeholders.next()) {
    if (!isCursor(found->name)) continue;
    draft.cursor = found->begin;
    break;
  }
  if (!draft.cursor) return draft;
  return replaced(draft, [](std::string_view name) {
    return isCursor(name) ? std::optional(std::string()) : std::nullopt;
  });
}

// The pattern in "date:PATTERN" or "time:PATTERN".
std::optional<std::string_view> datePatternIn(std::string_view name) {
  static constexpr size_t kPrefixSize = 5;
  const std::string_view prefix = name.substr(0, kPrefixSize);
  if (!isWord(prefix, "date:") && !isWord(prefix, "time:")) {
    return std::nullopt;
  }
  return name.substr(kPrefixSize);
}

std::string dateText(Instant date, std::string_view pattern, std::string_view locale) {
  const auto machineForm = LKDateOnly::machineFormatter(pattern);
  return machineForm ? machineForm->string(date) : formatted(date, pattern, locale);
}

}  // namespace

Result resolve(std::string_view text, const Values& values, Instant date, std::string_view locale) {
  const auto named = [&](std::string_view name) -> std::optional<std::string> {
    if (isWord(name, "date")) return formatted(date, "yyyy-MM-dd", locale);
    if (isWord(name, "time")) return formatted(date, "HH:mm", locale);
    const auto found = values.find(name);
    return found == values.end() ? std::nullopt : std::optional(found->second);
  };
  const auto left = [&](std::string_view name) -> std::optional<std::string> {
    if (const auto pattern = datePatternIn(name)) {
      std::string written = dateText(date, *pattern, locale);
      return written.empty() ? std::nullopt : std::optional(std::move(written));
    }
    return isCursor(name) ? std::nullopt : std::optional(std::string());
  };
  TemplateDraft draft = replaced(replaced(withoutCursors(text), named), left);
  Result result;
  if (draft.cursor) {
    const std::string_view before = std::string_view(draft.text).substr(0, *draft.cursor);
    result.cursorOffset = text::characterEnds(before).size();
  }
  result.text = std::move(draft.text);
  return result;
}

}  // namespace lk::LKTemplateResolver
