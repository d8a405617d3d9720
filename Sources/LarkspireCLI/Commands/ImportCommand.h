#pragma once

#include <string>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk import`
class ImportCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string directory;
  std::vector<std::string> tags;
  bool recursive = false;
  bool dryRun = false;
};

}  // namespace lk
