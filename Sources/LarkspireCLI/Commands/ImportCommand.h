#pragma once

#include <filesystem>
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
  bool vault = false;

 private:
  void importFiles(const std::filesystem::path& source, const std::filesystem::path& collection);
  void importVault(const std::filesystem::path& source, const std::filesystem::path& collection);
  void list(const std::vector<std::filesystem::path>& files) const;
};

}  // namespace lk
