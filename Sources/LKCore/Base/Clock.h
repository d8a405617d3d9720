#pragma once

#include <functional>

#include "LKCore/Base/Time.h"

namespace lk {

// Where a part of the system takes the time from: `Instant::now`, or a test's own.
using Clock = std::function<Instant()>;

}  // namespace lk
