#pragma once

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk collections`
class CollectionsCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

}  // namespace lk
