#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace lk {

// How far a long operation has come, for whoever waits at a terminal: one line of standard error,
// written over and over and gone at the end. Nothing is shown in the first second, nor where
// standard error is no terminal.
//
//     Progress progress("Importing", options.quiet);
//     for (...) progress.show(++done, total);      // "Importing 1200 of 10000"
class Progress {
 public:
  Progress(std::string activity, bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(size_t done, size_t total);
  // Takes the line away, before another one is printed.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  std::string activity_;
  bool isShown_;  // at all
  bool hasLine_ = false;
  Clock::time_point next_;
};

}  // namespace lk
