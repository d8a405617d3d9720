#pragma once

#include <optional>
#include <string>
#include <string_view>

// How names of projects and the words for them are shown. A name's levels are divided by "/".
//
//     leaf("acme/site/blog") == "blog", parentPrefix of it "acme/site", depth 2
namespace lk::LKProjectDisplay {

// What stands after the last "/": the whole name at the top level.
std::string_view leaf(std::string_view name);

// What stands before the last "/"; nothing for a name of the top level.
std::optional<std::string_view> parentPrefix(std::string_view name);

// How many "/" there are.
size_t depth(std::string_view name);

// The words in use with their first letter capitalised: "Project" and "Projects".
std::string termTitle();
std::string termsTitle();

}  // namespace lk::LKProjectDisplay
