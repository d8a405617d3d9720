#pragma once

// The value of a property that holds several options, as it stands in a note, in either of two
// forms:
//
//     Draft, Review                       comma: no item can hold a comma
//     [Draft, "Yes, really", 'Review']    flow
//
//     parse("[Draft, \"Yes, really\"]")   // {"Draft", "Yes, really"}
//
// Items are trimmed and never empty. What does not make sense as a quoted item is taken as it
// stands; nothing here fails. parse(serialize(items, Form::flow)) is `items` for all items that
// parse gives.

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Properties/LKPropertySchemaStore.h"

namespace lk::LKMultiSelectValue {

enum class Form { comma, flow };

// flow for a value between "[" and "]", comma for every other.
Form form(std::string_view value);

std::vector<std::string> parse(std::string_view value);

std::string serialize(const std::vector<std::string>& items, Form as);

// True when an item of the value is this one, in any case.
bool contains(std::string_view value, std::string_view item);

// The properties that hold such values, in lower case.
std::set<std::string> multiSelectPropertyNames(
    const LKPropertySchemaStore& store = LKPropertySchemaStore::shared());

}  // namespace lk::LKMultiSelectValue
