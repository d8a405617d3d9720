#pragma once

// A program that works for this process and never outlives it, with a folder of its own that goes
// with it.
//
//     OwnedProcess browser({.program = "/usr/bin/chromium", .prepare = makeProfile, ...});
//     std::string_view toSend = question;
//     while (browser.exchange(toSend, answer, deadline) == OwnedProcess::Channel::open) ...
//
// Between the two stands a watcher: a small process in a session of its own, so that Ctrl-C does not
// reach it. When the owner goes, however it ends, the watcher kills the program with all its
// descendants and removes the folder.

#include <sys/types.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

class OwnedProcess {
 public:
  using Deadline = std::chrono::steady_clock::time_point;

  struct Program {
    std::filesystem::path path;
    // What is done once the folder is there, before the start; runs in the watcher. Its exception
    // is the program's end.
    std::function<void(const std::filesystem::path& folder)> prepare;
    // Of the program, given its folder: arguments without its name, and "NAME=value".
    std::function<std::vector<std::string>(const std::filesystem::path& folder)> arguments;
    std::function<std::vector<std::string>(const std::filesystem::path& folder)> environment;
  };

  enum class Channel { open, ended, late };

  // Starts it, in a process group and, where the kernel allows, a network of its own that reaches
  // nothing. Its descriptors 3 and 4 are the channel, its output goes to the log. Throws FileError
  // when there can be no process; a program that cannot be started ends its channel.
  explicit OwnedProcess(const Program& program);
  // Returns when all of it is gone.
  ~OwnedProcess();
  OwnedProcess(const OwnedProcess&) = delete;
  OwnedProcess& operator=(const OwnedProcess&) = delete;

  // Waits until some bytes could be sent or, with nothing to send, have come. Takes what was sent
  // from `toSend` and appends what came to `received`. `late` past the deadline.
  Channel exchange(std::string_view& toSend, std::string& received, Deadline deadline);

  // The last 4 KiB that the program has written to its standard output and error.
  std::string log() const;

 private:
  std::filesystem::path folder_;
  int channel_ = -1;
  int life_ = -1;  // the watcher acts when this end is closed
  pid_t watcher_ = -1;
};

}  // namespace lk
