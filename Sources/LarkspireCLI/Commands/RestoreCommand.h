#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk restore`
class RestoreCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> reference;
  std::optional<std::string> id;
};

}  // namespace lk
