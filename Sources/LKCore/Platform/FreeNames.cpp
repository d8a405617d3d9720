#include "LKCore/Platform/FreeNames.h"

#include <utility>

#include "LKCore/Platform/Files.h"

namespace lk {

FreeNames::FreeNames(std::filesystem::path folder) : folder_(std::move(folder)) {}

std::string FreeNames::next(const std::string& stem, const std::string& extension) {
  int& number = lastNumbers_[stem + extension];
  std::string name;
  do {
    ++number;
    name = (number == 1 ? stem : stem + " " + std::to_string(number)) + extension;
  } while (nameIsTaken(folder_ / name));
  return name;
}

}  // namespace lk
