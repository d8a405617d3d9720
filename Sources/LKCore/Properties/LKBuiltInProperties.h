#pragma once

// The properties that every collection has. They stand in no schema file and cannot be changed.

#include <set>
#include <string_view>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/Properties/LKPropertyDefinition.h"

namespace lk::LKBuiltInProperties {

// "manuscript-role": which part of a book the note is.
const LKPropertyDefinition& manuscriptRole();
// "Project": the project that the note belongs to.
const LKPropertyDefinition& project();

// All of them, in the order of lists.
const std::vector<LKPropertyDefinition>& all();
const std::set<UUID>& allIDs();

}  // namespace lk::LKBuiltInProperties
