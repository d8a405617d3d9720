#include "LKCore/Tasks/TaskLine.h"

#include <algorithm>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Tasks/LKTaskPriority.h"
#include "LKCore/Tasks/TaskStatus.h"
#include "LKCore/Tasks/TaskTokens.h"

namespace lk::taskline {

namespace {

constexpr size_t kTaskMarkLength = 6;  // "- [ ] "
constexpr size_t kSpacesInTab = 4;

std::string withWord(std::string_view line, std::string_view word) {
  return std::string(withoutTrailingSpace(line)).append(" ").append(word);
}

std::string_view withoutReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// The text ended as `neighbour` is.
std::string endedLike(std::string text, std::string_view neighbour) {
  if (neighbour.ends_with('\r')) text.push_back('\r');
  return text;
}

}  // namespace

std::optional<std::string> settingStatus(std::string_view line, int raw, Day today) {
  const size_t mark = line.find('[') + 1;  // 0 when there is none
  if (mark == 0 || mark >= line.size()) return std::nullopt;
  const auto current = taskStatusOfMark(line[mark]);
  const auto target = taskStatus(raw);
  if (!current || !target || current == target) return std::nullopt;
  std::string changed(line);
  changed[mark] = markOf(*target);
  if (target == TaskStatus::done && changed.find(kDoneToken.key) == std::string::npos) {
    return withWord(changed, "done:" + LKDateOnly::text(today));
  }
  if (current == TaskStatus::done) return removing(changed, tokens(changed, kDoneToken));
  return changed;
}

std::optional<std::string> settingDue(std::string_view line, std::optional<Day> due) {
  std::string changed = removing(line, tokens(line, kDueToken));
  if (!due) return changed;
  const std::string date = LKDateOnly::text(*due);
  if (LKDateOnly::parse(date) != due) return std::nullopt;
  return withWord(changed, "due:" + date);
}

std::string settingPriority(std::string_view line, int raw) {
  std::string changed = removing(line, tokens(line, kPriorityToken));
  const std::string token = LKTaskPriority::token(raw);
  return token.empty() ? changed : withWord(changed, token);
}

std::optional<std::string> settingProject(std::string_view line,
                                          const std::optional<std::string>& name,
                                          const std::vector<std::string>& keywords) {
  if (keywords.empty() || !fitsInLine(name.value_or(""))) return std::nullopt;
  try {
    std::string changed = removing(line, projectTokens(line, keywords));
    if (!name || name->empty()) return changed;
    return withWord(changed, keywords.front() + ":" + *name);
  } catch (const PatternError&) {
    return std::nullopt;
  }
}

std::optional<std::string> settingText(std::string_view line, std::string_view remainder) {
  const size_t indentation = leadingBlanks(line).size();
  if (line.size() < indentation + kTaskMarkLength || !fitsInLine(remainder)) return std::nullopt;
  std::string changed(line.substr(0, indentation + kTaskMarkLength));
  return endedLike(changed.append(remainder), line);
}

bool isComment(std::string_view line) {
  line = text::trimmedBlanks(withoutReturn(line));
  return line == ">" || line.starts_with("> ");
}

std::string commentText(std::string_view line) {
  line = withoutReturn(line);
  const std::string_view trimmed = text::trimmedBlanks(line);
  if (trimmed.size() < 2) return {};  // ">" alone
  // From the trimmed text's start on, so that blanks at the end stay.
  line.remove_prefix(static_cast<size_t>(trimmed.data() - line.data()));
  return std::string(line.substr(2));
}

std::string comment(std::string_view indentation, std::string_view text,
                    std::string_view neighbour) {
  return endedLike(std::string(indentation).append("> ").append(text), neighbour);
}

size_t tabLevel(std::string_view line) {
  const std::string_view blanks = leadingBlanks(line);
  const auto tabs = static_cast<size_t>(std::ranges::count(blanks, '\t'));
  return tabs + (blanks.size() - tabs) / kSpacesInTab;
}

bool fitsInLine(std::string_view text) {
  return text::isValidUTF8(text) && text::splitLines(text).size() == 1;
}

}  // namespace lk::taskline
