#pragma once

// Parts of Larkspire that stand in files of their own beside the tool and are opened when a book
// first needs them: their libraries would cost every other command its start.
//
// Each part has a header here whose functions open it. Between a part and the library pass plain C
// structures alone, no exceptions and no C++ types.

#include <string>

#include "LKCore/Base/Error.h"

namespace lk {

// A part is not there or cannot be opened; says which one and what to install.
class ModuleError : public Error {
  using Error::Error;
};

}  // namespace lk
