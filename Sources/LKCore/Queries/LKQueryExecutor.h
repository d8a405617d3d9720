#pragma once

// What a saved query's rules mean.
//
//     const auto found = LKQueryExecutor::execute(query, cache.fetchNotes());
//
// Days and hours are those of the current time zone; a task that is due on a day is due at its
// start. Texts of people (contents, titles, projects) match in any case, tags only in their own.
// `now` is the moment that "today" and "within the last days" count from. A combination of field
// and operator that has no meaning is never met.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/DataModel/Entities.h"
#include "LKCore/Queries/LKSavedQuery.h"

namespace lk::LKQueryExecutor {

// The note has to meet the task group, if there is one, and then the rules: each of them, or with
// `any` at least one. Without rules every note does under `all` and none under `any`, unless a
// task group with rules has decided already.
bool matches(const LKNote& note, const LKSavedQuery& query, Instant now = Instant::now());

// True when one task of the note meets all rules of the group; also without a group or rules.
bool matchesTaskGroup(const std::optional<LKTaskRuleGroup>& group, const LKNote& note,
                      Instant now = Instant::now());

// Only a rule about tasks is ever met.
bool matchesTaskRule(const LKQueryRule& rule, const LKTask& task, Instant now = Instant::now());

// The notes that match, in their order. Whether trashed ones are among `notes` is the caller's
// choice, by `targetsTrashedNotes`.
std::vector<LKNote*> execute(const LKSavedQuery& query, const std::vector<LKNote*>& notes,
                             Instant now = Instant::now());

// The parts of notes that the query's rules look at; none for one about names, dates and flags.
LKParts partsNeeded(const LKSavedQuery& query);

// The start of a day written "yyyy-MM-dd", or of the day after it. Anything else gives nothing.
std::optional<Instant> startOfDay(std::string_view fromRuleValue);
std::optional<Instant> startOfDayAfter(std::string_view fromRuleValue);

// True when the project is the prefix or lies below it ("acme/site" is under "acme"), in any case.
bool projectIsUnder(const std::optional<std::string>& project, std::string_view prefix);

// "1.5kb" is 1536. Units: gb, g, mb, m, kb, k (of 1024) and b, in any case; none is bytes.
// Fractions of a byte are dropped; 0 for anything else.
int64_t parseSizeBytes(std::string_view value);

}  // namespace lk::LKQueryExecutor
