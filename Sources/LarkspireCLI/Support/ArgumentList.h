#pragma once

// What a command takes, declared once, beside the fields that receive it. Help, parsing and shell
// completion all read this list; nothing else knows an option's name.
//
//     struct ListCommand final : Command {
//       GlobalOptions options;
//       std::vector<std::string> tags;
//       std::string sort = "modified";
//       void declare(ArgumentList& arguments) override {
//         arguments.option("--tag", tags, "Filter by tag (repeatable for AND).").valueName = "tag";
//         arguments.option("--sort", sort, "Sort by ...").choices = {"modified", "title"};
//         options.declare(arguments);
//       }
//
// A field's type says what may be given:
//
//   std::string                  a required positional, or an option whose default it holds
//   std::optional<std::string>   an optional positional or option
//   std::vector<std::string>     an option that may be repeated
//   int, std::optional<int>      an option that takes a whole number
//   bool                         a flag

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace lk {

// The flag that asks for help, whatever else is right or wrong with a command line.
inline constexpr std::string_view helpFlag = "--help";

// What a shell may offer for a value. Fixed words are in `Argument::choices`.
enum class Completion {
  none,
  file,
  folder,
  noteTitle,
  trashedTitle,
  tag,
  project,
  context,
  collection,
  collectionOrFolder,
  property,
  query,
};

struct Argument {
  enum class Kind { positional, option, flag };
  using Field = std::variant<std::string*, std::optional<std::string>*, std::vector<std::string>*,
                             int*, std::optional<int>*, bool*>;

  Kind kind = Kind::option;
  std::string_view name = {};       // "reference" or "--tag"; views must outlive the list
  std::string_view shortName = {};  // "-h", mostly empty
  std::string_view help = {};
  std::string_view valueName = {};  // "key=value" in `--property <key=value>`; not for a flag
  Field field = {};
  bool required = false;
  bool global = false;  // one of the options that every command takes
  Completion completion = Completion::none;
  // Words offered by completion. Which values are right is for the command to say.
  std::vector<std::string_view> choices = {};

  bool takesValue() const { return kind == Kind::option; }
  bool isRepeatable() const;
  // What the field holds, when that is a text or number; before parsing, the default.
  std::string heldText() const;
};

class ArgumentList {
 public:
  // Each gives the new entry, so that its value name, choices and the like can be set. The entry
  // may move when the next one is added.
  Argument& positional(std::string_view name, std::string& field, std::string_view help);
  Argument& positional(std::string_view name, std::optional<std::string>& field,
                       std::string_view help);
  template <typename Value>
  Argument& option(std::string_view name, Value& field, std::string_view help) {
    return addOption(name, &field, help);
  }
  Argument& flag(std::string_view name, bool& field, std::string_view help);

  const std::vector<Argument>& entries() const& { return entries_; }
  // By value from a list that is about to go, so that a loop over it is safe.
  std::vector<Argument> entries() && { return std::move(entries_); }
  // The option or flag of that name or short name; null when there is none.
  const Argument* find(std::string_view name) const;

 private:
  Argument& addOption(std::string_view name, Argument::Field field, std::string_view help);

  std::vector<Argument> entries_;
};

}  // namespace lk
