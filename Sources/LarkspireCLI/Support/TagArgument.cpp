#include "LarkspireCLI/Support/TagArgument.h"

#include "LKCore/Tags/LKTagNameRules.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk::TagArgument {

std::string_view withoutHash(std::string_view argument) {
  return argument.starts_with('#') ? argument.substr(1) : argument;
}

std::string readable(std::string_view argument) {
  std::string tag(withoutHash(argument));
  if (LKTagNameRules::problem(tag)) {
    throw CLIError::general(
        "\"" + tag + "\": Larkspire tags can only contain letters, numbers, hyphens and slashes.");
  }
  return tag;
}

}  // namespace lk::TagArgument
