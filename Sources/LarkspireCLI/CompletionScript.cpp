#include "LarkspireCLI/CompletionScript.h"

#include <functional>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CommandTree.h"

namespace lk {

namespace {

// One point that a command line can have reached: the words so far and what may come next. A group
// with a default subcommand takes what that one takes.
struct Place {
  std::string words;  // "lk tasks add"
  const CommandConfiguration& configuration;
  std::vector<Argument> arguments;

  std::string function() const {
    std::string name = "_" + words;
    for (char& c : name) c = c == ' ' ? '_' : c;
    return name;
  }
};

using Visitor = std::function<void(const Place&)>;

void visit(const CommandPath& path, const Visitor& visitor) {
  const CommandConfiguration& here = *path.back();
  const CommandConfiguration* fallback = here.subcommand(here.defaultSubcommand);
  const std::unique_ptr<Command> command = makeCommand(fallback == nullptr ? here : *fallback);
  visitor(Place{commandLine(path), here, argumentsOf(*command).entries()});
  for (const CommandConfiguration& subcommand : here.subcommands) {
    CommandPath deeper = path;
    deeper.push_back(&subcommand);
    visit(deeper, visitor);
  }
}

void visitTree(const Visitor& visitor) {
  visit({&LK::configuration()}, visitor);
}

// A text as one literal word of bash and zsh.
std::string shellWord(std::string_view text) {
  return "'" + text::replacingAll(text, "'", "'\\''") + "'";
}

template <typename Range>
std::string joined(const Range& words) {
  std::string result;
  for (const auto& word : words) {
    if (!result.empty()) result += ' ';
    result += word;
  }
  return result;
}

bool offersFiles(const Argument& argument) {
  return argument.completion == Completion::file;
}

bool offersFolders(const Argument& argument) {
  return argument.completion == Completion::folder;
}

// --- bash ----------------------------------------------------------------------------------------

constexpr std::string_view bashHead =
    R"(# Completion of lk for bash, made by: lk --generate-completion-script bash

)";

constexpr std::string_view bashTail = R"(
_lk() {
  local cur=${COMP_WORDS[COMP_CWORD]} place=lk expecting= word i
  local subcommands options valued values
  _lk_place lk
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ -n $expecting ]]; then
      # bash hands "--sort=title" over as three words.
      [[ $word == = ]] || expecting=
    elif [[ $word == -* ]]; then
      [[ " $valued " == *" $word "* ]] && expecting=$word
    elif [[ " $subcommands " == *" $word "* ]]; then
      place+=" $word"
      _lk_place "$place"
    else
      subcommands=
    fi
  done
  [[ $cur == = ]] && cur=
  COMPREPLY=()
  if [[ -z $expecting && $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    return
  fi
  _lk_values "$place $expecting"
  case $values in
    :file) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    :folder) compopt -o filenames 2>/dev/null; mapfile -t COMPREPLY < <(compgen -d -- "$cur") ;;
    *) mapfile -t COMPREPLY < <(compgen -W "$values" -- "$cur") ;;
  esac
  if [[ -z $expecting && -n $subcommands ]]; then
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$subcommands" -- "$cur")
  fi
}

complete -F _lk lk
)";

std::string bashValues(const Argument& argument) {
  if (offersFiles(argument)) return ":file";
  if (offersFolders(argument)) return ":folder";
  return joined(argument.choices);
}

std::string bashScript() {
  std::string places;
  std::string values;
  visitTree([&](const Place& place) {
    std::vector<std::string> subcommands;
    std::vector<std::string> options;
    std::vector<std::string> valued;
    for (const auto& command : place.configuration.subcommands) {
      subcommands.emplace_back(command.commandName);
    }
    for (const Argument& argument : place.arguments) {
      const bool positional = argument.kind == Argument::Kind::positional;
      const std::string name = positional ? "" : std::string(argument.name);
      if (!positional) options.push_back(name);
      if (argument.takesValue()) valued.push_back(name);
      const std::string offered = bashValues(argument);
      if (offered.empty()) continue;
      values +=
          "    " + shellWord(place.words + " " + name) + ") values=" + shellWord(offered) + " ;;\n";
    }
    places += "    " + shellWord(place.words) +
              ")\n      subcommands=" + shellWord(joined(subcommands)) +
              "\n      options=" + shellWord(joined(options)) +
              "\n      valued=" + shellWord(joined(valued)) + " ;;\n";
  });
  return std::string(bashHead) + "_lk_place() {\n  case $1 in\n" + places +
         "  esac\n}\n\n# The words for a place and option, or :file, or :folder.\n_lk_values() "
         "{\n" +
         "  values=\n  case $1 in\n" + values + "  esac\n}\n" + std::string(bashTail);
}

// --- zsh -----------------------------------------------------------------------------------------

// A text inside a specification of _arguments, where brackets and colons mean something.
std::string zshText(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') result += '\\';
    result += c;
  }
  return result;
}

