#include "LarkspireCLI/CommandTree.h"

#include <iterator>

#include "LarkspireCLI/Commands/ArchiveCommands.h"
#include "LarkspireCLI/Commands/AttachmentsCommands.h"
#include "LarkspireCLI/Commands/BacklinksCommand.h"
#include "LarkspireCLI/Commands/BindCommand.h"
#include "LarkspireCLI/Commands/CollectionCommands.h"
#include "LarkspireCLI/Commands/CollectionsCommand.h"
#include "LarkspireCLI/Commands/ContextsCommands.h"
#include "LarkspireCLI/Commands/CreateCommand.h"
#include "LarkspireCLI/Commands/DailyCommands.h"
#include "LarkspireCLI/Commands/DeleteCommand.h"
#include "LarkspireCLI/Commands/EditCommand.h"
#include "LarkspireCLI/Commands/ImportCommand.h"
#include "LarkspireCLI/Commands/ListCommand.h"
#include "LarkspireCLI/Commands/NotificationsCommand.h"
#include "LarkspireCLI/Commands/OpenCommand.h"
#include "LarkspireCLI/Commands/ProjectsCommands.h"
#include "LarkspireCLI/Commands/PropertiesCommands.h"
#include "LarkspireCLI/Commands/QueryCommands.h"
#include "LarkspireCLI/Commands/RenameCommand.h"
#include "LarkspireCLI/Commands/RestoreCommand.h"
#include "LarkspireCLI/Commands/SearchCommand.h"
#include "LarkspireCLI/Commands/ShowCommand.h"
#include "LarkspireCLI/Commands/TagsCommands.h"
#include "LarkspireCLI/Commands/TasksAddCommand.h"
#include "LarkspireCLI/Commands/TasksGroupingCommands.h"
#include "LarkspireCLI/Commands/TasksListCommand.h"
#include "LarkspireCLI/Commands/TasksSetCommand.h"
#include "LarkspireCLI/Commands/TasksTransitionCommands.h"
#include "LarkspireCLI/Commands/TemplatesCommand.h"

