#pragma once

#include <exception>
#include <string>
#include <utility>

namespace lk {

// The root of every error that the library throws. `description()` is the whole message for a
// person, in English, without a closing line feed.
class Error : public std::exception {
 public:
  explicit Error(std::string description) : description_(std::move(description)) {}

  const std::string& description() const noexcept { return description_; }
  const char* what() const noexcept override { return description_.c_str(); }

 private:
  std::string description_;
};

}  // namespace lk
