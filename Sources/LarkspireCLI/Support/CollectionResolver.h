#pragma once

#include <optional>
#include <string>

#include "LKCore/Collections/LKCollectionRecord.h"

namespace lk::CollectionResolver {

// The record of the tool's own registry that the reference names, see CollectionReference.h.
std::optional<LKCollectionRecord> resolve(const std::string& reference);

}  // namespace lk::CollectionResolver
