#pragma once

// How a user names a collection: by its id, its name, the beginning of its name, or its folder.

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk {

// What the lookup needs to know of a registered collection.
struct CollectionName {
  UUID id;
  std::string name;
  std::filesystem::path path;
};

// The index of the row that is meant, the first rule that fits:
//   1. a reference that reads as a UUID means the row with that id, or none;
//   2. the first row of that name, in any case;
//   3. the only row whose name begins so, in any case;
//   4. the row with that folder, symbolic links resolved.
// The empty reference means no row, so that an unset variable in a script selects nothing.
std::optional<size_t> findCollection(const std::vector<CollectionName>& rows,
                                     const std::string& reference);

}  // namespace lk
