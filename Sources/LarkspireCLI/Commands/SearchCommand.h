#pragma once

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
};

}  // namespace lk
