#include "LarkspireCLI/CommandLine.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CompletionValues.h"
#include "LarkspireCLI/Help.h"
#include "LarkspireCLI/Manual.h"
#include "LarkspireCLI/Support/ArgumentParser.h"

namespace lk {

namespace {

using Words = std::vector<std::string>;

[[noreturn]] void refuse(const CommandPath& path, const std::string& message,
                         std::string_view nearest = "") {
  std::string text = "Error: " + message + '\n';
  if (!nearest.empty()) text += "Did you mean '" + std::string(nearest) + "'?\n";
  text += "Usage: " + usageLine(path) + '\n';
  throw UsageError(text + "See '" + commandLine(path) + " --help' for more information.");
}

[[noreturn]] void refuse(const CommandPath& path, const ArgumentError& error) {
  refuse(path, error.description(), error.nearest());
}

std::string_view nearestSubcommand(const CommandConfiguration& group, std::string_view word) {
  std::vector<std::string_view> names;
  for (const CommandConfiguration& command : group.subcommands) {
    names.push_back(command.commandName);
  }
  return nearestWord(word, names);
}

[[noreturn]] void refuseWord(const CommandPath& path, const std::string& word) {
  const std::string kind = path.size() == 1 ? "command" : "subcommand";
  refuse(path, "Unknown " + kind + " '" + word + "'.", nearestSubcommand(*path.back(), word));
}

// Everything behind the parser takes its text for valid UTF-8.
void refuseInvalidUTF8(const CommandPath& path, const Words& words) {
  const auto bad = std::find_if_not(
      words.begin(), words.end(), [](const std::string& word) { return text::isValidUTF8(word); });
  if (bad == words.end()) return;
  std::string shown;
  for (size_t offset = 0; offset < bad->size();) {
    const text::Decoded next = text::decode(*bad, offset);
    text::append(shown, next.scalar);
    offset += next.length;
  }
  refuse(path, "The argument '" + shown + "' isn't valid UTF-8.");
}

// The words from `next` on that are options of the group's own line, values included. Where no
// default subcommand could know it, every option counts, so that a wrong one is named as wrong.
Words leadingOptions(const CommandConfiguration& group, const ArgumentList& arguments,
                     Words::const_iterator next, Words::const_iterator end) {
  Words taken;
  while (next != end && next->size() > 1 && next->front() == '-' && *next != "--") {
    const size_t assigned = next->find('=');
    const Argument* option = arguments.find(std::string_view(*next).substr(0, assigned));
    if (option == nullptr && !group.defaultSubcommand.empty()) break;
    taken.push_back(*next++);
    const bool valueFollows =
        option != nullptr && option->takesValue() && assigned == std::string::npos;
    if (valueFollows && next != end) taken.push_back(*next++);
  }
  return taken;
}

// What the options before a subcommand word ask for by themselves; none when they only set
// global options.
std::optional<Request> groupRequest(const CommandPath& path, const Command& group) {
  if (group.helpRequested) return HelpRequest{path};
  const auto* root = dynamic_cast<const RootCommand*>(&group);
  if (root == nullptr) return std::nullopt;
  if (root->version) return VersionRequest{};
  if (!root->completionShell) return std::nullopt;
  const auto* shell =
      std::find(std::begin(completionShells), std::end(completionShells), *root->completionShell);
  if (shell == std::end(completionShells)) {
    refuse(path, "No completion script for the shell '" + *root->completionShell +
                     "'. Use bash, zsh or fish.");
  }
  return CompletionRequest{*shell};
}

// `lk help tasks add`. As behind --help, options change nothing: whoever puts "help" into a line at
// hand wants to read about its command.
Request helpFor(Words::const_iterator next, Words::const_iterator end) {
  CommandPath path = {&LK::configuration()};
  for (; next != end && !next->starts_with('-'); ++next) {
    const CommandConfiguration* command = path.back()->subcommand(*next);
    if (command == nullptr) refuseWord(path, *next);
    path.push_back(command);
  }
  return HelpRequest{path};
}

// The words a leaf was given, and how it was reached.
struct LeafLine {
  CommandPath path;
  Words words;
  // For a default subcommand, the word that stood where a subcommand's name could; else empty.
  std::string firstWord;
  bool byDefault = false;
};

Request parseLeaf(const LeafLine& line) {
  std::unique_ptr<Command> command = makeCommand(*line.path.back());
  try {
    parseArguments(argumentsOf(*command), line.words);
  } catch (const ArgumentError& error) {
    if (!line.byDefault || error.kind() != ArgumentError::Kind::unexpectedArgument) {
      refuse(line.path, error);
    }
    // `lk tasks lst`: most likely a subcommand was meant.
    const CommandPath group(line.path.begin(), line.path.end() - 1);
    if (error.word() == line.firstWord) refuseWord(group, line.firstWord);
    refuse(group, error.description(), nearestSubcommand(*group.back(), line.firstWord));
  }
  if (command->helpRequested) return HelpRequest{line.path};
  return CommandRun{std::move(command)};
}

}  // namespace

Request LK::parseAsRoot(const std::vector<std::string>& arguments) {
  if (!arguments.empty() && arguments.front() == completeWord) {
    return CompletionValuesRequest{Words(std::next(arguments.begin()), arguments.end())};
  }
  if (!arguments.empty() && arguments.front() == manualWord) {
    return ManualRequest{Words(std::next(arguments.begin()), arguments.end())};
  }
  LeafLine line;
  line.path = {&LK::configuration()};
  refuseInvalidUTF8(line.path, arguments);
  auto next = arguments.begin();
  while (line.path.back()->isGroup()) {
    const CommandConfiguration& group = *line.path.back();
    const std::unique_ptr<Command> own = makeCommand(group);
    const ArgumentList options = argumentsOf(*own);
    const Words leading = leadingOptions(group, options, next, arguments.end());
    if (!leading.empty()) {
      try {
        parseArguments(options, leading);
      } catch (const ArgumentError& error) {
        refuse(line.path, error);
      }
      if (auto request = groupRequest(line.path, *own)) return std::move(*request);
      line.words.insert(line.words.end(), leading.begin(), leading.end());
      next += static_cast<std::ptrdiff_t>(leading.size());
    }

    const bool atEnd = next == arguments.end();
    const CommandConfiguration* command = atEnd ? nullptr : group.subcommand(*next);
    if (command != nullptr) {
      ++next;
    } else if (!atEnd && line.path.size() == 1 && *next == "help") {
      return helpFor(std::next(next), arguments.end());
    } else if (!group.defaultSubcommand.empty()) {
      command = group.subcommand(group.defaultSubcommand);
      line.byDefault = true;
      if (!atEnd) line.firstWord = *next;
    } else if (atEnd) {
      return HelpRequest{line.path};
    } else {
      refuseWord(line.path, *next);
    }
    line.path.push_back(command);
  }
  line.words.insert(line.words.end(), next, arguments.end());
  return parseLeaf(line);
}

}  // namespace lk
