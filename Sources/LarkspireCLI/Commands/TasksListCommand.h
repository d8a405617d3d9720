#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk tasks list`
class TasksListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  bool overdue = false;
  bool dueToday = false;
  bool dueTomorrow = false;
  bool dueThisWeek = false;
  std::optional<int> days;
  std::optional<std::string> priority;
  std::optional<std::string> note;
  std::optional<std::string> status;
  std::optional<std::string> project;
  std::optional<std::string> context;
  bool noProject = false;
  bool noContext = false;
  bool all = false;
};

}  // namespace lk
