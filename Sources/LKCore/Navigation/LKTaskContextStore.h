#pragma once

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Navigation/LKIndexFacts.h"

// The contexts of tasks ("context:phone,errand"). They have no registry: a context is known as
// long as a task carries it.
namespace lk::LKTaskContextStore {

// The one form in which a context is stored and compared: trimmed, blanks as "_", lower case.
//
//     normalised(" Deep Work ") == "deep_work"
std::string normalised(std::string_view name);

// Every normalised context of any task, once, in the order of lists for people.
std::vector<std::string> allKnownContexts(const LKIndexFacts& facts);

// The number of active tasks that carry each normalised context; none is 0.
std::map<std::string, size_t> counts(const LKIndexFacts& facts);

// The candidates that a person who typed `name` may have meant: those within `maxDistance` edits
// of it, in their order, without the name itself. None for a name below three characters.
std::vector<std::string> nearMatches(std::string_view name, std::span<const std::string> candidates,
                                     size_t maxDistance);

}  // namespace lk::LKTaskContextStore
