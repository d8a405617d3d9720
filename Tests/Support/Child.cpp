#include "Support/Child.h"

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <stdexcept>

namespace lk::test {

namespace {

constexpr uid_t kNobody = 65534;

std::string outcome(const std::function<std::string()>& body) {
  try {
    return body();
  } catch (const std::exception& error) {
    return error.what();
  }
}

std::string withoutRights(const std::function<std::string()>& body) {
  if (geteuid() == 0 &&
      (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
    return "cannot give up the rights of root";
  }
  return body();
}

}  // namespace

Child::Child(const std::function<std::string()>& body) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::runtime_error("no pipe");
  process_ = fork();
  if (process_ < 0) throw std::runtime_error("no fork");
  if (process_ == 0) {
    close(ends[0]);
    const std::string word = outcome(body);
    _exit(write(ends[1], word.data(), word.size()) < 0 ? 1 : 0);
  }
  close(ends[1]);
  output_ = ends[0];
}

Child::~Child() {
  kill();
  close(output_);
}

std::string Child::word() {
  std::string word;
  std::array<char, 4096> buffer{};
  for (ssize_t got = 1; got > 0;) {
    got = read(output_, buffer.data(), buffer.size());
    if (got > 0) word.append(buffer.data(), static_cast<size_t>(got));
  }
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  return WIFEXITED(status) ? word : "killed";
}

void Child::kill() {
  if (process_ < 0) return;
  ::kill(process_, SIGKILL);
  waitpid(process_, nullptr, 0);
  process_ = -1;
}

std::string asOrdinaryUser(const std::function<std::string()>& body) {
  return Child([&] { return withoutRights(body); }).word();
}

uid_t ordinaryUser() {
  return geteuid() == 0 ? kNobody : geteuid();
}

}  // namespace lk::test