std::string zshAction(const Argument& argument) {
  if (offersFiles(argument)) return "_files";
  if (offersFolders(argument)) return "_files -/";
  return argument.choices.empty() ? "" : "(" + joined(argument.choices) + ")";
}

std::string zshSpecification(const Argument& argument, size_t& position) {
  const std::string value = zshText(argument.valueName) + ":" + zshAction(argument);
  if (argument.kind == Argument::Kind::positional) {
    return std::to_string(++position) + ":" + value;
  }
  std::string specification = argument.isRepeatable() ? "*" : "";
  specification.append(argument.name);
  if (argument.takesValue()) specification += "=";
  specification += "[" + zshText(argument.help) + "]";
  if (argument.takesValue()) specification += ":" + value;
  return specification;
}

std::string zshFunction(const Place& place) {
  const bool group = place.configuration.isGroup();
  std::string text = place.function() + "() {\n";
  if (group) {
    text += "  local curcontext=$curcontext state line\n  typeset -A opt_args\n";
    text += "  local -a subcommands=(\n";
    for (const CommandConfiguration& command : place.configuration.subcommands) {
      const std::string entry(command.commandName);
      text += "    " + shellWord(entry + ":" + zshText(command.abstract)) + "\n";
    }
    text += "  )\n";
  }
  text += group ? "  _arguments -C" : "  _arguments";
  size_t position = 0;
  for (const Argument& argument : place.arguments) {
    if (group && argument.kind == Argument::Kind::positional) continue;
    text += " \\\n    " + shellWord(zshSpecification(argument, position));
  }
  if (!group) return text + "\n}\n\n";
  text += " \\\n    '1: :->subcommand' \\\n    '*:: :->rest'\n";
  text += "  case $state in\n    subcommand) _describe subcommand subcommands ;;\n";
  text += "    rest) (( $+functions[" + place.function() + "_$words[1]] )) && " + place.function() +
          "_$words[1] ;;\n  esac\n}\n\n";
  return text;
}

std::string zshScript() {
  std::string text =
      "#compdef lk\n# Completion of lk for zsh, made by: lk --generate-completion-script zsh\n\n";
  visitTree([&](const Place& place) { text += zshFunction(place); });
  return text + "if [[ $funcstack[1] == _lk ]]; then\n  _lk \"$@\"\nelse\n  compdef _lk lk\nfi\n";
}

// --- fish ----------------------------------------------------------------------------------------

constexpr std::string_view fishWalk = R"(
# The command words so far: "lk tasks add".
function __lk_place
    set -l place lk
    set -l skip false
    for word in (commandline -opc)[2..-1]
        if test $skip = true
            set skip false
        else if contains -- "$place $word" $__lk_places
            set place "$place $word"
        else if contains -- "$place $word" $__lk_valued
            set skip true
        end
    end
    echo $place
end

function __lk_at
    test (__lk_place) = "$argv"
end

complete -c lk -f
)";

// A text as one literal word of fish, where a backslash means something inside quotes too.
std::string fishQuoted(std::string_view text) {
  const std::string escaped = text::replacingAll(text, "\\", "\\\\");
  return "'" + text::replacingAll(escaped, "'", "\\'") + "'";
}

std::string fishScript() {
  std::string places = "set -g __lk_places";
  std::string valued = "set -g __lk_valued";
  std::string rules;
  visitTree([&](const Place& place) {
    places += " " + fishQuoted(place.words);
    const std::string rule = "complete -c lk -n " + fishQuoted("__lk_at " + place.words);
    for (const CommandConfiguration& command : place.configuration.subcommands) {
      rules += rule + " -a " + std::string(command.commandName) + " -d " +
               fishQuoted(command.abstract) + "\n";
    }
    for (const Argument& argument : place.arguments) {
      std::string values;
      if (offersFiles(argument)) values = " -F";
      if (offersFolders(argument)) values = " -a '(__fish_complete_directories)'";
      if (!argument.choices.empty()) values = " -a " + fishQuoted(joined(argument.choices));
      if (argument.kind == Argument::Kind::positional) {
        if (!values.empty()) rules += rule + values + "\n";
        continue;
      }
      rules += rule + " -l " + std::string(argument.name.substr(2));
      if (!argument.shortName.empty()) rules += " -s " + std::string(argument.shortName.substr(1));
      if (argument.takesValue()) {
        valued += " " + fishQuoted(place.words + " " + std::string(argument.name));
        rules += (offersFiles(argument) ? " -r" : " -x") + values;
      }
      rules += " -d " + fishQuoted(argument.help) + "\n";
    }
  });
  return "# Completion of lk for fish, made by: lk --generate-completion-script fish\n\n" + places +
         "\n" + valued + "\n" + std::string(fishWalk) + rules;
}

}  // namespace

std::string completionScript(std::string_view shell) {
  if (shell == "bash") return bashScript();
  if (shell == "zsh") return zshScript();
  return fishScript();
}

}  // namespace lk
