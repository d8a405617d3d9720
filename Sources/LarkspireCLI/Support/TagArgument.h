#pragma once

#include <string>
#include <string_view>

// A tag given as an argument, with or without its "#".
namespace lk::TagArgument {

// The argument without one leading "#", for looking tags up.
std::string_view withoutHash(std::string_view argument);

// The tag without one leading "#". Throws CLIError (general) for a name that no note could carry.
std::string readable(std::string_view argument);

}  // namespace lk::TagArgument
