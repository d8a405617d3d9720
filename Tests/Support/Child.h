#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace lk::test {

// Work in a process of its own (fork), which ends with it: for what kills, limits or changes the
// user. What `body` returns, or the description of what it throws, is the child's word.
class Child {
 public:
  explicit Child(const std::function<std::string()>& body);
  ~Child();  // kills it when nobody waited
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  // The child's word at its end; "killed" when it was ended by a signal.
  std::string word();
  // SIGKILL, and the child is gone on return.
  void kill();

 private:
  pid_t process_ = -1;
  int output_ = -1;
};

// Runs `body` in a child without the rights of root; as the same user, if that is not root.
std::string asOrdinaryUser(const std::function<std::string()>& body);

// The user of `asOrdinaryUser`.
uid_t ordinaryUser();

}  // namespace lk::test
