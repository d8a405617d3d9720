#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Tags/LKTagIconStore.h"

namespace lk::LKTagLookup {

// The row of a tag, in whichever Unicode form it was stored; the last one when there are several,
// null when there is none. The notes of its relation come with the parts asked for. Throws
// LKStoreError.
LKTag* existingTag(std::string_view text, LKContext& context, LKParts parts = LKParts::all);

// A row to insert for a tag that has none yet.
LKTag newTag(std::string_view text, const std::optional<LKTagIcon>& icon, const UUID& id,
             Instant created);

}  // namespace lk::LKTagLookup
