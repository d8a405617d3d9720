#include "LarkspireCLI/CommandTree.h"

#include <gtest/gtest.h>

#include <functional>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Help.h"

namespace lk {
namespace {

void visit(const CommandPath& path, const std::function<void(const CommandPath&)>& visitor) {
  visitor(path);
  for (const CommandConfiguration& command : path.back()->subcommands) {
    CommandPath deeper = path;
    deeper.push_back(&command);
    visit(deeper, visitor);
  }
}

// An entry as one line: <required>, [optional], =string, =*repeatable, =#integer, =default.
std::string shown(const Argument& argument) {
  std::string text = "    ";
  if (argument.kind == Argument::Kind::positional) {
    text += argument.required ? "<" : "[";
    text.append(argument.name).append(argument.required ? ">" : "]");
  } else {
    text += argument.name;
    if (argument.takesValue()) text += "=";
    if (argument.isRepeatable()) text += "*";
    if (std::holds_alternative<int*>(argument.field) ||
        std::holds_alternative<std::optional<int>*>(argument.field)) {
      text += "#";
    }
    if (argument.takesValue()) text += argument.heldText();
    if (argument.kind == Argument::Kind::option && argument.required) text += "!";
  }
  return text.append(" | ").append(argument.help) + "\n";
}

std::string shown(const CommandPath& path) {
  const CommandConfiguration& command = *path.back();
  std::string text = commandLine(path);
  if (!command.defaultSubcommand.empty()) {
    text.append(" (").append(command.defaultSubcommand).append(")");
  }
  text.append(" | ").append(command.abstract).append("\n");
  for (const std::string_view line : text::split(command.discussion, '\n')) {
    if (!line.empty()) text.append("  ").append(line).append("\n");
  }
  const std::unique_ptr<Command> made = makeCommand(command);
  for (const Argument& argument : argumentsOf(*made).entries()) {
    if (!argument.global) text += shown(argument);
  }
  return text;
}

constexpr std::string_view wholeTree = R"(
lk | Larkspire command-line tool — create, read, update, and query notes.
    --version | Show the version.
    --generate-completion-script= | Print a completion script for bash, zsh or fish.
lk collection (info) | Show collection info, or manage collections (switch, add, remove).
lk collection info | Show collection location and statistics (default).
    --finder | Open collection in Finder.
lk collection switch | Switch the CLI's active collection (independent of the app).
  Sets the collection that `lk` commands target by default. This is
  the CLI's own active collection — it never changes what the app
  opens into, so the app always launches where you last left it.
  Accepts a name, UUID, or path. Use --clear to revert to the
  default collection.
    [reference] | Collection name, UUID, or path. Omit when using --clear.
    --clear | Clear the CLI's active-collection override (revert to the default collection).
lk collection add | Register a new collection.
  Validates the folder for safety (rejects system directories, dev projects, etc.).
  Use --force to skip validation (not recommended).
    <path> | Path to the collection folder.
    --name= | Display name for the collection.
    --mode= | Collection mode: larkspire, compatible, or readOnly.
    --force | Skip folder safety validation.
    --activate | Set as the active collection after adding.
lk collection remove | Remove a collection from the registry.
  Removes the collection from the registry only — does NOT delete files on disk.
  You must type the collection name to confirm removal.
  The default collection cannot be removed.
  If the active collection is removed, the default collection becomes active.
    <reference> | Collection name, UUID, or path to remove.
    --confirm= | Type the collection name to confirm removal.
lk collection doctor | Diagnose how files, config, and cache resolve for a collection.
lk collections | List all registered collections.
lk list | List notes with optional filters.
    --tag=* | Filter by tag (repeatable for AND).
    --include-subtags | Also match sub-tags (e.g. 'projects' matches 'projects/marketing').
    --property=* | Filter by property (key=value).
    --modified-after= | Only notes modified after this date (YYYY-MM-DD).
    --modified-before= | Only notes modified before this date (YYYY-MM-DD).
    --favourites | Only show favourites.
    --has-tasks | Only show notes with active tasks.
    --has-overdue | Only show notes with overdue tasks.
    --include-trashed | Include trashed notes.
    --include-archived | Include archived notes.
    --archived | Show only archived notes.
    --include-daily | Include daily notes (excluded by default, matching the app's All Notes view).
    --sort=modified | Sort by: modified, created, title, size.
    --reverse | Reverse sort order.
    --limit=# | Maximum number of results.
lk show | Show a note's content.
    [reference] | Note title or UUID.
    --id= | Look up note by UUID.
    --properties | Show only front matter / properties.
    --body | Show only body (no front matter).
    --tasks | Show tasks in the note.
    --backlinks | Show notes that link to this one.
lk create | Create a new note.
    <title> | Note title.
    --content= | Note body content.
    --from= | Import content from a file.
    --property=* | Set a user property (key=value, repeatable).
    --tag=* | Add a tag (inserted into body).
    --template= | Create from a named template (overrides --content/--from).
    --variable=* | Template variable (key=value, repeatable).
    --open | Open in Larkspire after creating.
    --favourite | Mark the new note as a favourite.
lk daily (show) | Show, create, or append to daily notes.
lk daily show | Show or create a daily note (default).
    --date= | Date (YYYY-MM-DD, 'today', 'yesterday', or natural language).
    --create | Create today's daily note if it doesn't exist.
    --tasks | Show tasks from the daily note.
    --open | Open in Larkspire.
lk daily append | Append text to a daily note (creates if needed).
    [text] | Text to append. Read from standard input when omitted.
    --date= | Date for the daily note (default: today).
lk daily overdue | Insert or refresh the overdue / due-today task block.
    --date= | Date for the daily note (default: today).
lk daily summary | Insert or refresh the activity summary block.
    --date= | Date for the daily note (default: today).
lk edit | Update a note's content or properties.
    <reference> | Note title or UUID.
    --content= | Replace entire body content.
    --append= | Append text to the end of the note.
    --prepend-after-heading= | Prepend text after the first heading.
    --set-property=* | Set a user property (key=value).
    --remove-property=* | Remove a user property.
    --favourite | Mark as favourite.
    --unfavourite | Remove favourite.
    --archive | Archive this note.
    --unarchive | Unarchive this note.
    --force | Bypass property schema validation.
lk delete | Move a note to trash or permanently delete.
    [reference] | Note title or UUID.
    --id= | Look up note by UUID.
    --permanent | Permanently delete (skip trash).
    --empty-trash | Empty the trash directory.
lk restore | Restore a note from the trash.
    [reference] | Trashed note title.
    --id= | Look up the trashed note by UUID.
lk archive | Archive a note (excluded from `lk list` by default).
    [reference] | Note title or UUID.
    --id= | Look up note by UUID.
lk unarchive | Restore an archived note.
    [reference] | Note title or UUID.
    --id= | Look up note by UUID.
lk rename | Rename a note.
    <reference> | Current note title or UUID.
    <newTitle> | New title.
lk properties (list) | Manage property definitions and query property usage.
lk properties list | List all property definitions.
lk properties show | Show details of a property definition.
    <name> | Property name.
lk properties add | Create a new property definition.
    <name> | Property name.
    --type=! | Property type (text, number, date, dateTime, checkbox, singleSelect, multiSelect, url, email, phone, rating).
    --property-options= | Comma-separated options (required for singleSelect/multiSelect).
    --required | Mark this property as required.
lk properties delete | Delete a property definition. Values in notes are preserved.
    <name> | Property name.
    --force | Skip confirmation prompt.
lk properties orphans | Find front matter keys that have no schema definition.
lk properties notes | List notes that use a specific property.
    <name> | Property name.
    --value= | Filter by property value (case-insensitive).
lk templates | List note templates (use `lk create --template` to apply one).
lk tags (list) | List tags, find notes by tag, and rename tags.
lk tags list | List tags, or the notes carrying one tag (the default for `lk tags`).
    [name] | Show notes for this tag.
    --prefix= | Filter tags by prefix.
lk tags rename | Rename a tag (or re-parent it) in every note that uses it.
    <oldPath> | Existing tag path, e.g. work/clients (with or without #).
    <newPath> | New tag path, e.g. clients.
    --merge | Allow merging into a tag that already exists.
lk tasks (list) | List and manage tasks across notes.
lk tasks list | List tasks across notes (the default for `lk tasks`).
    --overdue | Show only overdue tasks.
    --due-today | Show tasks due today.
    --due-tomorrow | Show tasks due tomorrow.
    --due-this-week | Show tasks due this week (today and the next six days).
    --days=# | Show tasks due in the next N days, counting today.
    --priority= | Filter by priority (high, medium, low).
    --note= | Filter by note title.
    --status= | Filter by status (not-started, in-progress, done, cancelled).
    --project= | Filter by project name.
    --context= | Filter by context (matches tasks carrying this context).
    --no-project | Only tasks with no project assigned (inline or inherited).
    --no-context | Only tasks with no context assigned.
    --all | Include done and cancelled tasks.
lk tasks add | Add a task to a note.
    <text> | Task text.
    --note= | Target note title. Omit to add the task to today's daily note (created if needed).
    --due= | Due date (YYYY-MM-DD or natural language).
    --priority= | Priority (high, medium, low).
    --project= | Project to assign.
    --context=* | Context(s) — repeat the flag or comma-separate for several (e.g. --context errand --context phone).
    --status= | Initial status (not-started, in-progress). Default: not-started.
lk tasks set | Amend an existing task's due date, priority, or project.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
    --due= | Set due date (e.g. 2026-04-15, today, next monday).
    --clear-due | Remove the due date.
    --priority= | Set priority (high, medium, low).
    --clear-priority | Remove the priority.
    --project= | Set the project.
    --clear-project | Remove the project.
    --context=* | Set the context(s) — repeat or comma-separate for several. Replaces any existing contexts.
    --clear-context | Remove all contexts.
lk tasks remove | Delete a task line from a note.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
lk tasks complete | Mark a task as done.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
lk tasks cancel | Mark a task as cancelled.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
lk tasks progress | Mark a task as in-progress.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
lk tasks reset | Reset a task to not-started.
    [text] | Task text to match (substring). Omit when using --id.
    --note= | Note title containing the task. Optional: without it the task is found across all notes, and an ambiguous match is refused.
    --id= | Exact task UUID (from `tasks list --json`). Alternative to matching by text.
lk tasks projects | List all projects with task counts.
lk tasks contexts | List all task contexts with task counts.
lk projects | Rename or strip projects across the collection (list: `lk tasks projects`).
lk projects rename | Rename a project across the whole collection.
    <oldName> | Existing project name.
    <newName> | New project name.
    --include-subtree | Also rename sub-projects (e.g. old/sub → new/sub).
lk projects strip | Remove a project's tags and task keywords across the collection.
    <name> | Project name to strip.
lk contexts | Rename or strip task contexts across the collection (list: `lk tasks contexts`).
lk contexts rename | Rename a task context across the whole collection.
    <oldName> | Existing context name.
    <newName> | New context name.
lk contexts strip | Remove a task context across the whole collection.
    <name> | Context name to strip.
lk attachments (list) | List, find orphaned, or prune collection attachments.
lk attachments list | List all attachments with size and reference count.
lk attachments orphans | List attachments not referenced by any note.
lk attachments prune | Delete orphaned (zero-reference) attachments. Includes documents and audio, not just images.
    --force | Actually delete. Without this, only reports what would be deleted.
lk query (list) | List or run saved queries.
lk query list | List saved queries.
lk query run | Run a saved query and list the matching notes.
    <name> | Saved query name (or unambiguous prefix).
lk import | Import .md / .txt files from a folder as notes.
    <directory> | Source directory.
    --tag=* | Tag to add to every imported note (repeatable).
    --recursive | Recurse into subdirectories.
    --dry-run | List what would be imported without writing.
    --vault | Import the folder as an Obsidian vault, with its attachments and tags.
lk backlinks | Show notes that link to a specific note.
    <reference> | Note title or UUID.
    --context | Show the paragraph containing the [[link]].
lk search | Search note content.
    <query> | Search query.
    --context=#0 | Number of context lines to show around matches.
    --titles-only | Search titles only.
    --regex | Use regex pattern.
    --tag= | Filter by tag.
    --include-subtags | Also match sub-tags (e.g. 'projects' matches 'projects/marketing').
    --limit=# | Maximum number of results.
lk open | Open a note in Larkspire.
    [reference] | Note title or UUID.
    --id= | Look up note by UUID.
    --daily | Open today's daily note.
lk notifications | Show notification settings and upcoming task reminders.
lk bind | Bind a manuscript from a tag or single book note (PDF, DOCX, EPUB, or HTML).
    --tag= | Leaf tag path (e.g. 'novel'). Binds every manually-sequenced note under the tag.
    --book= | Title of a single book note (a note marked with the reserved `lk-book: true` property). Binds that one note as a whole manuscript.
    --output= | Output file path (default: <source-name>.<ext>).
    --format= | Output format: pdf, docx, epub, or html. Inferred from --output extension when not given.
    --author= | Author name embedded in headers / title page.
    --spec-file= | Path to a JSON spec file. Overrides preset options below.
    --style=standard | Style preset: standard, paperback, plain. Default: standard.
    --page=letter | Page size: letter, a4, a5, trade-6x9. Default: letter.
    --margin=standard | Margins: standard, narrow, wide, tight. Default: standard.
    --orientation=portrait | Orientation: portrait, landscape. Default: portrait.
    --chapter-heading=numbers-and-titles | Chapter heading: numbers-and-titles, numbers, titles. Default: numbers-and-titles.
    --paragraph-style=larkspire | Line break style: larkspire (each line is a paragraph, matches the editor), commonmark (single \n is a soft break). Default: larkspire.
    --header-footer=published-book | Header/footer: published-book (centered page # at foot), agent-submission (Shunn Author / Title / Page top-right), none. Default: published-book.
    --footnotes=per-page | Footnote placement (DOCX only): per-page (bottom of page, default), end-of-book (endnotes at document end), end-of-chapter (endnotes at end of each chapter).
    --paragraphs=inherit | Paragraph layout: indented (fiction default — first-line indent, no space between), block (technical default — no indent, blank-line gap between paragraphs), inherit (use the chosen --style preset's typography).
    --theme= | Visual theme (HTML/PDF/EPUB): manuscript (default), github, swiss, academic.
    --tasks= | Checklists (task lines): keep (default), strip (remove the lines), or metadata (keep the item, drop inline due:/priority:).
)";

TEST(CommandTree, isTheToldOneWordForWord) {
  std::string tree = "\n";
  visit({&LK::configuration()}, [&](const CommandPath& path) { tree += shown(path); });
  EXPECT_EQ(tree, wholeTree);
}

TEST(CommandTree, givesEveryLeafTheGlobalOptions) {
  visit({&LK::configuration()}, [](const CommandPath& path) {
    const std::unique_ptr<Command> made = makeCommand(*path.back());
    std::string globals;
    for (const Argument& argument : argumentsOf(*made).entries()) {
      if (argument.global) globals.append(argument.name).append("|").append(argument.help) += '\n';
    }
    EXPECT_EQ(globals,
              "--collection|Override collection location (default: auto-detect iCloud/local).\n"
              "--json|Output as JSON instead of human-readable text.\n"
              "--quiet|Suppress non-essential output.\n"
              "--help|Show this help.\n")
        << commandLine(path);
  });
}

TEST(Help, staysWithinTheTerminalsWidth) {
  for (const size_t width : {size_t{60}, size_t{80}, size_t{100}}) {
    visit({&LK::configuration()}, [&](const CommandPath& path) {
      const std::string help = helpText(path, Terminal{.width = width});
      for (const std::string_view line : text::split(help, '\n')) {
        EXPECT_LE(displayWidth(line), width) << line;
        EXPECT_FALSE(line.ends_with(' ')) << line;
      }
    });
  }
}

TEST(Help, teachesACommand) {
  const CommandConfiguration& root = LK::configuration();
  const CommandConfiguration* group = root.subcommand("collection");
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(helpText({&root, group, group->subcommand("remove")}, Terminal{}),
            R"(Remove a collection from the registry.

Usage: lk collection remove <reference> [options]

Removes the collection from the registry only — does NOT delete files on disk.
You must type the collection name to confirm removal.
The default collection cannot be removed.
If the active collection is removed, the default collection becomes active.

Arguments:
  <reference>  Collection name, UUID, or path to remove.

Options:
  --confirm <name>  Type the collection name to confirm removal.

Global options:
  --collection <path>  Override collection location (default: auto-detect
                       iCloud/local).
  --json               Output as JSON instead of human-readable text.
  --quiet              Suppress non-essential output.
  -h, --help           Show this help.
)");
}

TEST(Help, tellsADefaultThatTheTextLeavesOut) {
  const CommandConfiguration& root = LK::configuration();
  const auto has = [&](const char* command, std::string_view part) {
    return helpText({&root, root.subcommand(command)}, Terminal{.width = 200}).find(part) !=
           std::string::npos;
  };
  EXPECT_TRUE(has("list", "Sort by: modified, created, title, size. (default: modified)"));
  EXPECT_TRUE(has("search", "(default: 0)"));
  EXPECT_FALSE(has("bind", "(default: letter)"));
  EXPECT_FALSE(has("bind", "(default: per-page)"));
}

TEST(Terminal, wrapsByWhatIsSeen) {
  using Lines = std::vector<std::string>;
  EXPECT_EQ(wrapped("", 10), Lines({""}));
  EXPECT_EQ(wrapped("one two three", 7), Lines({"one two", "three"}));
  EXPECT_EQ(wrapped("a\n\nb c", 3), Lines({"a", "", "b c"}));
  EXPECT_EQ(wrapped("unbreakable x", 4), Lines({"unbreakable", "x"}));
  EXPECT_EQ(wrapped("日本 ée\u0301", 7), Lines({"日本 ée\u0301"}));
  EXPECT_EQ(wrapped("日本 語", 6), Lines({"日本", "語"}));
  EXPECT_EQ(displayWidth("→ 🙂\u200d e\u0301"), 6U);
}

}  // namespace
}  // namespace lk
