#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"
#include "LarkspireCLI/Support/TaskSelector.h"

namespace lk {

class CacheReader;

// What the commands take that act on one task of a note.
struct TaskChoice {
  std::optional<std::string> text;
  std::optional<std::string> note;
  std::optional<std::string> id;

  void declare(ArgumentList& arguments);

  // Puts what `transform` makes of the task's line in its place and reports "DEED Groceries".
  // `collection` is resolved; `cache` reads tasks. Throws CLIError.
  void change(const std::filesystem::path& collection, const GlobalOptions& options,
              CacheReader& cache, const std::string& deed, const LineTransform& transform) const;
};

// `lk tasks complete`
class TasksCompleteCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override { task.declare(arguments); }
  void run() override;

  TaskChoice task;
};

// `lk tasks cancel`
class TasksCancelCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override { task.declare(arguments); }
  void run() override;

  TaskChoice task;
};

// `lk tasks progress`
class TasksProgressCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override { task.declare(arguments); }
  void run() override;

  TaskChoice task;
};

// `lk tasks reset`
class TasksResetCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override { task.declare(arguments); }
  void run() override;

  TaskChoice task;
};

// `lk tasks remove`
class TasksRemoveCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override { task.declare(arguments); }
  void run() override;

  TaskChoice task;
};

}  // namespace lk
