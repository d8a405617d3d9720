#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk tasks add`
class TasksAddCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string text;
  std::optional<std::string> note;
  std::optional<std::string> due;
  std::optional<std::string> priority;
  std::optional<std::string> project;
  std::vector<std::string> contexts;
  std::optional<std::string> status;
};

}  // namespace lk
