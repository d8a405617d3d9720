#include "LarkspireCLI/Support/Command.h"

#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

ArgumentList argumentsOf(Command& command) {
  ArgumentList arguments;
  command.declare(arguments);
  command.options.declare(arguments);
  Argument& help = arguments.flag(helpFlag, command.helpRequested, "Show this help.");
  help.shortName = "-h";
  help.global = true;
  return arguments;
}

void throwComesLater(std::string_view command) {
  throw CLIError::general("`lk " + std::string(command) + "` isn't part of this version of lk.");
}

}  // namespace lk
