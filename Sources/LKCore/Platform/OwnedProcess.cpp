#include "LKCore/Platform/OwnedProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <thread>

#include "LKCore/Base/UUID.h"
#include "LKCore/Platform/Descriptor.h"
#include "LKCore/Platform/Directories.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/ProcessStart.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr int kChannel = 3;  // in the watcher and the program
constexpr int kLife = 4;     // in the watcher
constexpr const char* kLogName = "log";
constexpr size_t kLogEnd = 4096;

std::vector<char*> execList(std::vector<std::string>& texts) {
  std::vector<char*> list;
  for (std::string& text : texts) list.push_back(text.data());
  list.push_back(nullptr);
  return list;
}

void setSignals(void (*handler)(int)) {
  for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGPIPE}) std::signal(signal, handler);
}

[[noreturn]] void becomeProgram(const OwnedProcess::Program& program, const fs::path& folder,
                                pid_t watcher) noexcept {
  setpgid(0, 0);
  leaveNetwork();
  // After the namespaces, whose change of rights would forget it.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != watcher) _exit(1);
  setSignals(SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  const fs::path log = folder / kLogName;
  const Descriptor output(open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  dup2(output.get(), STDOUT_FILENO);
  dup2(output.get(), STDERR_FILENO);
  dup2(kChannel, kChannel + 1);
  std::vector<std::string> arguments = program.arguments(folder);
  arguments.insert(arguments.begin(), program.path.string());
  std::vector<std::string> environment = program.environment(folder);
  execve(program.path.c_str(), execList(arguments).data(), execList(environment).data());
  const std::string cause = FileError(program.path, errno).description();
  (void)!write(STDERR_FILENO, cause.data(), cause.size());
  _exit(127);
}

// The parent of a process; 0 when it is gone.
pid_t parentOf(const std::string& process) {
  std::string stat;
  try {
    stat = readFile("/proc/" + process + "/stat");
  } catch (const FileError&) {
    return 0;
  }
  // "PID (name) S PARENT ...", where the name may hold anything.
  const size_t name = stat.rfind(") ");
  if (name == std::string::npos || name + 4 >= stat.size()) return 0;
  return static_cast<pid_t>(std::atol(stat.c_str() + name + 4));
}

void killChildren() {
  const pid_t self = getpid();
  std::error_code failure;
  for (fs::directory_iterator entry("/proc", failure), end; entry != end;
       entry.increment(failure)) {
    const std::string name = entry->path().filename().string();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    if (parentOf(name) == self) kill(static_cast<pid_t>(std::atol(name.c_str())), SIGKILL);
  }
}

// Descendants that lose their parent become children of the watcher, so that killing its children
// until there are none ends those too that have left the group.
void endDescendants(pid_t program) {
  kill(-program, SIGKILL);
  kill(program, SIGKILL);
  for (int round = 0; round < 1000; ++round) {
    while (waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    if (waitpid(-1, nullptr, WNOHANG) < 0 && errno == ECHILD) return;
    killChildren();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
}

// Nothing of the owner's stays open, above all no output that somebody waits for the end of.
void keepOnly(int channel, int life) {
  const int first = fcntl(channel, F_DUPFD, kLife + 1);
  const int second = fcntl(life, F_DUPFD, kLife + 1);
  dup2(first, kChannel);
  dup2(second, kLife);
  close_range(kLife + 1, ~0U, 0);
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing, stream);
  if (nothing > kLife) close(nothing);
}

pid_t startProgram(const OwnedProcess::Program& program, const fs::path& folder) {
  if (mkdir(folder.c_str(), 0700) != 0) throw FileError(folder, errno);
  program.prepare(folder);
  const pid_t watcher = getpid();
  const pid_t child = fork();
  if (child < 0) throw FileError(program.path, errno);
  if (child == 0) becomeProgram(program, folder, watcher);
  return child;
}

// Its own exceptions have no way to go: the frames above are the owner's.
void watch(const OwnedProcess::Program& program, const fs::path& folder) noexcept {
  setsid();
  (void)!chdir("/");
  setSignals(SIG_IGN);
  prctl(PR_SET_CHILD_SUBREAPER, 1);
  pid_t child = -1;
  try {
    child = startProgram(program, folder);
  } catch (const std::exception& error) {
    // The owner takes a channel that ends with a text for the reason.
    const std::string_view reason = error.what();
    (void)!write(kChannel, reason.data(), reason.size());
  }
  close(kChannel);
  char byte = 0;
  uninterrupted([&] { return read(kLife, &byte, 1); });
  if (child > 0) endDescendants(child);
  std::error_code ignored;
  fs::remove_all(folder, ignored);
}

// A program may put sockets into its folder, whose paths the system limits to 107 bytes.
fs::path freeFolder() {
  constexpr size_t kLongestScratch = 46;  // leaves 60 for the folder's name and what is in it
  const fs::path scratch = fs::absolute(directories::scratch());
  const std::string name = "lk-" + UUID::random().lowercaseText().substr(0, 8);
  return (scratch.native().size() <= kLongestScratch ? scratch : fs::path("/tmp")) / name;
}

}  // namespace

OwnedProcess::OwnedProcess(const Program& program) : folder_(freeFolder()) {
  std::array<int, 2> channel{};
  std::array<int, 2> life{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, channel.data()) != 0) {
    throw FileError(program.path, errno);
  }
  Descriptor ours(channel[0]);
  const Descriptor theirs(channel[1]);
  if (pipe2(life.data(), O_CLOEXEC) != 0) throw FileError(program.path, errno);
  const Descriptor watched(life[0]);
  Descriptor held(life[1]);
  watcher_ = fork();
  if (watcher_ < 0) throw FileError(program.path, errno);
  if (watcher_ == 0) {
    keepOnly(theirs.get(), watched.get());
    watch(program, folder_);
    _exit(0);
  }
  channel_ = ours.release();
  life_ = held.release();
}

OwnedProcess::~OwnedProcess() {
  close(life_);
  close(channel_);
  uninterrupted([&] { return waitpid(watcher_, nullptr, 0); });
}

OwnedProcess::Channel OwnedProcess::exchange(std::string_view& toSend, std::string& received,
                                             Deadline deadline) {
  // A program that never falls silent must not outlast the deadline either.
  if (std::chrono::steady_clock::now() >= deadline) return Channel::late;
  pollfd state{.fd = channel_, .events = POLLIN, .revents = 0};
  if (!toSend.empty()) state.events |= POLLOUT;
  const int ready = uninterrupted([&] { return poll(&state, 1, millisecondsUntil(deadline)); });
  if (ready == 0) return Channel::late;
  if ((state.revents & (POLLIN | POLLHUP | POLLERR)) != 0) {
    std::array<char, 65536> part{};
    const ssize_t count =
        uninterrupted([&] { return recv(channel_, part.data(), part.size(), MSG_DONTWAIT); });
    if (count == 0 || (count < 0 && errno != EAGAIN)) return Channel::ended;
    if (count > 0) received.append(part.data(), static_cast<size_t>(count));
  }
  if ((state.revents & POLLOUT) != 0) {
    const ssize_t count = uninterrupted(
        [&] { return send(channel_, toSend.data(), toSend.size(), MSG_DONTWAIT | MSG_NOSIGNAL); });
    // A closed channel is told by the next read, after what the program had to say.
    if (count > 0) toSend.remove_prefix(static_cast<size_t>(count));
  }
  return Channel::open;
}

std::string OwnedProcess::log() const {
  std::string text;
  try {
    text = readFile(folder_ / kLogName);
  } catch (const FileError&) {
    return {};
  }
  return text.size() > kLogEnd ? text.substr(text.size() - kLogEnd) : text;
}

}  // namespace lk
