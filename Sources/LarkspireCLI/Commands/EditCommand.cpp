#include "LarkspireCLI/Commands/EditCommand.h"

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/PropertySchema.h"
#include "LarkspireCLI/Support/RequiredNote.h"
#include "LarkspireCLI/Support/StandardInput.h"

namespace lk {

namespace {

std::string appended(std::string body, const std::string& text) {
  body += body.ends_with('\n') ? "\n" : "\n\n";
  return body + text + "\n";
}

std::string prependedAfterHeading(const std::string& body, const std::string& text) {
  const size_t lineBefore = body.find("\n#");
  const bool isFirstLine = body.starts_with('#');
  if (!isFirstLine && lineBefore == std::string::npos) return text + "\n\n" + body;
  const size_t heading = isFirstLine ? 0 : lineBefore + 1;
  const size_t end = std::min(body.find('\n', heading), body.size());
  return body.substr(0, end) + "\n\n" + text + body.substr(end);
}

void refuseBoth(bool first, bool second, const char* names) {
  if (first && second) {
    throw CLIError::general(std::string("Use either ") + names + ", not both.");
  }
}

bool hasTextOption(const EditCommand& command) {
  return command.content || command.append || command.prependAfterHeading;
}

std::string newBody(const EditCommand& command, std::string body) {
  if (command.content) body = withLineFeeds(*command.content);
  if (command.append) body = appended(std::move(body), withLineFeeds(*command.append));
  if (command.prependAfterHeading) {
    body = prependedAfterHeading(body, withLineFeeds(*command.prependAfterHeading));
  }
  return body;
}

NoteChange changeOf(const EditCommand& command) {
  NoteChange change;
  const auto properties = command.force ? uncheckedProperties(command.setProperties)
                                        : checkedProperties(command.setProperties, command.options,
                                                            command.removeProperties);
  change.propertyUpdates.insert(properties.begin(), properties.end());
  for (const std::string& key : command.removeProperties) {
    change.propertyUpdates[std::string(text::trimmed(key))] = std::nullopt;
  }
  if (command.archive) change.propertyUpdates["status"] = "archived";
  if (command.unarchive) change.blockTransform = LKNoteFileService::bringBack;
  if (command.favourite || command.unfavourite) change.isFavourite = command.favourite;
  if (hasTextOption(command)) {
    change.bodyTransform = [&command](std::string body) {
      return newBody(command, std::move(body));
    };
  } else if (auto input = pipedInput()) {
    change.bodyTransform = [input](const std::string&) { return *input; };
  }
  return change;
}

}  // namespace

void EditCommand::declare(ArgumentList& arguments) {
  arguments.positional("reference", reference, "Note title or UUID.").completion =
      Completion::noteTitle;
  arguments.option("--content", content, "Replace entire body content.").valueName = "text";
  arguments.option("--append", append, "Append text to the end of the note.").valueName = "text";
  arguments
      .option("--prepend-after-heading", prependAfterHeading,
              "Prepend text after the first heading.")
      .valueName = "text";
  arguments.option("--set-property", setProperties, "Set a user property (key=value).").valueName =
      "key=value";
  Argument& removePropertiesArgument =
      arguments.option("--remove-property", removeProperties, "Remove a user property.");
  removePropertiesArgument.valueName = "key";
  removePropertiesArgument.completion = Completion::property;
  arguments.flag("--favourite", favourite, "Mark as favourite.");
  arguments.flag("--unfavourite", unfavourite, "Remove favourite.");
  arguments.flag("--archive", archive, "Archive this note.");
  arguments.flag("--unarchive", unarchive, "Unarchive this note.");
  arguments.flag("--force", force, "Bypass property schema validation.");
}

void EditCommand::run() {
  const std::filesystem::path collection = resolvedCollection(options.collection, options.quiet);
  refuseBoth(favourite, unfavourite, "--favourite or --unfavourite");
  refuseBoth(archive, unarchive, "--archive or --unarchive");
  const ResolvedNote note = requireNoteIn(collection, options, reference);
  requireWritable(collection);
  const NoteChange changes = changeOf(*this);
  if (!changes.bodyTransform && !changes.blockTransform && changes.propertyUpdates.empty() &&
      !changes.isFavourite) {
    throw CLIError::general("No changes specified. Use --content, --append, --set-property, etc.");
  }
  requireReadableBlock(note.url);
  writeNotes([&] { LKNoteFileService::updateNote(note.url, changes); });
  printMessage(options, "Updated: " + note.title);
}

}  // namespace lk
