#pragma once

#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk backlinks`
class BacklinksCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string reference;
  bool context = false;
};

}  // namespace lk
