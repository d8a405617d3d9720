#include "LarkspireCLI/Commands/BindCommand.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindThemes.h"
#include "LarkspireCLI/Commands/BindFormats.h"
#include "LarkspireCLI/Commands/BindOutput.h"
#include "LarkspireCLI/Commands/BindPictures.h"
#include "LarkspireCLI/Commands/BindSpecOptions.h"
#include "LarkspireCLI/Support/BindNotes.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/Progress.h"
#include "LarkspireCLI/Support/TagArgument.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// What is bound: a tag, or else the title of a book note.
struct BindSource {
  std::string name;
  bool isBook = false;
};

BindSource bindSource(const BindCommand& command) {
  if (command.tag && command.book) {
    throw CLIError::general("--tag and --book are mutually exclusive. Pick one.");
  }
  if (!command.tag && !command.book) {
    throw CLIError::general("Must specify either --tag <path> or --book \"<note title>\".");
  }
  BindSource source = {
      command.book ? *command.book : std::string(TagArgument::withoutHash(*command.tag)),
      command.book.has_value()};
  if (text::trimmed(source.name).empty()) throw CLIError::general("No source specified.");
  return source;
}

void tellUnknownTheme(const GlobalOptions& options, const std::string& theme) {
  std::string names;
  for (const LKBindThemes::Descriptor& each : LKBindThemes::all) {
    if (each.id == theme) return;
    names.append(names.empty() ? "" : ", ").append(each.id);
  }
  printNote(options, "Warning: There is no theme '" + theme +
                         "', so the book has none. Themes: " + names + ".");
}

std::vector<LKBindNoteInput> gatherInputs(const BindSource& source, BindNotes& notes,
                                          const LKBindSpec& spec) {
  std::vector<LKBindNoteInput> inputs;
  if (source.isBook) {
    inputs.push_back(notes.bookTitled(source.name));
  } else {
    inputs = notes.withTag(source.name);
  }
  try {
    return LKBindNoteChoice::notesOfBook(std::move(inputs), spec, notes.source());
  } catch (const LKBindError& error) {
    throw CLIError::general(error.description());
  }
}

// What stands for the day of making in the book. A build that is to give the same bytes on any day
// says it in the environment, as other tools of such builds read it.
Instant bookDate() {
  const char* given = std::getenv("SOURCE_DATE_EPOCH");
  if (given == nullptr || *given == '\0') return Instant::now();
  static constexpr int64_t kEndOfYear9999 = 253'402'300'799;
  int64_t seconds = 0;
  if (!text::parseInteger(given, seconds) || seconds < 0 || seconds > kEndOfYear9999) {
    throw CLIError::general("SOURCE_DATE_EPOCH is '" + withoutControls(given) +
                            "'. It must be a number of seconds since 1970, up to the year 9999.");
  }
  return {seconds, 0};
}

// A tag's "/" cannot stand in a file name.
std::string defaultName(const BindSource& source, BindCommand::Format format) {
  return text::replacingAll(source.name, "/", "-") + "." + std::string(rawValue(format));
}

// Checked before the work, which may take a while.
BindOutput resolveOutput(const BindCommand& command, const BindSource& source,
                         BindCommand::Format format, const BindNotes& notes) {
  BindOutput output = BindOutput::to(command.output, defaultName(source, format));
  if (format != BindCommand::Format::html) output.requireTaker(text::uppercased(rawValue(format)));
  if (output.file() && notes.holds(*output.file())) {
    throw CLIError::general("The output " + output.file()->string() +
                            " is a note of this collection. Choose another --output.");
  }
  return output;
}

void tellStart(const GlobalOptions& options, const BindSource& source, size_t noteCount,
               BindCommand::Format format) {
  if (options.json) return;
  printNote(options, "Binding " + countOf(noteCount, "note") + " from " +
                         (source.isBook ? "book \"" + source.name + "\"" : source.name) + " as " +
                         std::string(rawValue(format)) + ".");
}

void tellEnd(const GlobalOptions& options, const fs::path& file, size_t noteCount,
             BindCommand::Format format) {
  if (options.json) {
    printLine(printJson(
        {{"format", rawValue(format)}, {"noteCount", noteCount}, {"path", file.string()}}));
  } else {
    printLine("✓ Wrote " + file.string());
  }
}

}  // namespace

void BindCommand::run() {
  const BindSource source = bindSource(*this);
  BindJob job;
  job.subject = {.tagName = source.name,
                 .author = std::string(text::trimmed(author)),
                 .date = bookDate(),
                 .locale = "",
                 .isTitled = source.isBook};
  job.collectionRoot = resolvedCollection(options.collection, options.quiet);
  job.spec = buildSpec(*this);
  BindNotes notes(options);
  job.notes = gatherInputs(source, notes, job.spec);
  const BindCommand::Format resolvedFormat = resolveFormat(*this);
  const BindOutput place = resolveOutput(*this, source, resolvedFormat, notes);
  tellStart(options, source, job.notes.size(), resolvedFormat);
  tellUnknownTheme(options, job.spec.theme);

  Progress progress("Binding", options.quiet);
  if (job.spec.filters.renderMermaid) job.diagrams = diagramsOf(job.notes, options, progress);
  place.write(boundBook(resolvedFormat, job, options, progress));
  if (place.file()) tellEnd(options, *place.file(), job.notes.size(), resolvedFormat);
}

}  // namespace lk
