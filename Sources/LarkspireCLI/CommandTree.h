#pragma once

// The one list of commands: running, help, "did you mean", completion and the tests read it.

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

struct CommandConfiguration {
  std::string_view commandName;
  std::string_view abstract;
  std::string_view discussion = {};
  std::string_view defaultSubcommand = {};  // empty: the group alone prints its help
  std::span<const CommandConfiguration> subcommands = {};
  std::unique_ptr<Command> (*make)() = nullptr;  // null for a group

  bool isGroup() const { return make == nullptr; }
  // The subcommand of exactly that name; null when there is none.
  const CommandConfiguration* subcommand(std::string_view name) const;
};

// From the root down to one command; never empty.
using CommandPath = std::vector<const CommandConfiguration*>;

// What stands for a group while its own line is read: no argument but the global options, and for
// the root those that concern the tool as a whole.
class GroupCommand : public Command {
 public:
  void declare(ArgumentList& /*arguments*/) override {}
  void run() override {}
};

class RootCommand final : public GroupCommand {
 public:
  void declare(ArgumentList& arguments) override;

  bool version = false;
  std::optional<std::string> completionShell;
};

// A fresh command for a place in the tree, leaf or group.
std::unique_ptr<Command> makeCommand(const CommandConfiguration& configuration);

// The words a user types: "lk tasks add".
std::string commandLine(const CommandPath& path);

// The shells that completion scripts are written for.
inline constexpr std::string_view completionShells[] = {"bash", "zsh", "fish"};

// The root command.
namespace LK {

inline constexpr std::string_view version = "0.1.0";

const CommandConfiguration& configuration();

}  // namespace LK

}  // namespace lk
