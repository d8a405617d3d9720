#pragma once

#include "LKCore/Bind/LKBindSpec.h"

namespace lk {

class BindCommand;

// The bind spec that the options of `lk bind` ask for: that of --spec-file, to which no other option
// applies, or else the preset of --style with what the others change. Values are read in any case.
// Throws CLIError, general: for a value that an option does not know, and for a file that cannot be
// read or is no spec, with the place in it.
LKBindSpec buildSpec(const BindCommand& command);

}  // namespace lk
