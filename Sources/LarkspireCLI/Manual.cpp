#include "LarkspireCLI/Manual.h"

#include <algorithm>
#include <map>
#include <memory>

#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/CommandTree.h"
#include "LarkspireCLI/Help.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// --- Text as roff --------------------------------------------------------------------------------

std::string roffCharacter(char32_t scalar) {
  switch (scalar) {
    case U'\\':
      return "\\e";
    case U'-':
      return "\\-";
    case U'\'':
      return "\\(aq";
    case U'"':
      return "\\(dq";
    case U'~':
      return "\\(ti";
    case U'^':
      return "\\(ha";
    default:
      break;
  }
  if (scalar < 0x80) return std::string(1, static_cast<char>(scalar));
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  for (char32_t rest = scalar; rest != 0 || hex.size() < 4; rest /= 16) {
    hex.insert(hex.begin(), digits[rest % 16]);
  }
  return "\\[u" + hex + "]";
}

// Text as it is read; what stands between backticks is bold. No line of it can be a request.
std::string roffText(std::string_view text) {
  const bool hasPairs = std::ranges::count(text, '`') % 2 == 0;
  bool isBold = false;
  std::string result;
  for (size_t offset = 0; offset < text.size();) {
    const bool startsLine = result.empty() || result.back() == '\n';
    const text::Decoded next = text::decode(text, offset);
    offset += next.length;
    if (next.scalar == U'`') {
      isBold = !isBold;
      result += !hasPairs ? "\\(ga" : isBold ? "\\fB" : "\\fR";
      continue;
    }
    if (startsLine && next.scalar == U'.') result += "\\&";
    result += roffCharacter(next.scalar);
  }
  return result;
}

std::string roffBold(std::string_view text) {
  return "\\fB" + roffText(text) + "\\fR";
}

// "lk-tasks" as the heading of its page.
std::string manualPageName(const CommandPath& path) {
  return path.size() == 1 ? "lk" : "lk-" + std::string(path[1]->commandName);
}

// --- What the command tree says ------------------------------------------------------------------

// The abstract as it stands behind a name: "list notes with optional filters".
std::string manualNameLine(const CommandPath& path) {
  std::string_view abstract = path.back()->abstract;
  if (abstract.ends_with('.')) abstract.remove_suffix(1);
  return roffText(manualPageName(path)) + " \\- " + roffText(abstract) + "\n";
}

// The usage with its words bold and its values in italics.
std::string synopsisOf(const CommandPath& path) {
  const std::string line = usageLine(path);
  const std::string words = commandLine(path);
  std::string result = ".B " + roffText(words) + "\n";
  std::string rest = roffText(line.substr(words.size()));
  rest = text::replacingAll(rest, "<", "\\fI");
  rest = text::replacingAll(rest, ">", "\\fR");
  return result + std::string(text::trimmed(rest)) + "\n";
}

std::string manualTerm(const Argument& argument) {
  std::string value = "\\fI" + roffText(argument.valueName) + "\\fR";
  if (argument.kind == Argument::Kind::positional) return value;
  std::string result;
  if (!argument.shortName.empty()) result += roffBold(argument.shortName) + ", ";
  result += roffBold(argument.name);
  if (argument.takesValue()) result += " " + value;
  return argument.isRepeatable() ? result + " ..." : result;
}

template <typename Wanted>
std::string manualArgumentList(const CommandPath& path, Wanted wanted) {
  const std::unique_ptr<Command> made = makeCommand(*path.back());
  std::string result;
  for (const Argument& argument : argumentsOf(*made).entries()) {
    if (wanted(argument)) {
      result += ".TP\n" + manualTerm(argument) + "\n" + roffText(helpWithDefault(argument)) + "\n";
    }
  }
  return result;
}

std::string ownArgumentList(const CommandPath& path) {
  return manualArgumentList(path, [](const Argument& argument) { return !argument.global; });
}

std::string globalOptionList(const CommandPath& path) {
  return manualArgumentList(path, [](const Argument& argument) { return argument.global; });
}

CommandPath pathBelow(const CommandPath& path, const CommandConfiguration& command) {
  CommandPath deeper = path;
  deeper.push_back(&command);
  return deeper;
}

std::string subcommandSection(const CommandPath& path) {
  const CommandConfiguration& command = *path.back();
  std::string result =
      ".SS " + roffText(commandLine(path)) + "\n" + roffText(command.abstract) + "\n";
  if (!command.discussion.empty()) result += ".PP\n" + roffText(command.discussion) + "\n";
  return result + ownArgumentList(path);
}

// --- Pages ---------------------------------------------------------------------------------------

// What a person wrote for a page, by the title of the section.
struct Additions {
  struct Section {
    std::string title;
    std::string body;
  };
  std::vector<Section> sections;

  std::string taken(std::string_view title) {
    const auto found = std::ranges::find(sections, title, &Section::title);
    if (found == sections.end()) return "";
    std::string body = std::move(found->body);
    sections.erase(found);
    return body;
  }
};

Additions readAdditions(const fs::path& file) {
  Additions additions;
  bool isExample = false;
  const std::string content = readFile(file);
  for (const std::string_view line : text::split(text::trimmed(content), '\n')) {
    if (line.starts_with(".SH ")) {
      additions.sections.push_back({std::string(line.substr(4)), ""});
    } else if (!additions.sections.empty()) {
      isExample = line == ".EX" || (isExample && line != ".EE");
      const bool isLiteral = isExample && line != ".EX";
      additions.sections.back().body += (isLiteral ? roffText(line) : std::string(line)) + "\n";
    } else if (!line.starts_with(".\\\"")) {
      throw ManualError(file.string() + ": text above the first section: " + std::string(line));
    }
  }
  return additions;
}

