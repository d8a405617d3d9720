#include "LarkspireCLI/Help.h"

#include <algorithm>

namespace lk {

namespace {

// A term and what it means: one entry of a help section.
struct Row {
  std::string term;
  std::string help;
};

// Terms wider than this have their text below them, so that one long option doesn't push the
// texts of all others to the right.
constexpr size_t widestTerm = 26;
constexpr size_t indent = 2;

Row row(const Argument& argument) {
  std::string term;
  if (!argument.shortName.empty()) term.append(argument.shortName).append(", ");
  if (argument.kind == Argument::Kind::positional) {
    term.append("<").append(argument.valueName).append(">");
  } else {
    term.append(argument.name);
  }
  if (argument.takesValue()) term.append(" <").append(argument.valueName).append(">");
  if (argument.isRepeatable()) term += "...";
  return {term, helpWithDefault(argument)};
}

class HelpPrinter {
 public:
  explicit HelpPrinter(const Terminal& terminal) : terminal_(terminal) {}

  void paragraph(std::string_view text) {
    separate();
    for (const std::string& line : wrapped(text, terminal_.width)) text_ += line + '\n';
  }

  void usage(std::string_view line) {
    separate();
    const std::string_view heading = "Usage: ";
    text_ += terminal_.bold("Usage:") + ' ';
    hanging(line, heading.size());
  }

  void section(std::string_view heading, const std::vector<Row>& rows) {
    if (rows.empty()) return;
    separate();
    text_ += terminal_.bold(std::string(heading) + ":") + '\n';
    size_t column = 0;
    for (const Row& entry : rows) {
      const size_t width = displayWidth(entry.term);
      if (width <= widestTerm) column = std::max(column, width);
    }
    // With nothing but wide terms the texts stand a little to the right of them.
    column = indent + (column == 0 ? 4 : column) + 2;
    for (const Row& entry : rows) printRow(entry, column);
  }

  std::string text() && { return std::move(text_); }

 private:
  void separate() {
    if (!text_.empty()) text_ += '\n';
  }

  void printRow(const Row& entry, size_t column) {
    text_ += std::string(indent, ' ') + entry.term;
    const size_t used = indent + displayWidth(entry.term);
    if (used + 2 <= column) {
      text_ += std::string(column - used, ' ');
    } else {
      text_ += '\n' + std::string(column, ' ');
    }
    hanging(entry.help, column);
  }

  // The text from where the line stands, at `column`; its further lines begin there too.
  void hanging(std::string_view text, size_t column) {
    const size_t room = terminal_.width > column + 10 ? terminal_.width - column : 10;
    bool first = true;
    for (const std::string& line : wrapped(text, room)) {
      if (!first) text_ += std::string(column, ' ');
      text_ += line + '\n';
      first = false;
    }
  }

  const Terminal& terminal_;
  std::string text_;
};

std::vector<Row> subcommandRows(const CommandConfiguration& group) {
  std::vector<Row> rows;
  for (const CommandConfiguration& command : group.subcommands) {
    std::string term(command.commandName);
    if (command.commandName == group.defaultSubcommand) term += " (default)";
    rows.push_back({std::move(term), std::string(command.abstract)});
  }
  return rows;
}

template <typename Wanted>
std::vector<Row> argumentRows(const ArgumentList& arguments, Wanted wanted) {
  std::vector<Row> rows;
  for (const Argument& argument : arguments.entries()) {
    if (wanted(argument)) rows.push_back(row(argument));
  }
  return rows;
}

std::string closingLine(const CommandPath& path) {
  const std::string kind = path.size() == 1 ? "command" : "subcommand";
  const std::string words = commandLine(path);
  std::string line;
  if (const std::string_view fallback = path.back()->defaultSubcommand; !fallback.empty()) {
    line = "'" + words + "' alone runs '" + words + " " + std::string(fallback) + "'. ";
  }
  return line + "See '" + words + " <" + kind + "> --help' for more about a " + kind + ".";
}

}  // namespace

std::string helpWithDefault(const Argument& argument) {
  const std::string held = argument.heldText();
  const bool told = argument.help.find("efault: ") != std::string_view::npos ||
                    argument.help.find("default)") != std::string_view::npos;
  const bool hasDefault = argument.takesValue() && !argument.required && !held.empty();
  return std::string(argument.help) + (hasDefault && !told ? " (default: " + held + ")" : "");
}

std::string usageLine(const CommandPath& path) {
  const CommandConfiguration& command = *path.back();
  std::string line = commandLine(path);
  if (command.isGroup()) {
    const std::string word = path.size() == 1 ? "<command>" : "<subcommand>";
    line += command.defaultSubcommand.empty() ? " " + word : " [" + word + "]";
  }
  const std::unique_ptr<Command> made = makeCommand(command);
  const ArgumentList arguments = argumentsOf(*made);
  for (const Argument& argument : arguments.entries()) {
    const std::string value = "<" + std::string(argument.valueName) + ">";
    if (argument.kind == Argument::Kind::positional) {
      line += argument.required ? " " + value : " [" + value + "]";
    } else if (argument.required) {
      line += " " + std::string(argument.name) + " " + value;
    }
  }
  return line + " [options]";
}

std::string helpText(const CommandPath& path, const Terminal& terminal) {
  using Kind = Argument::Kind;
  const CommandConfiguration& command = *path.back();
  const std::unique_ptr<Command> made = makeCommand(command);
  const ArgumentList arguments = argumentsOf(*made);

  HelpPrinter printer(terminal);
  printer.paragraph(command.abstract);
  printer.usage(usageLine(path));
  if (!command.discussion.empty()) printer.paragraph(command.discussion);
  printer.section(path.size() == 1 ? "Commands" : "Subcommands", subcommandRows(command));
  printer.section("Arguments", argumentRows(arguments, [](const Argument& argument) {
                    return argument.kind == Kind::positional;
                  }));
  printer.section("Options", argumentRows(arguments, [](const Argument& argument) {
                    return argument.kind != Kind::positional && !argument.global;
                  }));
  printer.section("Global options", argumentRows(arguments, [](const Argument& argument) {
                    return argument.global;
                  }));
  if (command.isGroup()) printer.paragraph(closingLine(path));
  return std::move(printer).text();
}

}  // namespace lk
