#pragma once

#include <string>
#include <string_view>

namespace lk {

// The completion script of "bash", "zsh" or "fish", made from the tree of commands: commands,
// subcommands, options with their texts where the shell shows them, files and folders where an
// option takes one, the fixed words where it takes one of those. For titles, tags and other names the
// scripts ask the tool while the line is typed (CompletionValues.h).
std::string completionScript(std::string_view shell);

}  // namespace lk
