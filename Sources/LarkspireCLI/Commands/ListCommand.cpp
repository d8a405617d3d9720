#include "LarkspireCLI/Commands/ListCommand.h"

namespace lk {

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
  throwComesLater("list");
}

}  // namespace lk
