#pragma once

#include "LarkspireCLI/Support/ArgumentList.h"
#include "LarkspireCLI/Support/GlobalOptions.h"

namespace lk {

// A command that can run: its fields are what the user gave.
class Command {
 public:
  virtual ~Command() = default;

  // Names every argument, in the order of the help.
  virtual void declare(ArgumentList& arguments) = 0;

  // Prints the result on standard output (Support/Output.h). Throws CLIError for a failure in the
  // command's own words; any other error ends with status 1 and its text.
  virtual void run() = 0;

  // The options that every command takes, whichever it is.
  GlobalOptions options;
  bool helpRequested = false;
};

// Everything `command` takes, in the order of the help: its own arguments, then the global
// options, then --help. The list points into the command.
ArgumentList argumentsOf(Command& command);

}  // namespace lk
