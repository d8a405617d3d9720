#pragma once

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk tasks projects`
class TasksProjectsCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk tasks contexts`
class TasksContextsCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

}  // namespace lk