std::string manualSection(std::string_view title, const std::string& body) {
  return body.empty() ? "" : ".SH " + std::string(title) + "\n" + body;
}

std::string pageReference(std::string_view page, std::string_view number) {
  return ".BR " + roffText(page) + " (" + std::string(number) + ")";
}

std::string seeAlsoSection(const CommandPath& path, const std::string& added) {
  std::vector<std::string> references;
  if (path.size() == 1) {
    for (const CommandConfiguration& command : path.back()->subcommands) {
      references.push_back(pageReference(manualPageName(pathBelow(path, command)), "1"));
    }
  } else {
    references.push_back(pageReference("lk", "1"));
  }
  references.push_back(pageReference("lk-note-format", "5"));
  for (const std::string_view line : text::split(text::trimmed(added), '\n')) {
    if (!line.empty()) references.emplace_back(line);
  }
  std::string result;
  for (const std::string& each : references) result += (result.empty() ? "" : " ,\n") + each;
  return result + "\n";
}

std::string descriptionSection(const CommandPath& path, const std::string& added) {
  const CommandConfiguration& command = *path.back();
  std::string result = roffText(command.abstract) + "\n";
  if (!command.discussion.empty()) result += ".PP\n" + roffText(command.discussion) + "\n";
  if (!added.empty()) result += ".PP\n" + added;
  if (!command.defaultSubcommand.empty()) {
    const std::string words = commandLine(path);
    result += ".PP\n" + roffBold(words) + " alone runs " +
              roffBold(words + " " + std::string(command.defaultSubcommand)) + ".\n";
  }
  return result;
}

std::string commandsSection(const CommandPath& path) {
  std::string result;
  for (const CommandConfiguration& command : path.back()->subcommands) {
    const CommandPath deeper = pathBelow(path, command);
    result += path.size() == 1 ? ".TP\n.BR " + roffText(manualPageName(deeper)) + " (1)\n" +
                                     roffText(command.abstract) + "\n"
                               : subcommandSection(deeper);
  }
  return result;
}

std::string synopsisSection(const CommandPath& path) {
  std::string result;
  if (path.size() == 1 || !path.back()->isGroup()) return synopsisOf(path);
  for (const CommandConfiguration& command : path.back()->subcommands) {
    result += (result.empty() ? "" : ".br\n") + synopsisOf(pathBelow(path, command));
  }
  return result;
}

std::string manualPage(const CommandPath& path, Additions additions) {
  const std::string name = manualPageName(path);
  std::string text = ".\\\" Made from the command tree and " + name + ".man.\n.TH " +
                     text::uppercased(roffText(name)) + " 1 \"\" \"Larkspire " +
                     std::string(LK::version) + "\" \"Larkspire manual\"\n";
  text += manualSection("NAME", manualNameLine(path));
  text += manualSection("SYNOPSIS", synopsisSection(path));
  text += manualSection("DESCRIPTION", descriptionSection(path, additions.taken("DESCRIPTION")));
  text += manualSection(path.size() == 1 ? "COMMANDS" : "SUBCOMMANDS", commandsSection(path));
  text += manualSection("OPTIONS", ownArgumentList(path) + globalOptionList(path));
  const std::string references = seeAlsoSection(path, additions.taken("SEE ALSO"));
  for (const auto& [title, body] : additions.sections) text += manualSection(title, body);
  return text + manualSection("SEE ALSO", references);
}

std::map<std::string, fs::path> additionFiles(const fs::path& folder) {
  std::error_code failure;
  std::map<std::string, fs::path> files;
  for (const auto& entry : fs::directory_iterator(folder, failure)) {
    files.emplace(entry.path().filename().string(), entry.path());
  }
  if (failure) throw FileError(folder, failure.value());
  return files;
}

}  // namespace

std::vector<ManualPage> manualPages(const fs::path& additions) {
  std::map<std::string, fs::path> files = additionFiles(additions);
  std::vector<ManualPage> pages;
  const auto add = [&](const CommandPath& path) {
    const auto file = files.find(manualPageName(path) + ".man");
    if (file == files.end()) {
      throw ManualError("no " + manualPageName(path) + ".man in " + additions.string());
    }
    pages.push_back({manualPageName(path) + ".1", manualPage(path, readAdditions(file->second))});
    files.erase(file);
  };
  const CommandPath whole = {&LK::configuration()};
  add(whole);
  for (const CommandConfiguration& command : whole.back()->subcommands) {
    add(pathBelow(whole, command));
  }
  for (const auto& [name, file] : files) {
    if (!name.ends_with(".5")) throw ManualError(file.string() + " belongs to no page");
    pages.push_back({name, readFile(file)});
  }
  return pages;
}

void writeManual(const std::vector<std::string>& words) {
  if (words.size() != 2) throw ManualError("Name the additions' folder and that of the pages.");
  const fs::path folder = words[1];
  createFolders(folder);
  for (const ManualPage& each : manualPages(words[0])) replaceFile(folder / each.name, each.text);
}

}  // namespace lk
