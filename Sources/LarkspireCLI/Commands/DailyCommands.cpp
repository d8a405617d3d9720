#include "LarkspireCLI/Commands/DailyCommands.h"

namespace lk {

void DailyShowCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date (YYYY-MM-DD, 'today', 'yesterday', or natural language).");
  arguments.flag("--create", create, "Create today's daily note if it doesn't exist.");
  arguments.flag("--tasks", tasks, "Show tasks from the daily note.");
  arguments.flag("--open", open, "Open in Larkspire.");
}

void DailyShowCommand::run() {
  throwComesLater("daily show");
}

void DailyAppendCommand::declare(ArgumentList& arguments) {
  arguments.positional("text", text, "Text to append. Read from standard input when omitted.");
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailyAppendCommand::run() {
  throwComesLater("daily append");
}

void DailyOverdueCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailyOverdueCommand::run() {
  throwComesLater("daily overdue");
}

void DailySummaryCommand::declare(ArgumentList& arguments) {
  arguments.option("--date", date, "Date for the daily note (default: today).");
}

void DailySummaryCommand::run() {
  throwComesLater("daily summary");
}

}  // namespace lk
