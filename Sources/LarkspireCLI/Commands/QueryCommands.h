#pragma once

#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk query list`
class QueryListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk query run`
class QueryRunCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
};

}  // namespace lk
