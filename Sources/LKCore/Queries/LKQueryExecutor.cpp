#include "LKCore/Queries/LKQueryExecutor.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Tags/TagPaths.h"
#include "LKCore/Tasks/LKTaskDue.h"

namespace lk::LKQueryExecutor {

namespace {

constexpr int kWeekDays = 7;
// Further than any date of a note, and within what a calendar can count.
constexpr int kMostDays = 4'000'000;

std::optional<Instant> startOfRuleDay(std::string_view value, int daysLater) {
  const auto day = LKDateOnly::parse(value);
  return day ? std::optional(day->adding(daysLater).localStart()) : std::nullopt;
}

Instant daysBefore(Instant now, std::string_view value) {
  return now.addingLocalDays(-std::clamp(LKQueryRule::dayCount(value), -kMostDays, kMostDays));
}

// --- Notes ---------------------------------------------------------------------------------------

bool noteFlagRule(bool flag, LKQueryRule::Operator op) {
  return (op == LKQueryRule::Operator::isTrue && flag) ||
         (op == LKQueryRule::Operator::isFalse && !flag);
}

bool noteTextRule(std::string_view text, const LKQueryRule& rule) {
  switch (rule.op) {
    case LKQueryRule::Operator::contains:
      return text::containsIgnoringCase(text, rule.value);
    case LKQueryRule::Operator::doesNotContain:
      return !text::containsIgnoringCase(text, rule.value);
    default:
      return false;
  }
}

bool noteDateRule(Instant date, const LKQueryRule& rule, Instant now) {
  switch (rule.op) {
    case LKQueryRule::Operator::withinLastDays:
      return date >= daysBefore(now, rule.value);
    case LKQueryRule::Operator::before: {
      const auto start = startOfDay(rule.value);
      return start && date < *start;
    }
    case LKQueryRule::Operator::after: {
      const auto end = startOfDayAfter(rule.value);
      return end && date >= *end;
    }
    default:
      return false;
  }
}

bool hasTagEqualTo(const LKNote& note, std::string_view value) {
  return std::ranges::any_of(note.tags,
                             [&](const LKTag* tag) { return text::equal(tag->text, value); });
}

bool hasTagUnder(const LKNote& note, std::string_view value) {
  const std::string ancestor = text::composed(value);
  return std::ranges::any_of(note.tags, [&](const LKTag* tag) {
    const std::string name = text::composed(tag->text);
    return name == ancestor || tags::isBelow(name, ancestor);
  });
}

bool tagRule(const LKNote& note, const LKQueryRule& rule) {
  switch (rule.op) {
    case LKQueryRule::Operator::is:
      return hasTagEqualTo(note, rule.value);
    case LKQueryRule::Operator::isNot:
      return !hasTagEqualTo(note, rule.value);
    case LKQueryRule::Operator::isUnder:
      return hasTagUnder(note, rule.value);
    case LKQueryRule::Operator::notUnder:
      return !hasTagUnder(note, rule.value);
    default:
      return false;
  }
}

bool sizeRule(int64_t size, const LKQueryRule& rule) {
  switch (rule.op) {
    case LKQueryRule::Operator::greaterThan:
      return size > parseSizeBytes(rule.value);
    case LKQueryRule::Operator::lessThan:
      return size < parseSizeBytes(rule.value);
    default:
      return false;
  }
}

bool matchesRule(const LKNote& note, const LKQueryRule& rule, Instant now) {
  switch (rule.field) {
    case LKQueryRule::Field::tag:
      return tagRule(note, rule);
    case LKQueryRule::Field::content:
      return noteTextRule(note.text, rule);
    case LKQueryRule::Field::title:
      return noteTextRule(note.title, rule);
    case LKQueryRule::Field::dateModified:
      return noteDateRule(note.modifiedDate, rule, now);
    case LKQueryRule::Field::dateCreated:
      return noteDateRule(note.creationDate, rule, now);
    case LKQueryRule::Field::isFavourite:
      return noteFlagRule(note.isFavourite, rule.op);
    case LKQueryRule::Field::hasTasks:
      return noteFlagRule(note.activeTaskCount + note.doneTaskCount > 0, rule.op);
    case LKQueryRule::Field::isDailyNote:
      return noteFlagRule(note.dailyDate.has_value(), rule.op);
    case LKQueryRule::Field::isTrashed:
      return noteFlagRule(note.isTrashed, rule.op);
    case LKQueryRule::Field::isArchived:
      return noteFlagRule(note.isArchived(), rule.op);
    case LKQueryRule::Field::size:
      return sizeRule(note.size, rule);
    default:
      return std::ranges::any_of(
          note.tasks, [&](const LKTask* task) { return matchesTaskRule(rule, *task, now); });
  }
}

// --- Tasks ---------------------------------------------------------------------------------------

bool priorityRule(int priority, const LKQueryRule& rule) {
  int wanted = 0;
  text::parseInteger(rule.value, wanted);
  switch (rule.op) {
    case LKQueryRule::Operator::is:
      return priority == wanted;
    case LKQueryRule::Operator::isNot:
      return priority != wanted;
    default:
      return false;
  }
}

bool projectRule(const std::optional<std::string>& project, const LKQueryRule& rule) {
  const auto is = [&] { return project && text::equalIgnoringCase(*project, rule.value); };
  const auto contains = [&] { return project && text::containsIgnoringCase(*project, rule.value); };
  switch (rule.op) {
    case LKQueryRule::Operator::is:
      return is();
    case LKQueryRule::Operator::isNot:
      return !is();
    case LKQueryRule::Operator::contains:
      return contains();
    case LKQueryRule::Operator::doesNotContain:
      return !contains();
    case LKQueryRule::Operator::isUnder:
      return projectIsUnder(project, rule.value);
    case LKQueryRule::Operator::notUnder:
      return !projectIsUnder(project, rule.value);
    case LKQueryRule::Operator::isNone:
      return !project;
    default:
      return false;
  }
}

bool contextRule(const std::vector<std::string>& contexts, const LKQueryRule& rule) {
  const auto isAmong = [&] {
    const std::string wanted = text::lowercased(rule.value);
    return std::ranges::any_of(
        contexts, [&](const std::string& context) { return text::equal(context, wanted); });
  };
  switch (rule.op) {
    case LKQueryRule::Operator::is:
      return isAmong();
    case LKQueryRule::Operator::isNot:
      return !isAmong();
    case LKQueryRule::Operator::isNone:
      return contexts.empty();
    default:
      return false;
  }
}

bool isDueInDays(Day due, Instant now, int first, int behindLast) {
  const Day today = Day::local(now);
  return today.adding(first) <= due && due < today.adding(behindLast);
}

bool isDueWithinLastDays(Day due, Instant now, std::string_view value) {
  const Instant start = due.localStart();
  return daysBefore(now, value) <= start && start <= now;
}

bool dueDateRule(const LKTask& task, const LKQueryRule& rule, Instant now) {
  if (rule.op == LKQueryRule::Operator::isNone) return !task.dateDue;
  if (!task.dateDue) return false;
  const Day due = *task.dateDue;
  const auto ruleDay = LKDateOnly::parse(rule.value);
  switch (rule.op) {
    case LKQueryRule::Operator::isOverdue:
      return !task.isComplete && LKTaskDue::isOverdue(due, now);
    case LKQueryRule::Operator::isToday:
      return isDueInDays(due, now, 0, 1);
    case LKQueryRule::Operator::isThisWeek:
      return isDueInDays(due, now, 0, kWeekDays);
    case LKQueryRule::Operator::isNextWeek:
      return isDueInDays(due, now, kWeekDays, 2 * kWeekDays);
    case LKQueryRule::Operator::beforeDaysFromToday:
      return due < Day::local(now).adding(LKQueryRule::dayCount(rule.value));
    case LKQueryRule::Operator::before:
      return ruleDay && due < *ruleDay;
    case LKQueryRule::Operator::after:
      return ruleDay && due > *ruleDay;
    case LKQueryRule::Operator::withinLastDays:
      return isDueWithinLastDays(due, now, rule.value);
    default:
      return false;
  }
}

// --- Values --------------------------------------------------------------------------------------

constexpr std::pair<std::string_view, int64_t> kSizeUnits[] = {
    {"gb", 1'073'741'824}, {"g", 1'073'741'824}, {"mb", 1'048'576}, {"m", 1'048'576},
    {"kb", 1024},          {"k", 1024},          {"b", 1}};

// Blanks around it aside; 0 for anything else.
double sizeNumber(std::string_view text) {
  double number = 0;
  text::parseNumber(text::trimmedBlanks(text), number);
  return number;
}

}  // namespace

bool matches(const LKNote& note, const LKSavedQuery& query, Instant now) {
  if (!matchesTaskGroup(query.taskGroup, note, now)) return false;
  if (query.rules.empty() && query.taskGroup && !query.taskGroup->isEmpty()) return true;
  const auto isMet = [&](const LKQueryRule& rule) { return matchesRule(note, rule, now); };
  return query.combiner == LKSavedQuery::Combiner::any ? std::ranges::any_of(query.rules, isMet)
                                                       : std::ranges::all_of(query.rules, isMet);
}

bool matchesTaskGroup(const std::optional<LKTaskRuleGroup>& group, const LKNote& note,
                      Instant now) {
  if (!group || group->isEmpty()) return true;
  return std::ranges::any_of(note.tasks, [&](const LKTask* task) {
    return std::ranges::all_of(
        group->rules, [&](const LKQueryRule& rule) { return matchesTaskRule(rule, *task, now); });
  });
}

bool matchesTaskRule(const LKQueryRule& rule, const LKTask& task, Instant now) {
  switch (rule.field) {
    case LKQueryRule::Field::taskCompletion:
      return noteFlagRule(task.isComplete, rule.op);
    case LKQueryRule::Field::taskPriority:
      return priorityRule(task.priority, rule);
    case LKQueryRule::Field::taskProject:
      return projectRule(task.project, rule);
    case LKQueryRule::Field::taskContext:
      return contextRule(task.contexts, rule);
    case LKQueryRule::Field::taskDueDate:
      return dueDateRule(task, rule, now);
    default:
      return false;
  }
}

std::vector<LKNote*> execute(const LKSavedQuery& query, const std::vector<LKNote*>& notes,
                             Instant now) {
  std::vector<LKNote*> found;
  std::ranges::copy_if(notes, std::back_inserter(found),
                       [&](const LKNote* note) { return matches(*note, query, now); });
  return found;
}

LKParts partsNeeded(const LKSavedQuery& query) {
  LKParts parts =
      query.taskGroup && !query.taskGroup->isEmpty() ? LKParts::taskLines : LKParts::none;
  for (const LKQueryRule& rule : query.rules) {
    if (rule.field == LKQueryRule::Field::content) parts = parts | LKParts::text;
    if (rule.field == LKQueryRule::Field::tag || rule.field == LKQueryRule::Field::hasTasks) {
      parts = parts | LKParts::tags;
    }
    if (isTaskScoped(rule.field)) parts = parts | LKParts::taskLines;
  }
  return parts;
}

std::optional<Instant> startOfDay(std::string_view fromRuleValue) {
  return startOfRuleDay(fromRuleValue, 0);
}

std::optional<Instant> startOfDayAfter(std::string_view fromRuleValue) {
  return startOfRuleDay(fromRuleValue, 1);
}

bool projectIsUnder(const std::optional<std::string>& project, std::string_view prefix) {
  if (!project) return false;
  const std::string name = text::caseInsensitiveKey(*project);
  const std::string ancestor = text::caseInsensitiveKey(prefix);
  return name == ancestor || tags::isBelow(name, ancestor);
}

int64_t parseSizeBytes(std::string_view value) {
  const std::string lower = text::lowercased(text::trimmed(value));
  std::string_view number = lower;
  int64_t unit = 1;
  for (const auto& [suffix, bytes] : kSizeUnits) {
    if (!number.ends_with(suffix)) continue;
    number.remove_suffix(suffix.size());
    unit = bytes;
    break;
  }
  constexpr double kMost = 9e18;  // within 64 bits
  return static_cast<int64_t>(
      std::clamp(sizeNumber(number) * static_cast<double>(unit), -kMost, kMost));
}

}  // namespace lk::LKQueryExecutor
