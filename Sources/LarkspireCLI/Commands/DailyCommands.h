#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk daily show`
class DailyShowCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> date;
  bool create = false;
  bool tasks = false;
  bool open = false;
};

// `lk daily append`
class DailyAppendCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> text;
  std::optional<std::string> date;
};

// `lk daily overdue`
class DailyOverdueCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> date;
};

// `lk daily summary`
class DailySummaryCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> date;
};

}  // namespace lk
