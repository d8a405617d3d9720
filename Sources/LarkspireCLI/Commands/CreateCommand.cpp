#include "LarkspireCLI/Commands/CreateCommand.h"

#include <filesystem>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
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
  if (templateName) throwComesLater("create --template");
  NewNote note;
  note.title = LKNoteFilename::sanitize(title);
  if (note.title.empty()) throw CLIError::general("Invalid title after sanitisation.");
  note.userProperties = checkedProperties(properties, options);
  std::vector<std::string> readableTags;
  for (const std::string& tag : tags) readableTags.push_back(TagArgument::readable(tag));
  note.body = bodySource(*this);
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
