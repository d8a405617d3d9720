#include "Support/ChangedVariable.h"

#include <cstdlib>
#include <ctime>

namespace lk::test {

ChangedVariable::ChangedVariable(const char* name, const std::string& value) : name_(name) {
  if (const char* before = std::getenv(name)) before_ = before;
  setenv(name, value.c_str(), 1);
  tzset();
}

ChangedVariable::~ChangedVariable() {
  if (before_) {
    setenv(name_, before_->c_str(), 1);
  } else {
    unsetenv(name_);
  }
  tzset();
}

}  // namespace lk::test
