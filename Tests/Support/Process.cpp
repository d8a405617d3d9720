#include "Support/Process.h"

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <stdexcept>

namespace lk::test {

namespace fs = std::filesystem;

namespace {

// A nameless file in memory: no pipe that could fill up while nobody reads.
class MemoryFile {
 public:
  MemoryFile() : fd_(memfd_create("larkspire-test", MFD_CLOEXEC)) {
    if (fd_ < 0) throw std::runtime_error("memfd_create failed");
  }
  ~MemoryFile() { close(fd_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  int fd() const { return fd_; }

  void fill(const std::string& bytes) const {
    if (pwrite(fd_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("writing the input failed");
    }
  }

  std::string content() const {
    std::string bytes;
    std::array<char, 65536> part{};
    while (true) {
      const ssize_t count = pread(fd_, part.data(), part.size(), static_cast<off_t>(bytes.size()));
      if (count <= 0) return bytes;
      bytes.append(part.data(), static_cast<size_t>(count));
    }
  }

 private:
  int fd_;
};

}  // namespace

std::vector<char*> pointers(std::vector<std::string>& texts) {
  std::vector<char*> result;
  for (std::string& text : texts) result.push_back(text.data());
  result.push_back(nullptr);
  return result;
}

Sandbox::Sandbox() {
  fs::create_directory(folder_ / "tmp");
}

std::vector<std::string> Sandbox::environment(
    const std::map<std::string, std::string>& added) const {
  std::map<std::string, std::string> variables = {
      {"HOME", home().string()},
      {"XDG_DATA_HOME", (home() / "data").string()},
      {"XDG_CONFIG_HOME", (home() / "config").string()},
      {"XDG_CACHE_HOME", (home() / "cache").string()},
      {"TMPDIR", (home() / "tmp").string()},
      {"TZ", "UTC"},
      {"LC_ALL", "C.UTF-8"},
  };
  for (const char* kept : {"PATH", "ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* value = std::getenv(kept)) variables[kept] = value;
  }
  for (const auto& [name, value] : added) variables[name] = value;
  std::vector<std::string> result;
  for (const auto& [name, value] : variables) {
    std::string entry = name;
    result.push_back(entry.append("=").append(value));
  }
  return result;
}

ProcessResult Sandbox::run(const std::string& program, const std::vector<std::string>& arguments,
                           const ProcessOptions& options) const {
  const MemoryFile input;
  const MemoryFile out;
  const MemoryFile err;
  input.fill(options.input);
  std::vector<std::string> words = {program};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<std::string> variables = environment(options.environment);
  const std::vector<char*> argv = pointers(words);
  const std::vector<char*> envp = pointers(variables);
  const fs::path folder = options.folder.empty() ? home() : options.folder;

  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork failed");
  if (child == 0) {
    if (chdir(folder.c_str()) != 0 || dup2(input.fd(), 0) < 0 || dup2(out.fd(), 1) < 0 ||
        dup2(err.fd(), 2) < 0) {
      _exit(126);
    }
    alarm(60);
    execvpe(program.c_str(), argv.data(), envp.data());
    _exit(127);
  }
  int state = 0;
  if (waitpid(child, &state, 0) != child) throw std::runtime_error("waitpid failed");
  const int status = WIFEXITED(state) ? WEXITSTATUS(state) : 128 + WTERMSIG(state);
  return {out.content(), err.content(), status};
}

ProcessResult Sandbox::lk(const std::vector<std::string>& arguments,
                          const ProcessOptions& options) const {
  return run(LK_TOOL_PATH, arguments, options);
}

ProcessResult Sandbox::lkAsOrdinaryUser(std::vector<std::string> arguments) const {
  if (geteuid() != 0) return lk(arguments);
  // The tool itself may lie where that user cannot look, such as below /root.
  const fs::path tool = home() / ".lk";
  if (!fs::exists(tool)) {
    std::error_code failure;
    fs::create_hard_link(LK_TOOL_PATH, tool, failure);
    if (failure) fs::copy_file(LK_TOOL_PATH, tool);
  }
  arguments.insert(arguments.begin(),
                   {"--reuid=65534", "--regid=65534", "--clear-groups", tool.string()});
  return run("setpriv", arguments);
}

}  // namespace lk::test
