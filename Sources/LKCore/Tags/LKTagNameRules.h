#pragma once

#include <optional>
#include <string>
#include <string_view>

// Judges a tag's name that a person typed, without its "#".
namespace lk::LKTagNameRules {

// What is wrong with the name, as a sentence, or nothing when it may stand.
std::optional<std::string> problem(std::string_view name);

}  // namespace lk::LKTagNameRules
