#include "LarkspireCLI/Support/ArgumentParser.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

// CLI11 reads `--content= next` as `--content next`, and `--json=true` as `--json`. No argument of
// a process can hold a NUL byte, so one at the end of what has an "=" says that a value is there;
// it is taken off again on the way out.
constexpr char assignedValueMark = '\0';

// What CLI11 holds for a flag that was given without a value.
constexpr std::string_view plainFlag = "true";

std::string marked(const std::string& word) {
  const bool isAssigned = word.starts_with("--") && word.find('=') != std::string::npos;
  return isAssigned ? word + assignedValueMark : word;
}

std::string unmarked(std::string word) {
  if (!word.empty() && word.back() == assignedValueMark) word.pop_back();
  return word;
}

// One registration with CLI11 for each entry of the list, in its order.
std::vector<CLI::Option*> registered(const ArgumentList& arguments, CLI::App& app) {
  std::vector<CLI::Option*> options;
  for (const Argument& entry : arguments.entries()) {
    std::string names(entry.name);
    if (!entry.shortName.empty()) names.append(",").append(entry.shortName);
    CLI::Option* option = app.add_option(names, CLI::callback_t());
    // Every word given is kept as it is; CLI11 converts nothing.
    option->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    option->expected(entry.kind == Argument::Kind::flag ? 0 : 1);
    options.push_back(option);
  }
  return options;
}

int wholeNumber(const Argument& entry, const std::string& value) {
  int number = 0;
  if (!text::parseInteger(value, number)) {
    throw ArgumentError(
        ArgumentError::Kind::badValue,
        "'" + value + "' isn't a whole number for '" + std::string(entry.name) + "'.");
  }
  return number;
}

void store(const Argument& entry, const std::vector<std::string>& values) {
  struct Storing {
    const Argument& entry;
    const std::vector<std::string>& values;

    void operator()(std::string* field) const { *field = values.back(); }
    void operator()(std::optional<std::string>* field) const { *field = values.back(); }
    void operator()(std::vector<std::string>* field) const { *field = values; }
    void operator()(int* field) const { *field = wholeNumber(entry, values.back()); }
    void operator()(std::optional<int>* field) const { *field = wholeNumber(entry, values.back()); }
    void operator()(bool* field) const { *field = true; }
  };
  std::visit(Storing{entry, values}, entry.field);
}

std::string_view optionName(std::string_view word) {
  return word.substr(0, word.find('='));
}

std::string nearestOption(const ArgumentList& arguments, std::string_view name) {
  std::vector<std::string_view> names;
  for (const Argument& entry : arguments.entries()) {
    if (entry.kind != Argument::Kind::positional) names.push_back(entry.name.substr(2));
  }
  name.remove_prefix(std::min(name.find_first_not_of('-'), name.size()));
  const std::string_view nearest = nearestWord(name, names);
  return nearest.empty() ? "" : "--" + std::string(nearest);
}

// What CLI11 could not place: options it doesn't know and, before or after a "--", words too many.
void refuseRemaining(const ArgumentList& arguments, const std::vector<std::string>& remaining) {
  bool onlyPositionals = false;
  for (const std::string& raw : remaining) {
    const std::string word = unmarked(raw);
    if (word == "--" && !onlyPositionals) {
      onlyPositionals = true;
      continue;
    }
    std::string name;
    std::string rest;
    if (!onlyPositionals &&
        (CLI::detail::split_long(word, name, rest) || CLI::detail::split_short(word, name, rest)) &&
        !text::isDecimalDigit(static_cast<char32_t>(name.front()))) {
      const std::string given(optionName(word));
      throw ArgumentError(ArgumentError::Kind::unknownOption, "Unknown option '" + given + "'.",
                          given, nearestOption(arguments, given));
    }
    throw ArgumentError(ArgumentError::Kind::unexpectedArgument,
                        "Unexpected argument '" + word + "'.", word);
  }
}

void refuseMissing(const ArgumentList& arguments, const std::vector<CLI::Option*>& options) {
  for (size_t i = 0; i < options.size(); ++i) {
    const Argument& entry = arguments.entries()[i];
    if (!entry.required || options[i]->count() > 0) continue;
    const bool positional = entry.kind == Argument::Kind::positional;
    const std::string shown = positional ? "argument <" + std::string(entry.valueName) + ">"
                                         : "option '" + std::string(entry.name) + "'";
    throw ArgumentError(ArgumentError::Kind::missing, "Missing " + shown + ".");
  }
}

void storeAll(const ArgumentList& arguments, const std::vector<CLI::Option*>& options) {
  for (size_t i = 0; i < options.size(); ++i) {
    const Argument& entry = arguments.entries()[i];
    if (options[i]->count() == 0) continue;
    std::vector<std::string> values = options[i]->results();
    if (entry.kind == Argument::Kind::flag && values.back() != plainFlag) {
      throw ArgumentError(ArgumentError::Kind::badValue,
                          "Option '" + std::string(entry.name) + "' doesn't take a value.");
    }
    for (std::string& value : values) value = unmarked(std::move(value));
    store(entry, values);
  }
}

bool asksForHelp(const ArgumentList& arguments, const std::vector<CLI::Option*>& options) {
  for (size_t i = 0; i < options.size(); ++i) {
    const Argument& entry = arguments.entries()[i];
    if (entry.name == helpFlag && options[i]->count() > 0) {
      store(entry, {""});
      return true;
    }
  }
  return false;
}

}  // namespace

void parseArguments(const ArgumentList& arguments, const std::vector<std::string>& words) {
  CLI::App app;
  app.set_help_flag("");
  app.allow_extras();
  app.allow_windows_style_options(false);
  const std::vector<CLI::Option*> options = registered(arguments, app);
  std::vector<std::string> reversed;
  for (auto word = words.rbegin(); word != words.rend(); ++word) reversed.push_back(marked(*word));
  try {
    app.parse(std::move(reversed));
  } catch (const CLI::ArgumentMismatch&) {
    // The one way to get here: the line ends where an option's value should stand.
    throw ArgumentError(ArgumentError::Kind::missing, "Missing value for '" + words.back() + "'.");
  }
  if (asksForHelp(arguments, options)) return;
  refuseRemaining(arguments, app.remaining());
  storeAll(arguments, options);
  refuseMissing(arguments, options);
}

std::string_view nearestWord(std::string_view word,
                             const std::vector<std::string_view>& candidates) {
  const size_t length = text::scalarCount(word);
  // One slip in a short word, up to three in a long one.
  size_t best = length <= 3 ? 1 : std::min<size_t>(3, 1 + length / 4);
  std::string_view nearest;
  for (const std::string_view candidate : candidates) {
    const size_t distance = text::editDistance(word, candidate);
    if (distance < best || (distance == best && nearest.empty())) {
      best = distance;
      nearest = candidate;
    }
  }
  if (nearest.empty() && length >= 3) {
    const auto begun = std::find_if(candidates.begin(), candidates.end(),
                                    [&](std::string_view c) { return c.starts_with(word); });
    if (begun != candidates.end()) nearest = *begun;
  }
  return nearest;
}

}  // namespace lk
