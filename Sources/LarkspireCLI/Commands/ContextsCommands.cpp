#include "LarkspireCLI/Commands/ContextsCommands.h"

#include <filesystem>
#include <optional>

#include "LKCore/Navigation/LKTaskContextStore.h"
#include "LKCore/Terminology/LKProjectName.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"
#include "LarkspireCLI/Support/TaskRewrites.h"

namespace lk {

namespace {

// Both commands: `to` is nothing where the context goes, `deed` as in "Stripped context “a” from".
void rewriteContext(const GlobalOptions& options, const std::filesystem::path& collection,
                    const std::string& from, const std::optional<std::string>& to,
                    const std::string& deed, const std::string& advice) {
  requireWritable(collection);
  const RewrittenNotes done = ContextsRewrite::run(collection, options, [&](std::string_view line) {
    return TaskLineEdits::replacingContext(line, from, to);
  });
  if (done.files == 0 && done.kept.empty()) {
    throw CLIError::general("No task carries the context “" + from + "”.");
  }
  if (done.files > 0) {
    printMessage(options, deed + " " + countOf(done.files, "note") + " (" +
                              countOf(done.counts.metaHits, "task") + ").");
  }
  done.kept.refuse("context “" + from + "”", advice);
}

}  // namespace

void ContextsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldNameArgument = arguments.positional("oldName", oldName, "Existing context name.");
  oldNameArgument.valueName = "old-name";
  oldNameArgument.completion = Completion::context;
  arguments.positional("newName", newName, "New context name.").valueName = "new-name";
}

void ContextsRenameCommand::run() {
  const auto collection = resolvedCollection(options.collection, options.quiet);
  const std::string from = LKTaskContextStore::normalised(oldName);
  const std::string to = LKTaskContextStore::normalised(newName);
  if (from.empty() || to.empty()) {
    throw CLIError::general("Both the old and new context names must be non-empty.");
  }
  if (LKProjectName::holdsWhitespace(to) || to.find(',') != std::string::npos) {
    throw CLIError::general("\"" + to + "\" can't be a context: it holds a comma or a line break.");
  }
  if (from == to) throw CLIError::general("The new name is the same as the old one.");
  rewriteContext(options, collection, from, to, "Renamed context “" + from + "” → “" + to + "” in",
                 "Re-run to rename the rest.");
}

void ContextsStripCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Context name to strip.").completion = Completion::context;
}

void ContextsStripCommand::run() {
  const auto collection = resolvedCollection(options.collection, options.quiet);
  const std::string stripped = LKTaskContextStore::normalised(name);
  if (stripped.empty()) {
    throw CLIError::general("The context name to strip must be non-empty.");
  }
  rewriteContext(options, collection, stripped, std::nullopt,
                 "Stripped context “" + stripped + "” from", "Re-run to strip the rest.");
}

}  // namespace lk
