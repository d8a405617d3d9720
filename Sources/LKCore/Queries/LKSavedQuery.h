#pragma once

// A named, stored filter over notes and their tasks, one JSON file each:
//
//     {
//       "combiner" : "all",
//       "createdDate" : "2026-03-14T09:26:53Z",
//       "id" : "8D116ECE-1738-47D9-BD9C-172411E20B8F",
//       "name" : "Waiting seeds",
//       "rules" : [ { "field" : "tag", "op" : "isUnder", "value" : "garden" } ],
//       "taskGroup" : {
//         "rules" : [ { "field" : "taskCompletion", "op" : "isFalse", "value" : "" } ]
//       }
//     }
//
// `isBuiltIn`, `symbolName`, `tintColorName` and `taskGroup` may be missing. Members that nobody
// here knows stay with the query, its group and its rules, and are written again.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Queries/LKQueryRule.h"

namespace lk {

// Rules that one and the same task has to meet.
struct LKTaskRuleGroup {
  std::vector<LKQueryRule> rules;
  Json otherMembers = Json::object();

  bool isEmpty() const { return rules.empty(); }
  bool operator==(const LKTaskRuleGroup&) const = default;
};

struct LKSavedQuery {
  enum class Combiner { all, any };

  UUID id;
  std::string name;
  Combiner combiner = Combiner::all;
  std::vector<LKQueryRule> rules;
  Instant createdDate;  // whole seconds
  std::optional<std::string> symbolName;
  std::optional<std::string> tintColorName;
  bool isBuiltIn = false;
  std::optional<LKTaskRuleGroup> taskGroup;
  Json otherMembers = Json::object();

  bool operator==(const LKSavedQuery&) const = default;

  // Whether some rule asks for trashed, or for archived, notes.
  bool targetsTrashedNotes() const;
  bool targetsArchivedNotes() const;
};

// "all" or "any".
std::string_view combinerText(LKSavedQuery::Combiner combiner);

// The query of a file's bytes. Throws JsonError for anything that is not one, also for a rule with
// an unknown field or operator: a filter that is half understood would show the wrong notes.
LKSavedQuery decodeQuery(std::string_view bytes);

// The file's bytes. What decodeQuery gave, it gives again for them.
std::string encodeQuery(const LKSavedQuery& query);

}  // namespace lk
