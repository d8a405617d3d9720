#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk search`
class SearchCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string query;
  int context = 0;
  bool titlesOnly = false;
  bool regex = false;
  std::optional<std::string> tag;
  bool includeSubtags = false;
  std::optional<int> limit;

 private:
  void searchTitles() const;
  void searchText(const std::filesystem::path& collection) const;
};

}  // namespace lk
