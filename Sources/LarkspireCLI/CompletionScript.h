#pragma once

#include <string>
#include <string_view>

namespace lk {

// The completion script of "bash", "zsh" or "fish", made from the tree of commands: commands,
// subcommands, options with their texts where the shell shows them, files and folders where an
// option takes one, the fixed words where it takes one of those.
std::string completionScript(std::string_view shell);

}  // namespace lk
