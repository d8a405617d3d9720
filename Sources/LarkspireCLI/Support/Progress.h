#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace lk {

// How far a long operation has come, for whoever waits at a terminal: one line of standard error,
// written over and over and gone at the end. Nothing is shown in the first second, nor where
// standard error is no terminal.
//
//     Progress progress("Importing", options.quiet);
//     for (...) progress.show(++done, total);      // "Importing 1200 of 10000"
//
// Work that cannot count tells its stages in words instead. They appear by themselves, however long
// the caller is busy with one:
//
//     progress.stage("Laying out pages");          // "Laying out pages ..."
class Progress {
 public:
  Progress(std::string activity, bool quiet);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void show(size_t done, size_t total);
  void stage(std::string_view words);
  // Takes the line away, before another one is printed, and ends the stage.
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  void writeLine(const std::string& text);
  void tellStages(const std::stop_token& ended);

  std::string activity_;
  bool isShown_;  // at all
  bool hasLine_ = false;
  Clock::time_point next_;

  // Guards what the thread below reads as well.
  std::mutex lock_;
  std::condition_variable_any changed_;
  std::string stage_;         // what the caller does now
  bool isStageTold_ = false;  // on the terminal, or over
  std::jthread teller_;       // runs from the first stage on
};

}  // namespace lk
