#pragma once

// Fills in the placeholders of a text.
//
//     {{cursor}}            where the caret stands when the note opens; the first one counts
//     {{date}} {{time}}     2026-03-14 and 09:26
//     {{NAME}}              the value of that name, or nothing
//     {{date:EEEE}}         the date by a pattern (Base/DatePattern.h); so does {{time:HH.mm}}
//
// The case of "cursor", "date" and "time" means nothing, that of a name does. A placeholder stands
// within one line and reaches from the last "{{" before the first "}}", so braces that close
// nothing stay as they are. A value is put in once: the names of other values in it are not looked
// up, but dates by pattern are, and what is left of placeholders goes. `{{date:PATTERN}}` with a
// pattern that is none stays as it is written.
//
//     LKTemplateResolver::resolve("Meeting {{date}} {{topic}}", {{"topic", "Plan"}}, now, "").text
//         // "Meeting 2026-03-14 Plan"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"

namespace lk::LKTemplateResolver {

using Values = std::map<std::string, std::string, std::less<>>;

inline constexpr size_t kResultLimit = 16'000'000;  // UTF-8 bytes

struct Result {
  std::string text;
  std::optional<size_t> cursorOffset;  // user-perceived characters before the caret

  bool operator==(const Result&) const = default;
};

// Takes time in proportion to the text and the result. The date is written in the current time
// zone and by the locale, the user's when it is empty; the machine forms of Time.h are the same in
// all of them. Throws LKTemplateError when the result would be longer than `kResultLimit`.
Result resolve(std::string_view text, const Values& values, Instant date, std::string_view locale);

}  // namespace lk::LKTemplateResolver
