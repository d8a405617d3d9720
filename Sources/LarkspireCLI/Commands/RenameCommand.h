#pragma once

#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk rename`
class RenameCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string reference;
  std::string newTitle;
};

}  // namespace lk
