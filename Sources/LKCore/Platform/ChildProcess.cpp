#include "LKCore/Platform/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

#include "LKCore/Platform/Descriptor.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/ProcessStart.h"

namespace lk {

namespace {

using ChildClock = std::chrono::steady_clock;

constexpr int kStartFailed = 127;
constexpr auto kEndPause = std::chrono::milliseconds(5);

struct ChildPipe {
  Descriptor ours;
  Descriptor theirs;
};

// Both ends of a channel that no other program inherits. A socket rather than a pipe, because
// writing to one whose reader has died can be told not to raise a signal.
ChildPipe childPipe(const std::filesystem::path& program) {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    throw FileError(program, errno);
  }
  fcntl(ends[0], F_SETFL, O_NONBLOCK);
  return {Descriptor(ends[0]), Descriptor(ends[1])};
}

// A running program with its group; nothing of it is left when the object goes.
class ChildGroup {
 public:
  explicit ChildGroup(pid_t process) : process_(process) {}
  ~ChildGroup() {
    kill(-process_, SIGKILL);
    if (!isReaped_) uninterrupted([&] { return waitpid(process_, nullptr, 0); });
  }
  ChildGroup(const ChildGroup&) = delete;
  ChildGroup& operator=(const ChildGroup&) = delete;

  // The status once it has ended.
  std::optional<int> ended() {
    int status = 0;
    if (uninterrupted([&] { return waitpid(process_, &status, WNOHANG); }) <= 0) return {};
    isReaped_ = true;
    return status;
  }

 private:
  pid_t process_;
  bool isReaped_ = false;
};

// What happens in the new process: system calls alone, as the memory may be in any state.
[[noreturn]] void becomeChild(const std::array<int, 3>& standard, const char* program,
                              char* const* arguments, pid_t parent) {
  setpgid(0, 0);
  leaveNetwork();
  // Behind the change of user name space, which may take the wish back.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  if (getppid() != parent) _exit(kStartFailed);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) signal(number, SIG_DFL);
  for (int i = 0; i < 3; ++i) {
    if (dup2(standard[static_cast<size_t>(i)], i) != i) _exit(kStartFailed);
  }
  execv(program, arguments);
  _exit(kStartFailed);
}

// Reads what has come. False at the end.
bool collect(const Descriptor& from, std::string& into) {
  std::array<char, 65536> buffer{};
  while (true) {
    const ssize_t count = read(from.get(), buffer.data(), buffer.size());
    if (count > 0) into.append(buffer.data(), static_cast<size_t>(count));
    if (count == 0) return false;
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return errno == EAGAIN;
  }
}

// Writes what goes; shuts the channel when all has gone or nobody reads any more.
void feed(Descriptor& to, std::string_view& rest) {
  while (!rest.empty()) {
    const ssize_t count = ::send(to.get(), rest.data(), rest.size(), MSG_NOSIGNAL);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0 && errno == EAGAIN) return;
    if (count < 0) break;
    rest.remove_prefix(static_cast<size_t>(count));
  }
  to = Descriptor();
}

// Feeds the program and takes its output until both outputs end. False when that is late.
bool feedAndCollect(Descriptor& in, Descriptor& out, Descriptor& err, std::string_view input,
                    ChildRun& run, ChildClock::time_point deadline) {
  feed(in, input);
  while (out || err) {
    const int wait = millisecondsUntil(deadline);
    std::array<pollfd, 3> waiting = {{{in ? in.get() : -1, POLLOUT, 0},
                                      {out ? out.get() : -1, POLLIN, 0},
                                      {err ? err.get() : -1, POLLIN, 0}}};
    if (wait == 0) return false;
    if (poll(waiting.data(), waiting.size(), wait) < 0 && errno != EINTR) return false;
    if (waiting[0].revents != 0) feed(in, input);
    if (waiting[1].revents != 0 && !collect(out, run.out)) out = Descriptor();
    if (waiting[2].revents != 0 && !collect(err, run.err)) err = Descriptor();
    if (run.err.size() > 2 * kChildErrors) run.err.erase(0, run.err.size() - kChildErrors);
  }
  return true;
}

}  // namespace

ChildRun runChild(const ChildCommand& command, std::chrono::steady_clock::time_point deadline) {
  std::vector<std::string> texts = {command.program.string()};
  texts.insert(texts.end(), command.arguments.begin(), command.arguments.end());
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string& text : texts) arguments.push_back(text.data());
  arguments.push_back(nullptr);

  ChildPipe in = childPipe(command.program);
  ChildPipe out = childPipe(command.program);
  ChildPipe err = childPipe(command.program);
  const std::array<int, 3> standard = {in.theirs.get(), out.theirs.get(), err.theirs.get()};
  const pid_t parent = getpid();
  const pid_t process = fork();
  if (process < 0) throw FileError(command.program, errno);
  if (process == 0) becomeChild(standard, texts.front().c_str(), arguments.data(), parent);
  setpgid(process, process);  // whichever of the two is first
  ChildGroup group(process);
  for (ChildPipe* const pipe : {&in, &out, &err}) pipe->theirs = Descriptor();

  ChildRun run;
  bool isLate = !feedAndCollect(in.ours, out.ours, err.ours, command.input, run, deadline);
  std::optional<int> status = group.ended();
  while (!status && !isLate) {
    std::this_thread::sleep_for(kEndPause);
    status = group.ended();
    isLate = ChildClock::now() >= deadline;
  }
  if (run.err.size() > kChildErrors) run.err.erase(0, run.err.size() - kChildErrors);
  if (!status) {
    run.end = ChildEnd::late;
  } else if (WIFEXITED(*status)) {
    run.status = WEXITSTATUS(*status);
  } else {
    run.end = ChildEnd::signalled;
    run.status = WTERMSIG(*status);
  }
  return run;
}

}  // namespace lk
