#include "LarkspireCLI/Support/PropertyArgument.h"

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

namespace {

// Asks the note file format itself, so that no list of its keys has to be kept here.
bool survivesInNoteFile(const PropertyArgument& property) {
  LKFileFrontMatter frontMatter;
  frontMatter.userProperties = {{property.key, property.value}};
  return parseDocument(serialize(frontMatter, "")).frontMatter.userProperties ==
         frontMatter.userProperties;
}

void requireOneLine(const std::string& name, std::string_view part) {
  if (text::splitLines(part).size() == 1) return;
  throw CLIError::propertyValidation("Property \"" + name +
                                     "\" holds a line break. A property is one line.");
}

}  // namespace

std::string readablePropertyName(std::string_view typed) {
  std::string name(text::trimmed(typed));
  if (name.empty()) throw CLIError::propertyValidation("A property needs a name.");
  requireOneLine(name, name);
  if (name.find(':') != std::string::npos) {
    throw CLIError::propertyValidation("Property \"" + name +
                                       "\" holds a colon, which no property name may.");
  }
  return name;
}

PropertyArgument PropertyArgument::parse(std::string_view argument) {
  const size_t equals = argument.find('=');
  if (equals == std::string_view::npos) {
    throw CLIError::general("\"" + std::string(argument) +
                            "\" is not a property. Use key=value, e.g. status=Draft.");
  }
  PropertyArgument property{std::string(text::trimmed(argument.substr(0, equals))),
                            std::string(text::trimmed(argument.substr(equals + 1)))};
  if (property.key.empty()) {
    throw CLIError::propertyValidation("\"" + std::string(argument) +
                                       "\" has no property name before the \"=\".");
  }
  property.key = readablePropertyName(property.key);
  requireOneLine(property.key, property.value);
  if (!survivesInNoteFile(property)) {
    throw CLIError::propertyValidation("'" + property.key +
                                       "' is a reserved system property and cannot be used.");
  }
  return property;
}

}  // namespace lk
