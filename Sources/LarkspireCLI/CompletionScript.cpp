#include "LarkspireCLI/CompletionScript.h"

#include <functional>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/CommandTree.h"
#include "LarkspireCLI/CompletionValues.h"

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
  return argument.completion == Completion::folder ||
         argument.completion == Completion::collectionOrFolder;
}

// How the tool is asked for the values, as "note argument" (CompletionValues.h); empty when the
// shell knows them by itself.
std::string toolQuestion(const Argument& argument) {
  const std::string name(completionName(argument.completion));
  if (name.empty()) return "";
  return name + (argument.kind == Argument::Kind::positional ? " argument" : " value");
}

// --- bash ----------------------------------------------------------------------------------------

constexpr std::string_view bashHead =
    R"(# Completion of lk for bash, made by: lk --generate-completion-script bash

)";

constexpr std::string_view bashTail = R"(
_lk() {
  local cur=${COMP_WORDS[COMP_CWORD]} place=lk position=1 expecting= option= bare= word i
  local subcommands options valued values tool=${1:-lk}
  _lk_place lk
  for ((i = 1; i <= COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ $word == [:=@] ]]; then
      # bash hands "--sort=title" and "Plan: beds" over as three words.
      expecting=$option
      [[ -n $option ]] || ((position > 1 && position--))
    elif ((i == COMP_CWORD)); then
      break
    elif [[ -n $expecting ]]; then
      expecting=
    elif [[ $word == -- && -z $bare ]]; then
      bare=yes option=
    elif [[ $word == -* && -z $bare ]]; then
      [[ " $valued " == *" $word "* ]] && expecting=$word
      option=$expecting
    elif [[ " $subcommands " == *" $word "* && $position == 1 && -z $bare ]]; then
      place+=" $word" option=
      _lk_place "$place"
    else
      ((position++))
      option=
    fi
  done
  [[ $cur == [:=@] ]] && cur=
  COMPREPLY=()
  if [[ -z $expecting && -z $bare && $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    return
  fi
  _lk_values "$place ${expecting:-$position}"
  if [[ $values == *:ask* ]]; then
    # The tool quotes what it gives, so bash must not.
    mapfile -t COMPREPLY < <(
      # shellcheck disable=SC2086
      "${tool/#\~\//$HOME/}" __complete bash ${values#*:ask } "${COMP_LINE:0:COMP_POINT}" 2>/dev/null
    )
  elif [[ $values != :* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$values" -- "$cur")
  fi
  if [[ $values == :file* ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
  elif [[ $values == :folder* && ${#COMPREPLY[@]} == 0 ]]; then
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -d -- "$cur")
  fi
  if [[ -z $expecting$bare && -n $subcommands && $position == 1 ]]; then
    mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -W "$subcommands" -- "$cur")
  fi
}

complete -F _lk lk
)";

std::string bashValues(const Argument& argument) {
  if (offersFiles(argument)) return ":file";
  const std::string asked = toolQuestion(argument).empty() ? "" : ":ask " + toolQuestion(argument);
  if (offersFolders(argument)) return ":folder" + asked;
  return asked.empty() ? joined(argument.choices) : asked;
}

std::string bashScript() {
  std::string places;
  std::string values;
  visitTree([&](const Place& place) {
    std::vector<std::string> subcommands;
    std::vector<std::string> options;
    std::vector<std::string> valued;
    size_t position = 0;
    for (const auto& command : place.configuration.subcommands) {
      subcommands.emplace_back(command.commandName);
    }
    for (const Argument& argument : place.arguments) {
      const bool positional = argument.kind == Argument::Kind::positional;
      const std::string name = positional ? std::to_string(++position) : std::string(argument.name);
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
         "  esac\n}\n\n# For a place and an option or the position of an argument: the words, or "
         ":file,\n# :folder, or what to :ask the tool for.\n_lk_values() "
         "{\n" +
         "  values=\n  case $1 in\n" + values + "  esac\n}\n" + std::string(bashTail);
}

// --- zsh -----------------------------------------------------------------------------------------

constexpr std::string_view zshHead =
    R"zsh(#compdef lk
# Completion of lk for zsh, made by: lk --generate-completion-script zsh

# The values of a kind, asked of the tool with all the words before the cursor.
__lk_values() {
  local -a found
  found=(${(f)"$(__lk_ask "$@")"})
  compadd -a found
}

__lk_ask() {
  "${__lk_line[1]/#\~\//$HOME/}" __complete words "$@" "${(@)__lk_line[2,-1]}" 2>/dev/null
}

)zsh";

// The words as they are typed, which the functions of the subcommands no longer see whole.
constexpr std::string_view zshTail =
    R"(__lk_whole() {
  local -a __lk_line
  __lk_line=("${(@Q)words[1,CURRENT-1]}")
  _lk "$@"
}

if [[ $funcstack[1] == _lk ]]; then
  compdef __lk_whole lk
  __lk_whole "$@"
else
  compdef __lk_whole lk
fi
)";

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
  const std::string asked =
      toolQuestion(argument).empty() ? "" : "__lk_values " + toolQuestion(argument);
  if (offersFolders(argument)) return asked.empty() ? "_files -/" : "{ " + asked + "; _files -/ }";
  if (!asked.empty()) return "{ " + asked + " }";
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
  // After "--" no option is left to offer.
  text += group ? "  _arguments -C" : "  _arguments -S";
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
  std::string text(zshHead);
  visitTree([&](const Place& place) { text += zshFunction(place); });
  return text + std::string(zshTail);
}

// --- fish ----------------------------------------------------------------------------------------

constexpr std::string_view fishWalk = R"(
# The command words so far ("lk tasks add"), and the position of the argument that comes next.
function __lk_place
    set -l place lk
    set -l position 1
    set -l skip false
    set -l bare false
    for word in (commandline -opc)[2..-1]
        if test $skip = true
            set skip false
        else if test $bare = false -a "$word" = --
            set bare true
        else if test $bare = false -a $position = 1; and contains -- "$place $word" $__lk_places
            set place "$place $word"
        else if test $bare = false; and contains -- "$place $word" $__lk_valued
            set skip true
        else if test $bare = true; or not string match -q -- '-*' "$word"
            set position (math $position + 1)
        end
    end
    echo $place
    echo $position
end

# True at the place, and at that argument of it where a position is given.
function __lk_at -a place position
    set -l here (__lk_place)
    test "$here[1]" = "$place"; and begin
        test -z "$position"; or test "$here[2]" = "$position"
    end
end

# The values of a kind, asked of the tool with all the words before the cursor.
function __lk_values
    set -l line (commandline -opc)
    set -l tool (string replace -r '^~/' -- "$HOME/" $line[1])
    $tool __complete words $argv $line[2..-1] 2>/dev/null
end

complete -c lk -f
)";

// A text as one literal word of fish, where a backslash means something inside quotes too.
std::string fishQuoted(std::string_view text) {
  const std::string escaped = text::replacingAll(text, "\\", "\\\\");
  return "'" + text::replacingAll(escaped, "'", "\\'") + "'";
}

std::string fishValues(const Argument& argument) {
  if (offersFiles(argument)) return " -F";
  const std::string asked =
      toolQuestion(argument).empty() ? "" : "__lk_values " + toolQuestion(argument);
  if (offersFolders(argument)) {
    return " -a '(" + (asked.empty() ? "" : asked + "; ") + "__fish_complete_directories)'";
  }
  if (!asked.empty()) return " -a '(" + asked + ")'";
  return argument.choices.empty() ? "" : " -a " + fishQuoted(joined(argument.choices));
}

std::string fishScript() {
  std::string places = "set -g __lk_places";
  std::string valued = "set -g __lk_valued";
  std::string rules;
  visitTree([&](const Place& place) {
    places += " " + fishQuoted(place.words);
    const auto ruleAt = [&](const std::string& position) {
      return "complete -c lk -n " + fishQuoted("__lk_at '" + place.words + "'" + position);
    };
    const std::string rule = ruleAt("");
    size_t position = 0;
    for (const CommandConfiguration& command : place.configuration.subcommands) {
      rules += ruleAt(" 1") + " -a " + std::string(command.commandName) + " -d " +
               fishQuoted(command.abstract) + "\n";
    }
    for (const Argument& argument : place.arguments) {
      const std::string values = fishValues(argument);
      if (argument.kind == Argument::Kind::positional) {
        const std::string at = ruleAt(" " + std::to_string(++position));
        if (!values.empty()) rules += at + values + "\n";
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
