#pragma once

#include <optional>
#include <string>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk create`
class CreateCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string title;
  std::optional<std::string> content;
  std::optional<std::string> from;
  std::vector<std::string> properties;
  std::vector<std::string> tags;
  std::optional<std::string> templateName;
  std::vector<std::string> variables;
  bool open = false;
  bool favourite = false;
};

}  // namespace lk
