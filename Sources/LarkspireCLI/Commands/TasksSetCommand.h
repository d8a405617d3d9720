#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LarkspireCLI/Commands/TasksTransitionCommands.h"
#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk tasks set`
class TasksSetCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  TaskChoice task;
  std::optional<std::string> due;
  bool clearDue = false;
  std::optional<std::string> priority;
  bool clearPriority = false;
  std::optional<std::string> project;
  bool clearProject = false;
  std::vector<std::string> contexts;
  bool clearContext = false;
};

}  // namespace lk
