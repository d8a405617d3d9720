#pragma once

#include <optional>
#include <string>

namespace lk {

class ArgumentList;

// How a command names its note: by title or UUID, or by `--id`, which wins when both are given.
// Either may be missing; the command says so in its own words.
struct NoteReference {
  std::optional<std::string> reference;
  std::optional<std::string> id;

  void declare(ArgumentList& arguments);
};

}  // namespace lk
