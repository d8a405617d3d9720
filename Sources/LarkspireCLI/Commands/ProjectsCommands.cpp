#include "LarkspireCLI/Commands/ProjectsCommands.h"

#include <array>
#include <filesystem>
#include <functional>
#include <optional>

#include "LKCore/Base/Text.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/LKTagNameRules.h"
#include "LKCore/Terminology/LKProjectName.h"
#include "LKCore/Terminology/LKProjectTerms.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TaskRewrites.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

std::string quotedProject(const std::string& name) {
  return "“" + name + "”";
}

// " 2 notes (1 tag, 3 tasks).", and the failures after it.
void reportProjects(const GlobalOptions& options, const std::string& deed, const std::string& name,
                    const RewrittenNotes& done, const std::string& advice) {
  if (done.kept.empty() || done.files > 0) {
    printMessage(options, deed + " " + countOf(done.files, "note") + " (" +
                              countOf(done.counts.tagHits, "tag") + ", " +
                              countOf(done.counts.metaHits, "task") + ").");
  }
  done.kept.refuse("project " + quotedProject(name), advice);
}

// Runs the change of the registry, which comes last. True when it knew the project.
bool changeRegistry(const std::function<bool()>& change) {
  try {
    return change();
  } catch (const FileError& error) {
    throw CLIError::writeFailed(error.description());
  }
}

void refuseUnused(const RewrittenNotes& done, bool wasRegistered, const std::string& name) {
  if (done.files == 0 && done.kept.empty() && !wasRegistered) {
    throw CLIError::general("No note uses the project " + quotedProject(name) + ".");
  }
}

// What keeps the name from standing in a tag of the words in use.
std::optional<std::string> tagProblem(const std::string& name) {
  return LKTagNameRules::problem(LKProjectTerms::snapshot()->plural + "/" + name);
}

}  // namespace

void ProjectsRenameCommand::declare(ArgumentList& arguments) {
  Argument& oldNameArgument = arguments.positional("oldName", oldName, "Existing project name.");
  oldNameArgument.valueName = "old-name";
  oldNameArgument.completion = Completion::project;
  arguments.positional("newName", newName, "New project name.").valueName = "new-name";
  arguments.flag("--include-subtree", includeSubtree,
                 "Also rename sub-projects (e.g. old/sub → new/sub).");
}

void ProjectsRenameCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::string from(text::trimmed(oldName));
  const std::string to(text::trimmed(newName));
  if (from.empty() || to.empty()) {
    throw CLIError::general("Both the old and new project names must be non-empty.");
  }
  if (!LKProjectName::canStandInNote(to)) {
    throw CLIError::general("\"" + to +
                            "\" can't name a project: a name is one word, e.g. acme/site.");
  }
  if (from == to) throw CLIError::general("The new name is the same as the old one.");
  requireWritable(collection);

  const auto terms = LKProjectTerms::snapshot();
  const auto problem = tagProblem(to);
  const RewrittenNotes done = ProjectsRewrite::run(collection, options, [&](std::string_view body) {
    auto result = LKProjectTextRewrite::rename(body, from, to, includeSubtree, *terms);
    if (problem && result.counts.tagHits > 0) {
      throw CLIError::general("Notes use the project as a tag. New project name: " + *problem);
    }
    return result;
  });
  LKProjectStore& store = LKProjectStore::shared();
  const bool wasRegistered = changeRegistry(
      [&] { return includeSubtree ? store.renameSubtree(from, to) : store.rename(from, to); });
  refuseUnused(done, wasRegistered, from);
  reportProjects(options,
                 "Renamed project " + quotedProject(from) + " → " + quotedProject(to) + " in", from,
                 done, "Re-run to rename the rest.");
}

void ProjectsStripCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Project name to strip.").completion = Completion::project;
}

void ProjectsStripCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::array<std::string, 1> names = {std::string(text::trimmed(name))};
  if (names[0].empty()) throw CLIError::general("The project name to strip must be non-empty.");
  requireWritable(collection);

  const auto terms = LKProjectTerms::snapshot();
  const RewrittenNotes done = ProjectsRewrite::run(collection, options, [&](std::string_view body) {
    return LKProjectTextRewrite::strip(body, names, LKProjectTextRewrite::StripAll{}, *terms);
  });
  const bool wasRegistered =
      changeRegistry([&] { return LKProjectStore::shared().remove(names[0]); });
  refuseUnused(done, wasRegistered, names[0]);
  reportProjects(options, "Stripped project " + quotedProject(names[0]) + " from", names[0], done,
                 "Re-run to strip the rest.");
}

}  // namespace lk
