#pragma once

#include <optional>
#include <string>

namespace lk {

class ArgumentList;

// The options that every command carries. They may also stand before the command's name.
struct GlobalOptions {
  std::optional<std::string> collection;
  bool json = false;
  bool quiet = false;

  void declare(ArgumentList& arguments);
};

}  // namespace lk
