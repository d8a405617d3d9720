#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk list`
class ListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::vector<std::string> tags;
  bool includeSubtags = false;
  std::vector<std::string> properties;
  std::optional<std::string> modifiedAfter;
  std::optional<std::string> modifiedBefore;
  bool favourites = false;
  bool hasTasks = false;
  bool hasOverdue = false;
  bool includeTrashed = false;
  bool includeArchived = false;
  bool archived = false;
  bool includeDaily = false;
  std::string sort = "modified";
  bool reverse = false;
  std::optional<int> limit;
};

}  // namespace lk