namespace lk {

namespace {

template <typename Leaf>
std::unique_ptr<Command> make() {
  return std::make_unique<Leaf>();
}

// The tables are constants of the program: reading them costs nothing, and a command comes into
// being only when it is asked for.

constexpr CommandConfiguration collectionSubcommands[] = {
    {.commandName = "info",
     .abstract = "Show collection location and statistics (default).",
     .make = make<CollectionInfoCommand>},
    {.commandName = "switch",
     .abstract = "Switch the CLI's active collection (independent of the app).",
     .discussion = "Sets the collection that `lk` commands target by default. This is\n"
                   "the CLI's own active collection — it never changes what the app\n"
                   "opens into, so the app always launches where you last left it.\n"
                   "Accepts a name, UUID, or path. Use --clear to revert to the\n"
                   "default collection.",
     .make = make<CollectionSwitchCommand>},
    {.commandName = "add",
     .abstract = "Register a new collection.",
     .discussion =
         "Validates the folder for safety (rejects system directories, dev projects, etc.).\n"
         "Use --force to skip validation (not recommended).",
     .make = make<CollectionAddCommand>},
    {.commandName = "remove",
     .abstract = "Remove a collection from the registry.",
     .discussion =
         "Removes the collection from the registry only — does NOT delete files on disk.\n"
         "You must type the collection name to confirm removal.\n"
         "The default collection cannot be removed.\n"
         "If the active collection is removed, the default collection becomes active.",
     .make = make<CollectionRemoveCommand>},
    {.commandName = "doctor",
     .abstract = "Diagnose how files, config, and cache resolve for a collection.",
     .make = make<CollectionDoctorCommand>},
};

constexpr CommandConfiguration dailySubcommands[] = {
    {.commandName = "show",
     .abstract = "Show or create a daily note (default).",
     .make = make<DailyShowCommand>},
    {.commandName = "append",
     .abstract = "Append text to a daily note (creates if needed).",
     .make = make<DailyAppendCommand>},
    {.commandName = "overdue",
     .abstract = "Insert or refresh the overdue / due-today task block.",
     .make = make<DailyOverdueCommand>},
    {.commandName = "summary",
     .abstract = "Insert or refresh the activity summary block.",
     .make = make<DailySummaryCommand>},
};

constexpr CommandConfiguration propertiesSubcommands[] = {
    {.commandName = "list",
     .abstract = "List all property definitions.",
     .make = make<PropertiesListCommand>},
    {.commandName = "show",
     .abstract = "Show details of a property definition.",
     .make = make<PropertiesShowCommand>},
    {.commandName = "add",
     .abstract = "Create a new property definition.",
     .make = make<PropertiesAddCommand>},
    {.commandName = "delete",
     .abstract = "Delete a property definition. Values in notes are preserved.",
     .make = make<PropertiesDeleteCommand>},
    {.commandName = "orphans",
     .abstract = "Find front matter keys that have no schema definition.",
     .make = make<PropertiesOrphansCommand>},
    {.commandName = "notes",
     .abstract = "List notes that use a specific property.",
     .make = make<PropertiesNotesCommand>},
};

constexpr CommandConfiguration tagsSubcommands[] = {
    {.commandName = "list",
     .abstract = "List tags, or the notes carrying one tag (the default for `lk tags`).",
     .make = make<TagsListCommand>},
    {.commandName = "rename",
     .abstract = "Rename a tag (or re-parent it) in every note that uses it.",
     .make = make<TagsRenameCommand>},
};

constexpr CommandConfiguration tasksSubcommands[] = {
    {.commandName = "list",
     .abstract = "List tasks across notes (the default for `lk tasks`).",
     .make = make<TasksListCommand>},
    {.commandName = "add", .abstract = "Add a task to a note.", .make = make<TasksAddCommand>},
    {.commandName = "set",
     .abstract = "Amend an existing task's due date, priority, or project.",
     .make = make<TasksSetCommand>},
    {.commandName = "remove",
     .abstract = "Delete a task line from a note.",
     .make = make<TasksRemoveCommand>},
    {.commandName = "complete",
     .abstract = "Mark a task as done.",
     .make = make<TasksCompleteCommand>},
    {.commandName = "cancel",
     .abstract = "Mark a task as cancelled.",
     .make = make<TasksCancelCommand>},
    {.commandName = "progress",
     .abstract = "Mark a task as in-progress.",
     .make = make<TasksProgressCommand>},
    {.commandName = "reset",
     .abstract = "Reset a task to not-started.",
     .make = make<TasksResetCommand>},
    {.commandName = "projects",
     .abstract = "List all projects with task counts.",
     .make = make<TasksProjectsCommand>},
    {.commandName = "contexts",
     .abstract = "List all task contexts with task counts.",
     .make = make<TasksContextsCommand>},
};

constexpr CommandConfiguration projectsSubcommands[] = {
    {.commandName = "rename",
     .abstract = "Rename a project across the whole collection.",
     .make = make<ProjectsRenameCommand>},
    {.commandName = "strip",
     .abstract = "Remove a project's tags and task keywords across the collection.",
     .make = make<ProjectsStripCommand>},
};

constexpr CommandConfiguration contextsSubcommands[] = {
    {.commandName = "rename",
     .abstract = "Rename a task context across the whole collection.",
     .make = make<ContextsRenameCommand>},
    {.commandName = "strip",
     .abstract = "Remove a task context across the whole collection.",
     .make = make<ContextsStripCommand>},
};

constexpr CommandConfiguration attachmentsSubcommands[] = {
    {.commandName = "list",
     .abstract = "List all attachments with size and reference count.",
     .make = make<AttachmentsListCommand>},
    {.commandName = "orphans",
     .abstract = "List attachments not referenced by any note.",
     .make = make<AttachmentsOrphansCommand>},
    {.commandName = "prune",
     .abstract = "Delete orphaned (zero-reference) attachments. Includes documents and audio, not "
                 "just images.",
     .make = make<AttachmentsPruneCommand>},
};

constexpr CommandConfiguration querySubcommands[] = {
    {.commandName = "list", .abstract = "List saved queries.", .make = make<QueryListCommand>},
    {.commandName = "run",
     .abstract = "Run a saved query and list the matching notes.",
     .make = make<QueryRunCommand>},
};

constexpr CommandConfiguration commands[] = {
    {.commandName = "collection",
     .abstract = "Show collection info, or manage collections (switch, add, remove).",
     .defaultSubcommand = "info",
     .subcommands = collectionSubcommands},
    {.commandName = "collections",
     .abstract = "List all registered collections.",
     .make = make<CollectionsCommand>},
    {.commandName = "list",
     .abstract = "List notes with optional filters.",
     .make = make<ListCommand>},
    {.commandName = "show", .abstract = "Show a note's content.", .make = make<ShowCommand>},
    {.commandName = "create", .abstract = "Create a new note.", .make = make<CreateCommand>},
    {.commandName = "daily",
     .abstract = "Show, create, or append to daily notes.",
     .defaultSubcommand = "show",
     .subcommands = dailySubcommands},
    {.commandName = "edit",
     .abstract = "Update a note's content or properties.",
     .make = make<EditCommand>},
    {.commandName = "delete",
     .abstract = "Move a note to trash or permanently delete.",
     .make = make<DeleteCommand>},
    {.commandName = "restore",
     .abstract = "Restore a note from the trash.",
     .make = make<RestoreCommand>},
    {.commandName = "archive",
     .abstract = "Archive a note (excluded from `lk list` by default).",
     .make = make<ArchiveCommand>},
    {.commandName = "unarchive",
     .abstract = "Restore an archived note.",
     .make = make<UnarchiveCommand>},
    {.commandName = "rename", .abstract = "Rename a note.", .make = make<RenameCommand>},
    {.commandName = "properties",
     .abstract = "Manage property definitions and query property usage.",
     .defaultSubcommand = "list",
     .subcommands = propertiesSubcommands},
    {.commandName = "templates",
     .abstract = "List note templates (use `lk create --template` to apply one).",
     .make = make<TemplatesCommand>},
    {.commandName = "tags",
     .abstract = "List tags, find notes by tag, and rename tags.",
     .defaultSubcommand = "list",
     .subcommands = tagsSubcommands},
    {.commandName = "tasks",
     .abstract = "List and manage tasks across notes.",
     .defaultSubcommand = "list",
     .subcommands = tasksSubcommands},
    {.commandName = "projects",
     .abstract = "Rename or strip projects across the collection (list: `lk tasks projects`).",
     .subcommands = projectsSubcommands},
    {.commandName = "contexts",
     .abstract = "Rename or strip task contexts across the collection (list: `lk tasks contexts`).",
     .subcommands = contextsSubcommands},
    {.commandName = "attachments",
     .abstract = "List, find orphaned, or prune collection attachments.",
     .defaultSubcommand = "list",
     .subcommands = attachmentsSubcommands},
    {.commandName = "query",
     .abstract = "List or run saved queries.",
     .defaultSubcommand = "list",
     .subcommands = querySubcommands},
    {.commandName = "import",
     .abstract = "Import .md / .txt files from a folder as notes.",
     .make = make<ImportCommand>},
    {.commandName = "backlinks",
     .abstract = "Show notes that link to a specific note.",
     .make = make<BacklinksCommand>},
    {.commandName = "search", .abstract = "Search note content.", .make = make<SearchCommand>},
    {.commandName = "open", .abstract = "Open a note in Larkspire.", .make = make<OpenCommand>},
    {.commandName = "notifications",
     .abstract = "Show notification settings and upcoming task reminders.",
     .make = make<NotificationsCommand>},
    {.commandName = "bind",
     .abstract = "Bind a manuscript from a tag or single book note (PDF, DOCX, EPUB, or HTML).",
     .make = make<BindCommand>},
};

constexpr CommandConfiguration root = {
    .commandName = "lk",
    .abstract = "Larkspire command-line tool — create, read, update, and query notes.",
    .subcommands = commands};

}  // namespace

const CommandConfiguration* CommandConfiguration::subcommand(std::string_view name) const {
  for (const CommandConfiguration& candidate : subcommands) {
    if (candidate.commandName == name) return &candidate;
  }
  return nullptr;
}

void RootCommand::declare(ArgumentList& arguments) {
  arguments.flag("--version", version, "Show the version.");
  Argument& shell = arguments.option("--generate-completion-script", completionShell,
                                     "Print a completion script for bash, zsh or fish.");
  shell.valueName = "shell";
  shell.choices.assign(std::begin(completionShells), std::end(completionShells));
}

std::unique_ptr<Command> makeCommand(const CommandConfiguration& configuration) {
  if (!configuration.isGroup()) return configuration.make();
  if (&configuration == &root) return std::make_unique<RootCommand>();
  return std::make_unique<GroupCommand>();
}

std::string commandLine(const CommandPath& path) {
  std::string words;
  for (const CommandConfiguration* command : path) {
    if (!words.empty()) words += ' ';
    words += command->commandName;
  }
  return words;
}

const CommandConfiguration& LK::configuration() {
  return root;
}

}  // namespace lk
