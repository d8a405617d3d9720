#pragma once

#include <optional>
#include <string>

namespace lk::test {

// A variable of the environment that is back at the end. A time zone holds from then on, too.
class ChangedVariable {
 public:
  ChangedVariable(const char* name, const std::string& value);
  ~ChangedVariable();
  ChangedVariable(const ChangedVariable&) = delete;
  ChangedVariable& operator=(const ChangedVariable&) = delete;

 private:
  const char* name_;
  std::optional<std::string> before_;
};

}  // namespace lk::test
