#pragma once

#include <optional>
#include <string>

#include "LarkspireCLI/Support/Command.h"

namespace lk {

// `lk properties list`
class PropertiesListCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk properties show`
class PropertiesShowCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
};

// `lk properties add`
class PropertiesAddCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
  std::string type;
  std::optional<std::string> propertyOptions;
  bool required = false;
};

// `lk properties delete`
class PropertiesDeleteCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
  bool force = false;
};

// `lk properties orphans`
class PropertiesOrphansCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;
};

// `lk properties notes`
class PropertiesNotesCommand final : public Command {
 public:
  void declare(ArgumentList& arguments) override;
  void run() override;

  std::string name;
  std::optional<std::string> value;
};

}  // namespace lk
