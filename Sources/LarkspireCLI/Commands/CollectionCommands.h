#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk collection info`
class CollectionInfoCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  bool finder = false;
};

// `lk collection switch`
class CollectionSwitchCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::optional<std::string> reference;
  bool clear = false;
};

// `lk collection add`
class CollectionAddCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string path;
  std::optional<std::string> name;
  std::optional<std::string> mode;
  bool force = false;
  bool activate = false;
};

// `lk collection remove`
class CollectionRemoveCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string reference;
  std::optional<std::string> confirm;
};

// `lk collection doctor`
class CollectionDoctorCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

}  // namespace lk
