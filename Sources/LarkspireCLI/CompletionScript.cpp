#include "LarkspireCLI/CompletionScript.h"

namespace lk {

std::string completionScript(std::string_view shell) {
  return std::string(shell);
}

}  // namespace lk
