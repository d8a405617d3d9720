#include "LarkspireCLI/Commands/NotificationsCommand.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/JsonWriter.h"
#include "LKCore/Notifications/LKNotificationSettings.h"
#include "LKCore/Notifications/LKTaskNotificationScheduler.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DateTexts.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

namespace {

constexpr size_t kShownReminders = 10;

// In the order of LKTaskNotificationTiming.
constexpr std::array<std::string_view, 4> kTimingWords = {"morning", "afternoon", "evening",
                                                          "day-before"};

struct UpcomingNotification {
  const LKTask* task = nullptr;
  Instant fireDate;
};

struct NotificationInfo {
  LKNotificationSettings settings;
  bool hasIndex = false;
  size_t eligibleTaskCount = 0;
  std::vector<UpcomingNotification> upcoming;  // by fire date
};

// What will be shown from now on: nothing while reminders are off.
NotificationInfo notificationInfo(CacheReader& cache, Instant now) {
  NotificationInfo info;
  info.settings = LKNotificationSettings::current();
  info.hasIndex = cache.container() != nullptr;
  for (const LKTask* task : cache.fetchTasks()) {
    if (!LKTaskNotificationScheduler::isEligible(*task)) continue;
    ++info.eligibleTaskCount;
    const Instant date = fireDate(*task->dateDue, info.settings.timing);
    if (info.settings.enabled && date > now) info.upcoming.push_back({task, date});
  }
  std::ranges::stable_sort(info.upcoming, {}, &UpcomingNotification::fireDate);
  return info;
}

void writeUpcoming(JsonWriter& json, const UpcomingNotification& upcoming, DateTexts& dates) {
  const TaskRow row = OutputFormatter::taskRow(*upcoming.task, dates);
  json.beginObject();
  if (row.due) json.key("due").string(*row.due);
  if (row.dueDate) json.key("dueDate").string(*row.dueDate);
  json.key("fireDate").string(dates.iso8601(upcoming.fireDate));
  json.key("noteTitle").string(row.noteTitle);
  if (row.priority) json.key("priority").string(*row.priority);
  if (row.project) json.key("project").string(*row.project);
  json.key("taskText").string(row.text);
  json.endObject();
}

std::string notificationJson(const NotificationInfo& info) {
  DateTexts dates;
  std::string out;
  JsonWriter json(out);
  json.beginObject();
  json.key("eligibleTaskCount").integer(static_cast<int64_t>(info.eligibleTaskCount));
  json.key("enabled").boolean(info.settings.enabled);
  json.key("timing").string(kTimingWords[static_cast<size_t>(info.settings.timing)]);
  json.key("timingDescription").string(displayName(info.settings.timing));
  json.key("upcoming").beginArray();
  for (const UpcomingNotification& each : info.upcoming) writeUpcoming(json, each, dates);
  json.endArray();
  json.key("upcomingCount").integer(static_cast<int64_t>(info.upcoming.size()));
  json.endObject();
  return out;
}

// Text of notes without what could command the terminal.
void printUpcoming(const UpcomingNotification& upcoming, DateTexts& dates,
                   const Terminal& terminal) {
  const TaskRow row = OutputFormatter::taskRow(*upcoming.task, dates);
  std::string line =
      "  " + terminal.bold(withoutControls(OutputFormatter::humanTitle(*upcoming.task->note)));
  if (row.priority) line += "  priority:" + *row.priority;
  if (row.project) line += "  project:" + withoutControls(*row.project);
  printLine(line);
  printLine("    " + withoutControls(row.text));
  printLine("    due: " + row.due.value_or(""));
}

void printReport(const NotificationInfo& info, const Terminal& terminal) {
  printLine("  Eligible tasks (active with due date): " + std::to_string(info.eligibleTaskCount));
  printLine("  Upcoming notifications: " + std::to_string(info.upcoming.size()));
  const size_t shown = std::min(kShownReminders, info.upcoming.size());
  DateTexts dates;
  for (size_t i = 0; i < shown; ++i) printUpcoming(info.upcoming[i], dates, terminal);
  if (shown < info.upcoming.size()) {
    printLine("  and " + std::to_string(info.upcoming.size() - shown) + " more");
  }
}

}  // namespace

void NotificationsCommand::declare(ArgumentList& /*arguments*/) {}

void NotificationsCommand::run() {
  resolvedCollection(options.collection, options.quiet);
  CacheReader cache(LKParts::tasks);
  if (options.json) {
    printLine(notificationJson(notificationInfo(cache, Instant::now())));
    return;
  }
  const Terminal terminal = Terminal::ofStandardOutput();
  printLine(terminal.bold("Task Notifications"));
  const LKNotificationSettings settings = LKNotificationSettings::current();
  if (!settings.enabled) {
    printLine("  Notifications are disabled. Enable in Larkspire Preferences.");
    return;
  }
  printLine("  Timing: " + std::string(displayName(settings.timing)));
  const NotificationInfo info = notificationInfo(cache, Instant::now());
  if (!info.hasIndex) {
    printLine("  No index available.");
    return;
  }
  printReport(info, terminal);
}

}  // namespace lk
