#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

#include "Support/Process.h"

namespace lk::test {

// A program at a terminal of its own, 200 columns wide, that a test types at.
//
//     PseudoTerminal terminal(sandbox, "bash", {"--norc", "-i"});
//     terminal.readUntil("$ ");
//     terminal.type("echo h\t\n");
class PseudoTerminal {
 public:
  PseudoTerminal(const Sandbox& sandbox, const std::string& program,
                 const std::vector<std::string>& arguments, const ProcessOptions& options = {});
  ~PseudoTerminal();  // kills what still runs
  PseudoTerminal(const PseudoTerminal&) = delete;
  PseudoTerminal& operator=(const PseudoTerminal&) = delete;

  void type(std::string_view keys) const;
  // What the terminal showed since the last call, up to the first `text` and with it. Throws
  // std::runtime_error, with all that came, when it doesn't appear within a minute.
  std::string readUntil(std::string_view text);

 private:
  bool readMore(int milliseconds);

  pid_t process_ = -1;
  int terminal_ = -1;
  std::string unread_;
};

}  // namespace lk::test
