#pragma once

#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk projects rename`
class ProjectsRenameCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string oldName;
  std::string newName;
  bool includeSubtree = false;
};

// `lk projects strip`
class ProjectsStripCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
};

}  // namespace lk
