#pragma once

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk templates`
class TemplatesCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

}  // namespace lk
