#pragma once

#include "LKCore/Base/Error.h"

namespace lk {

// A template that cannot be applied: a value is missing, or it makes too much text.
class LKTemplateError : public Error {
 public:
  using Error::Error;
};

}  // namespace lk
