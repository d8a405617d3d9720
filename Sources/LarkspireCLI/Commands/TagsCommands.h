#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk tags list`
class TagsListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> name;
  std::optional<std::string> prefix;

 private:
  void printNotes(const std::string& tag) const;
};

// `lk tags rename`
class TagsRenameCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string oldPath;
  std::string newPath;
  bool merge = false;
};

}  // namespace lk
