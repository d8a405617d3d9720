#include "LarkspireCLI/Commands/ListCommand.h"

#include <algorithm>
#include <deque>
#include <filesystem>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteRepository/LKNoteFilters.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CountArgument.h"
#include "LarkspireCLI/Support/DateParser.h"
#include "LarkspireCLI/Support/FileScan.h"
#include "LarkspireCLI/Support/NoteOrder.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/PropertyArgument.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace {

std::optional<Instant> startOfDay(const std::optional<std::string>& typed) {
  if (!typed) return std::nullopt;
  const auto day = DateParser::parse(*typed);
  if (day) return day->localStart();
  throw CLIError::general("\"" + *typed + "\" is no date. Use YYYY-MM-DD, e.g. 2026-03-14.");
}

// What the options ask of a note, read once.
class NoteFilter {
 public:
  explicit NoteFilter(const ListCommand& command)
      : command_(command),
        after_(startOfDay(command.modifiedAfter)),
        before_(startOfDay(command.modifiedBefore)) {
    for (const std::string& property : command.properties) {
      properties_.push_back(PropertyArgument::parse(property));
    }
  }

  bool passes(const LKNote& note) const {
    return isWanted(note) && hasTags(note) && hasProperties(note) && isInTime(note) &&
           (!command_.favourites || note.isFavourite) &&
           (!command_.hasTasks || note.activeTaskCount > 0) &&
           (!command_.hasOverdue || LKNoteFilters::hasLiveOverdueTasks(note, now_));
  }

 private:
  bool isWanted(const LKNote& note) const {
    if (note.dailyDate && !command_.includeDaily) return false;
    if (note.isTrashed && !command_.includeTrashed) return false;
    if (command_.archived) return note.isArchived();
    return command_.includeArchived || !note.isArchived();
  }

  bool hasTags(const LKNote& note) const {
    const auto match =
        command_.includeSubtags ? LKNoteFilters::TagMatch::subtree : LKNoteFilters::TagMatch::exact;
    return std::ranges::all_of(command_.tags, [&](const std::string& tag) {
      return LKNoteFilters::hasTag(note, TagArgument::withoutHash(tag), match);
    });
  }

  bool hasProperties(const LKNote& note) const {
    return std::ranges::all_of(properties_, [&](const PropertyArgument& wanted) {
      const auto found = note.userProperties.find(wanted.key);
      return found != note.userProperties.end() && text::equal(found->second, wanted.value);
    });
  }

  bool isInTime(const LKNote& note) const {
    return (!after_ || note.modifiedDate >= *after_) && (!before_ || note.modifiedDate < *before_);
  }

  const ListCommand& command_;
  std::vector<PropertyArgument> properties_;
  std::optional<Instant> after_;
  std::optional<Instant> before_;
  Instant now_ = Instant::now();
};

}  // namespace

void ListCommand::declare(ArgumentList& arguments) {
  arguments.option("--tag", tags, "Filter by tag (repeatable for AND).").completion =
      Completion::tag;
  arguments.flag("--include-subtags", includeSubtags,
                 "Also match sub-tags (e.g. 'projects' matches 'projects/marketing').");
  arguments.option("--property", properties, "Filter by property (key=value).").valueName =
      "key=value";
  arguments
      .option("--modified-after", modifiedAfter,
              "Only notes modified after this date (YYYY-MM-DD).")
      .valueName = "date";
  arguments
      .option("--modified-before", modifiedBefore,
              "Only notes modified before this date (YYYY-MM-DD).")
      .valueName = "date";
  arguments.flag("--favourites", favourites, "Only show favourites.");
  arguments.flag("--has-tasks", hasTasks, "Only show notes with active tasks.");
  arguments.flag("--has-overdue", hasOverdue, "Only show notes with overdue tasks.");
  arguments.flag("--include-trashed", includeTrashed, "Include trashed notes.");
  arguments.flag("--include-archived", includeArchived, "Include archived notes.");
  arguments.flag("--archived", archived, "Show only archived notes.");
  arguments.flag("--include-daily", includeDaily,
                 "Include daily notes (excluded by default, matching the app's All Notes view).");
  Argument& sortArgument =
      arguments.option("--sort", sort, "Sort by: modified, created, title, size.");
  sortArgument.valueName = "order";
  sortArgument.choices = {"modified", "created", "title", "size"};
  arguments.flag("--reverse", reverse, "Reverse sort order.");
  arguments.option("--limit", limit, "Maximum number of results.").valueName = "count";
}

void ListCommand::run() {
  const std::filesystem::path collection = resolvedCollection(options.collection, options.quiet);
  const NoteFilter filter(*this);
  const auto most = countArgument("--limit", limit);
  CacheReader cache(hasOverdue ? LKParts::tags | LKParts::taskLines : LKParts::tags);
  std::deque<LKNote> scanned;
  std::vector<LKNote*> notes;
  if (cache.container() != nullptr) {
    notes = cache.fetchNotes();
  } else {
    printNote(options, "Warning: no index available. Scanning files directly.");
    scanned = scanNotesFromFiles(collection);
    for (LKNote& note : scanned) notes.push_back(&note);
  }
  std::erase_if(notes, [&](const LKNote* note) { return !filter.passes(*note); });
  sortNotes(notes, noteOrder(sort));
  if (reverse) std::ranges::reverse(notes);
  if (most && *most < notes.size()) notes.resize(*most);
  printLine(OutputFormatter::formatNoteList(notes, options.json, Terminal::ofStandardOutput()));
}

}  // namespace lk
