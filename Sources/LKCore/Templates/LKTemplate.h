#pragma once

// A template for notes: one JSON file in the `.templates` folder of a collection, named by its id.
//
//     {
//       "bodyTemplate" : "# A new plant\n\nIn the {{bed}} bed since {{date}}.\n\n{{cursor}}\n",
//       "createdDate" : "2026-02-01T10:00:00Z",
//       "id" : "4CDD2055-930D-4EAF-94F4-733F3E7D1BFB",
//       "modifiedDate" : "2026-02-01T10:00:00Z",
//       "name" : "Plant",
//       "parameters" : [
//         {
//           "autoTagNote" : false,
//           "defaultValue" : "North",
//           "id" : "57EE05CD-E009-42C7-BEBF-F20686734721",
//           "label" : "Bed",
//           "name" : "bed",
//           "options" : ["North", "South"],
//           "required" : true,
//           "type" : "singleSelect"
//         }
//       ],
//       "propertyDefaults" : { "status" : "Growing" },
//       "tags" : ["garden/plants"],
//       "titleTemplate" : "Plant {{date}}"
//     }
//
// `description`, `icon` and `category` may be missing. So may all but `id`, `name`, `titleTemplate`
// and `bodyTemplate`, and of a parameter all but `name`, because people write such files by hand;
// what is there must be of its type.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/Properties/LKPropertyType.h"

namespace lk {

// A value that is asked for when the template is applied, and stands for `{{name}}` in it.
struct LKTemplateParameter {
  UUID id;
  std::string name;
  std::string label;  // the name for people; the name itself when the file has none
  LKPropertyType type = LKPropertyType::text;
  std::vector<std::string> options;  // the values to choose from; empty when any will do
  std::string defaultValue;
  bool required = false;
  bool autoTagNote = false;

  bool operator==(const LKTemplateParameter&) const = default;
};

struct LKTemplate {
  UUID id;
  std::string name;
  std::optional<std::string> description;
  std::optional<std::string> icon;
  std::optional<std::string> category;
  Instant createdDate;  // whole seconds in the file
  Instant modifiedDate;
  std::vector<LKTemplateParameter> parameters;
  std::map<std::string, std::string> propertyDefaults;
  std::vector<std::string> tags;
  std::string titleTemplate;
  std::string bodyTemplate;

  bool operator==(const LKTemplate&) const = default;
};

// Throws JsonError, which names the member, for what is no template.
LKTemplate decodeTemplate(const Json& document);

// The members of the file; those that are not set are missing.
Json encodeTemplate(const LKTemplate& source);

}  // namespace lk
