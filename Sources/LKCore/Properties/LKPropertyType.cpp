#include "LKCore/Properties/LKPropertyType.h"

namespace lk {
namespace {

struct PropertyTypeNames {
  std::string_view raw;
  std::string_view display;
};

PropertyTypeNames propertyTypeNames(LKPropertyType type) {
  switch (type) {
    case LKPropertyType::text:
      return {"text", "Text"};
    case LKPropertyType::number:
      return {"number", "Number"};
    case LKPropertyType::date:
      return {"date", "Date"};
    case LKPropertyType::dateTime:
      return {"dateTime", "Date & Time"};
    case LKPropertyType::checkbox:
      return {"checkbox", "Checkbox"};
    case LKPropertyType::singleSelect:
      return {"singleSelect", "Single Select"};
    case LKPropertyType::multiSelect:
      return {"multiSelect", "Multi Select"};
    case LKPropertyType::url:
      return {"url", "URL"};
    case LKPropertyType::email:
      return {"email", "Email"};
    case LKPropertyType::phone:
      return {"phone", "Phone"};
    case LKPropertyType::rating:
      return {"rating", "Rating"};
    case LKPropertyType::derived:
      return {"derived", "Derived"};
    case LKPropertyType::project:
      return {"project", "Project"};
  }
  return {};
}

}  // namespace

std::string_view rawValue(LKPropertyType type) {
  return propertyTypeNames(type).raw;
}

std::optional<LKPropertyType> propertyTypeNamed(std::string_view name) {
  for (const LKPropertyType type : kPropertyTypes) {
    if (rawValue(type) == name) return type;
  }
  return std::nullopt;
}

std::string_view displayName(LKPropertyType type) {
  return propertyTypeNames(type).display;
}

}  // namespace lk
