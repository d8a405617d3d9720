#include "LarkspireCLI/Commands/SearchCommand.h"

namespace lk {

void SearchCommand::declare(ArgumentList& arguments) {
  arguments.positional("query", query, "Search query.");
  arguments.option("--context", context, "Number of context lines to show around matches.")
      .valueName = "lines";
  arguments.flag("--titles-only", titlesOnly, "Search titles only.");
  arguments.flag("--regex", regex, "Use regex pattern.");
  arguments.option("--tag", tag, "Filter by tag.").completion = Completion::tag;
  arguments.flag("--include-subtags", includeSubtags,
                 "Also match sub-tags (e.g. 'projects' matches 'projects/marketing').");
  arguments.option("--limit", limit, "Maximum number of results.").valueName = "count";
}

void SearchCommand::run() {
  throwComesLater("search");
}

}  // namespace lk
