#pragma once

#include <string>

#include "LarkspireCLI/CommandTree.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

// The help of one command or group, ready to print; no line is wider than the terminal.
std::string helpText(const CommandPath& path, const Terminal& terminal);

// The one line that shows how the command is called: "lk rename <reference> <new-title> [options]".
std::string usageLine(const CommandPath& path);

// The help text of an argument, with the default where the text leaves it out.
std::string helpWithDefault(const Argument& argument);

}  // namespace lk
