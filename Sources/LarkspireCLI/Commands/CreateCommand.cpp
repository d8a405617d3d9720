#include "LarkspireCLI/Commands/CreateCommand.h"

#include <algorithm>
#include <filesystem>
#include <map>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Templates/FilledTemplate.h"
#include "LKCore/Templates/LKTemplateError.h"
#include "LKCore/Templates/LKTemplateStore.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DeepLink.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/PropertySchema.h"
#include "LarkspireCLI/Support/StandardInput.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCannotCreate = "This collection is read-only. Notes cannot be created.";

std::string importedBody(const std::string& path) {
  std::string bytes;
  try {
    bytes = readFile(path);
  } catch (const FileError& error) {
    throw CLIError::general("Could not read " + error.description());
  }
  if (!text::isValidUTF8(bytes)) {
    throw CLIError::general(path + " is not UTF-8 text. Convert it first, e.g. with iconv.");
  }
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  std::string_view content = bytes;
  if (content.starts_with(kByteOrderMark)) content.remove_prefix(kByteOrderMark.size());
  return stripForeignFrontMatter(content).body;
}

void addTags(std::string& body, const std::vector<std::string>& tags) {
  if (tags.empty()) return;
  if (!body.ends_with('\n')) body += '\n';
  for (size_t i = 0; i < tags.size(); ++i) body += (i == 0 ? "#" : " #") + tags[i];
}

// Exactly so named, or else so named in another case.
LKTemplate templateNamed(const std::string& name) {
  const std::vector<LKTemplate> templates = LKTemplateStore::shared().loadAll();
  for (const auto isSame : {text::equal, text::equalIgnoringCase}) {
    for (const LKTemplate& each : templates) {
      if (isSame(each.name, name)) return each;
    }
  }
  throw CLIError::general("Template not found: " + name + ". Run `lk templates` to list them.");
}

LKTemplateResolver::Values valuesOf(const std::vector<std::string>& variables) {
  LKTemplateResolver::Values values;
  for (const std::string& argument : variables) {
    const size_t equals = argument.find('=');
    if (equals == std::string::npos) {
      throw CLIError::general("\"" + argument +
                              "\" is not a variable. Use key=value, e.g. topic=Plan.");
    }
    const std::string_view key = std::string_view(argument).substr(0, equals);
    values[std::string(text::trimmed(key))] = argument.substr(equals + 1);
  }
  return values;
}

FilledTemplate filledTemplate(const CreateCommand& command) {
  const LKTemplate source = templateNamed(*command.templateName);
  try {
    return filled(source, valuesOf(command.variables), Instant::now(), "");
  } catch (const LKTemplateError& error) {
    throw CLIError::general(error.description())
        .withHint("Values are given with --variable key=value.");
  }
}

// The template's word stands, whatever the schema says.
std::map<std::string, std::string> templateProperties(const FilledTemplate& filled) {
  std::vector<std::string> arguments;
  for (const auto& [key, value] : filled.properties) {
    if (key.find('=') != std::string::npos) {
      throw CLIError::propertyValidation("Property \"" + key + "\" of the template holds a \"=\".");
    }
    arguments.push_back(key);
    arguments.back().append("=").append(value);
  }
  return uncheckedProperties(arguments);
}

// Each tag once.
std::vector<std::string> allTags(const std::vector<std::string>& ofTemplate,
                                 const std::vector<std::string>& arguments) {
  std::vector<std::string> tags;
  for (const std::vector<std::string>* const list : {&ofTemplate, &arguments}) {
    for (const std::string& each : *list) {
      std::string tag = TagArgument::readable(each);
      if (!std::ranges::count(tags, tag)) tags.push_back(std::move(tag));
    }
  }
  return tags;
}

std::string bodySource(const CreateCommand& command) {
  if (command.from) return importedBody(*command.from);
  if (command.content) return withLineFeeds(*command.content);
  return pipedInput().value_or("");
}

}  // namespace

void CreateCommand::declare(ArgumentList& arguments) {
  arguments.positional("title", title, "Note title.");
  arguments.option("--content", content, "Note body content.").valueName = "text";
  Argument& fromArgument = arguments.option("--from", from, "Import content from a file.");
  fromArgument.valueName = "file";
  fromArgument.completion = Completion::file;
  arguments.option("--property", properties, "Set a user property (key=value, repeatable).")
      .valueName = "key=value";
  arguments.option("--tag", tags, "Add a tag (inserted into body).").completion = Completion::tag;
  arguments
      .option("--template", templateName,
              "Create from a named template (overrides --content/--from).")
      .valueName = "name";
  arguments.option("--variable", variables, "Template variable (key=value, repeatable).")
      .valueName = "key=value";
  arguments.flag("--open", open, "Open in Larkspire after creating.");
  arguments.flag("--favourite", favourite, "Mark the new note as a favourite.");
}

void CreateCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  requireWritable(collection, kCannotCreate);
  const FilledTemplate given = templateName ? filledTemplate(*this) : FilledTemplate{};
  NewNote note;
  const bool hasTitle = !text::trimmed(title).empty();
  note.title = LKNoteFilename::sanitize(hasTitle ? title : given.title);
  if (note.title.empty()) throw CLIError::general("Invalid title after sanitisation.");
  note.userProperties = checkedProperties(properties, options);
  note.userProperties.merge(templateProperties(given));
  const std::vector<std::string> readableTags = allTags(given.tags, tags);
  note.body = templateName ? given.body.text : bodySource(*this);
  addTags(note.body, readableTags);
  note.isFavourite = favourite;
  note.noteID = UUID::random();

  fs::path url;
  writeNotes([&] { url = LKNoteFileService::createNote(note, collection); }, kCannotCreate);
  const std::string createdTitle = LKNoteFilename::displayName(url);
  if (options.json) {
    printLine(
        printJson({{"id", note.noteID->text()}, {"title", createdTitle}, {"path", url.string()}}));
  } else {
    printLine("Created: " + createdTitle + " (" + url.string() + ")");
  }
  if (open) openDeepLink(*note.noteID);
}

}  // namespace lk
