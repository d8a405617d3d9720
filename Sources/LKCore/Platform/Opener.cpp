#include "LKCore/Platform/Opener.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <system_error>

#include "LKCore/Base/Error.h"
#include "LKCore/Platform/Descriptor.h"

namespace lk {

namespace {

constexpr const char* kOpener = "xdg-open";

struct DestroyActions {
  void operator()(posix_spawn_file_actions_t* actions) const {
    posix_spawn_file_actions_destroy(actions);
  }
};

// Starts the opener with silent input and output; its complaints still reach the user. Gives the
// errno of a failure.
int start(const std::string& url, pid_t& child) {
  posix_spawn_file_actions_t actions;
  if (const int code = posix_spawn_file_actions_init(&actions)) return code;
  const std::unique_ptr<posix_spawn_file_actions_t, DestroyActions> owner(&actions);
  for (const auto& [descriptor, flags] :
       {std::pair{STDIN_FILENO, O_RDONLY}, std::pair{STDOUT_FILENO, O_WRONLY}}) {
    const int code = posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", flags, 0);
    if (code != 0) return code;
  }
  std::string program = kOpener;
  std::string argument = url;
  const std::array<char*, 3> arguments = {program.data(), argument.data(), nullptr};
  return posix_spawnp(&child, kOpener, &actions, nullptr, arguments.data(), environ);
}

}  // namespace

void openURL(const std::string& url) {
  pid_t child = 0;
  if (const int code = start(url, child)) {
    if (code == ENOENT) {
      throw Error("Couldn't open " + url + ": the program " + kOpener +
                  " is missing. Install the package xdg-utils.");
    }
    throw Error("Couldn't open " + url + ": " + kOpener +
                " could not be started: " + std::generic_category().message(code) + ".");
  }
  int status = 0;
  if (uninterrupted([&] { return waitpid(child, &status, 0); }) < 0) {
    throw Error("Couldn't open " + url + ": " + std::generic_category().message(errno) + ".");
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    throw Error("Couldn't open " + url + ": " + kOpener +
                " failed. Check that the package xdg-utils is installed and that an application is "
                "set for links of this kind.");
  }
}

}  // namespace lk
