#include "LarkspireCLI/Support/Command.h"

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

}  // namespace lk
