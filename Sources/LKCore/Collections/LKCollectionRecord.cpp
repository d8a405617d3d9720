#include "LKCore/Collections/LKCollectionRecord.h"

namespace lk {

std::string_view modeText(LKCollectionMode mode) {
  switch (mode) {
    case LKCollectionMode::larkspire:
      return "larkspire";
    case LKCollectionMode::compatible:
      return "compatible";
    case LKCollectionMode::readOnly:
      return "readOnly";
  }
  return "";
}

std::optional<LKCollectionMode> parseMode(std::string_view text) {
  for (const auto mode :
       {LKCollectionMode::larkspire, LKCollectionMode::compatible, LKCollectionMode::readOnly}) {
    if (text == modeText(mode)) return mode;
  }
  return std::nullopt;
}

}  // namespace lk
