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

}  // namespace

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
  if (text::splitLines(property.key).size() > 1 || text::splitLines(property.value).size() > 1) {
    throw CLIError::propertyValidation("Property \"" + property.key +
                                       "\" holds a line break. A property is one line.");
  }
  if (property.key.find(':') != std::string::npos) {
    throw CLIError::propertyValidation("Property \"" + property.key +
                                       "\" holds a colon, which no property name may.");
  }
  if (!survivesInNoteFile(property)) {
    throw CLIError::propertyValidation("'" + property.key +
                                       "' is a reserved system property and cannot be used.");
  }
  return property;
}

}  // namespace lk
