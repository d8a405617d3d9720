#pragma once

// What kind of value a property holds.

#include <array>
#include <optional>
#include <string_view>

namespace lk {

enum class LKPropertyType {
  text,
  number,
  date,
  dateTime,
  checkbox,
  singleSelect,
  multiSelect,
  url,
  email,
  phone,
  rating,
  derived,
  project,
};

// All of them, in the order in which they are shown.
inline constexpr std::array kPropertyTypes = {
    LKPropertyType::text,        LKPropertyType::number,   LKPropertyType::date,
    LKPropertyType::dateTime,    LKPropertyType::checkbox, LKPropertyType::singleSelect,
    LKPropertyType::multiSelect, LKPropertyType::url,      LKPropertyType::email,
    LKPropertyType::phone,       LKPropertyType::rating,   LKPropertyType::derived,
    LKPropertyType::project,
};

// The name in files and on the command line, e.g. "singleSelect".
std::string_view rawValue(LKPropertyType type);

// The type of that name, in exactly this spelling.
std::optional<LKPropertyType> propertyTypeNamed(std::string_view name);

// The name for people, e.g. "Single Select".
std::string_view displayName(LKPropertyType type);

}  // namespace lk
