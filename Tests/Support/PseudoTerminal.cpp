#include "Support/PseudoTerminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>

namespace lk::test {

PseudoTerminal::PseudoTerminal(const Sandbox& sandbox, const std::string& program,
                               const std::vector<std::string>& arguments,
                               const ProcessOptions& options) {
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = sandbox.environment(options.environment);
  const std::vector<char*> argv = pointers(words);
  const std::vector<char*> envp = pointers(variables);
  const std::string folder = options.folder.empty() ? sandbox.home() : options.folder;
  winsize size{};
  size.ws_row = 50;
  size.ws_col = 200;
  process_ = forkpty(&terminal_, nullptr, nullptr, &size);
  if (process_ < 0) throw std::runtime_error("no pseudo terminal");
  if (process_ == 0) {
    if (chdir(folder.c_str()) != 0) _exit(126);
    execvpe(program.c_str(), argv.data(), envp.data());
    _exit(127);
  }
}

PseudoTerminal::~PseudoTerminal() {
  kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  close(terminal_);
}

void PseudoTerminal::type(std::string_view keys) const {
  if (write(terminal_, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
    throw std::runtime_error("the terminal takes no keys");
  }
}

std::string PseudoTerminal::readUntil(std::string_view text) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
  size_t found = unread_.find(text);
  while (found == std::string::npos) {
    if (!readMore(1000) || std::chrono::steady_clock::now() > end) {
      throw std::runtime_error("the terminal doesn't show " + std::string(text) +
                               ", but: " + unread_);
    }
    found = unread_.find(text);
  }
  std::string shown = unread_.substr(0, found + text.size());
  unread_.erase(0, shown.size());
  return shown;
}

// False when the program has closed its terminal.
bool PseudoTerminal::readMore(int milliseconds) {
  pollfd ready{terminal_, POLLIN, 0};
  if (poll(&ready, 1, milliseconds) <= 0) return true;
  std::array<char, 4096> part{};
  const ssize_t count = read(terminal_, part.data(), part.size());
  if (count <= 0) return false;
  unread_.append(part.data(), static_cast<size_t>(count));
  return true;
}

}  // namespace lk::test
