// In every part: which interface it was made for.

#include "LKCore/Modules/ModuleInterface.h"

int larkspirePartVersion() noexcept {
  return lk::kPartVersion;
}
