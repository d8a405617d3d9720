#pragma once

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk notifications`
class NotificationsCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

}  // namespace lk
