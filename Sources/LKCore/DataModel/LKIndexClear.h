#pragma once

#include "LKCore/DataModel/LKContext.h"

namespace lk::LKIndexClear {

// Removes every row that can be derived from the files again, and saves; versions stay. False when
// something could not be saved, which is logged.
bool clearAll(LKContext& context);

}  // namespace lk::LKIndexClear
