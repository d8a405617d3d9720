#pragma once

// Another program's whole run: text in, text out, within a time.
//
//     const auto run = runChild({.program = "/usr/bin/sort", .input = lines}, deadline);
//     if (run.end == ChildEnd::exited && run.status == 0) use(run.out);
//
// No shell. The program stands in a process group of its own that is killed when it is late, when
// the call ends in an error, and by the kernel when this process dies. It has this process's
// environment, and no network where the kernel lets an ordinary user take that away.

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

namespace lk {

struct ChildCommand {
  std::filesystem::path program;
  std::vector<std::string> arguments = {};  // without the program's own name
  std::string input = {};                   // all of its standard input
};

enum class ChildEnd { exited, signalled, late };

struct ChildRun {
  ChildEnd end = ChildEnd::exited;
  int status = 0;   // the exit status or the signal
  std::string out;  // all of it
  std::string err;  // the last kChildErrors bytes
};

inline constexpr size_t kChildErrors = 16384;

// Waits for the end of the program and of its output, until `deadline` at most. A program that cannot
// be started ends with status 127. Throws FileError when the system gives no process or channel.
ChildRun runChild(const ChildCommand& command, std::chrono::steady_clock::time_point deadline);

}  // namespace lk
