#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk edit`
class EditCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string reference;
  std::optional<std::string> content;
  std::optional<std::string> append;
  std::optional<std::string> prependAfterHeading;
  std::vector<std::string> setProperties;
  std::vector<std::string> removeProperties;
  bool favourite = false;
  bool unfavourite = false;
  bool archive = false;
  bool unarchive = false;
  bool force = false;
};

}  // namespace lk
