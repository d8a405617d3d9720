#pragma once

#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LarkspireCLI/CommandTree.h"

namespace lk {

// What a command line asks for.
struct CommandRun {
  std::unique_ptr<Command> command;  // its fields filled
};
struct HelpRequest {
  CommandPath path;
};
struct VersionRequest {};
struct CompletionRequest {
  std::string_view shell;  // one of completionShells
};
// What completion scripts and the build ask for, with the words after the first one; see
// CompletionValues.h and Manual.h. Not in the command tree, since no person types it.
struct CompletionValuesRequest {
  std::vector<std::string> words;
};
struct ManualRequest {
  std::vector<std::string> words;
};
using Request = std::variant<CommandRun, HelpRequest, VersionRequest, CompletionRequest,
                             CompletionValuesRequest, ManualRequest>;

// A command line that can't be understood; status 64. The description is the whole text for
// standard error: what is wrong, the nearest right word, the usage and where to read on.
class UsageError : public Error {
 public:
  using Error::Error;
};

namespace LK {

// Reads the words after the program's name. A group that has a default subcommand passes on to it
// what names none of its subcommands; the global options may stand before any command word.
// Throws UsageError.
//
//     Request request = LK::parseAsRoot({"tasks", "--overdue"});  // runs `lk tasks list`
Request parseAsRoot(const std::vector<std::string>& arguments);

}  // namespace LK

}  // namespace lk
