#pragma once

#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk contexts rename`
class ContextsRenameCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string oldName;
  std::string newName;
};

// `lk contexts strip`
class ContextsStripCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
};

}  // namespace lk
