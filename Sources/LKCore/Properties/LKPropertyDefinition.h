#pragma once

// What a collection knows of one property of its notes: its type and what values it takes. As a
// row of a schema file:
//
//     {
//       "createdDate" : "2026-02-01T10:00:00Z",
//       "id" : "9BE4BCFC-49B6-4A08-B2E6-CC3ABABCED20",
//       "isRequired" : false,
//       "name" : "status",
//       "options" : [
//         "Growing",
//         "Resting"
//       ],
//       "type" : "singleSelect"
//     }
//
// with "expression", "minValue", "maxValue" and "maxLength" where they are set.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Properties/LKPropertyType.h"

namespace lk {

struct LKPropertyDefinition {  // NOLINT(bugprone-exception-escape): moving JSON does not throw
  UUID id;
  std::string name;  // one name in any case
  LKPropertyType type = LKPropertyType::text;
  std::vector<std::string> options;  // of a select type
  Instant createdDate;               // whole seconds
  std::optional<Json> expression;    // how a derived value is computed, as it stands in the file
  bool isRequired = false;
  std::optional<double> minValue;
  std::optional<double> maxValue;
  std::optional<int64_t> maxLength;  // user-perceived characters

  bool operator==(const LKPropertyDefinition&) const = default;
};

// The row as a definition. Only id, name and type have to be there. Throws JsonError.
LKPropertyDefinition decodeDefinition(const Json& row);

// Sets the members of an object that this version knows; others stay.
void writeDefinition(const LKPropertyDefinition& definition, Json& row);

// The first definition of that name, in any case; null when there is none.
const LKPropertyDefinition* findDefinition(std::string_view name,
                                           const std::vector<LKPropertyDefinition>& schema);

}  // namespace lk
