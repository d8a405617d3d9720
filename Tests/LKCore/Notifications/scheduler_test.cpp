// Reminders follow the tasks: what is pending after each turn, and what the user's answers do.

#include "LKCore/Notifications/LKTaskNotificationScheduler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/CacheSync/StoreTaskCache.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/Tasks/LKTaskFileSurgeon.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

using Scheduler = LKTaskNotificationScheduler;
using Timing = LKTaskNotificationTiming;

// A centre that shows nothing; it answers when it is told to.
class MemoryCenter final : public LKNotificationCenter {
 public:
  void fetchPending(Pending then) override { questions.push_back(std::move(then)); }
  void add(const LKNotificationRequest& request) override {
    if (refuses) throw Error("no room");
    ++additions;
    pending[request.identifier] = request;
  }
  void removePending(const std::vector<std::string>& identifiers) override {
    for (const std::string& identifier : identifiers) pending.erase(identifier);
  }
  void registerCategory(const std::string& identifier,
                        const std::vector<LKNotificationAction>& actions) override {
    categories[identifier] = actions;
  }

  void answer() {
    for (const Pending& then : std::exchange(questions, {})) {
      std::vector<LKNotificationRequest> requests;
      for (const auto& [identifier, request] : pending) requests.push_back(request);
      then(requests);
    }
  }

  std::vector<Pending> questions;
  std::map<std::string, LKNotificationRequest> pending;
  std::map<std::string, std::vector<LKNotificationAction>> categories;
  int additions = 0;
  bool refuses = false;
};

class Reminders : public testing::Test {
 protected:
  Reminders() {
    setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
    tzset();
    now = at("2026-03-20T09:00");
    scheduler->settings = [this] { return settings; };
  }
  ~Reminders() override {
    setenv("TZ", "UTC", 1);
    tzset();
  }

  static Instant at(const char* minute) {
    return LKDateOnly::machineFormatter("yyyy-MM-dd'T'HH:mm")->date(minute).value();
  }

  LKTask& task(const std::string& text, std::optional<Day> due, LKNote& of) {
    LKTask row;
    row.id = UUID::random();
    row.text = text;
    row.dateDue = due;
    LKTask& added = index->tasks().insert(std::move(row));
    setNote(added, &of);
    return added;
  }
  static std::string identifierOf(const LKTask& of) {
    return Scheduler::identifierPrefix + of.id.text();
  }

  void reconcile() {
    scheduler->reconcile(*index);
    center.answer();
  }

  // "Sow 2026-03-20T09:00", by text.
  std::vector<std::string> pending() const {
    std::vector<std::string> shown;
    for (const auto& [identifier, request] : center.pending) {
      const std::string& body = request.content.body;
      shown.push_back(body.substr(0, body.find('\n')) + " " +
                      LKDateOnly::localMinute(request.fireDate.value_or(Instant{})));
    }
    std::ranges::sort(shown);
    return shown;
  }

  LKNotificationSettings settings = {true, Timing::morningOf};
  Instant now;
  MemoryCenter center;
  std::unique_ptr<LKContext> index = makeMemoryStore();
  LKNote& note = index->notes().insert(LKNote("Plan", ""));
  StoreTaskCache cache = StoreTaskCache(*index, [this] { return now; });
  LKTaskFileSurgeon surgeon = LKTaskFileSurgeon(&cache, [this] { return now; });
  std::unique_ptr<Scheduler> scheduler = std::make_unique<Scheduler>(
      center, UUID::random(),
      [this](const UUID& noteID, const UUID& taskID, const UUID& collectionID) {
        return surgeon.markDone(noteID, taskID, collectionID);
      },
      [this] { return now; });
};

using Shown = std::vector<std::string>;

TEST_F(Reminders, FireAtTheHourOnTheClocks) {
  const struct {
    const char* name;
    Day due;
    Timing timing;
    const char* date;
  } rows[] = {
      {"afternoon", {2026, 3, 20}, Timing::afternoonOf, "2026-03-20T14:00"},
      {"evening as the clocks go on", {2026, 3, 8}, Timing::eveningOf, "2026-03-08T17:00"},
      {"morning as they go back", {2026, 11, 1}, Timing::morningOf, "2026-11-01T09:00"},
      {"the leap day before", {2028, 3, 1}, Timing::dayBefore, "2028-02-29T09:00"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(LKDateOnly::localMinute(fireDate(row.due, row.timing)), row.date) << row.name;
  }
}

TEST_F(Reminders, FollowTheTasks) {
  LKTask& sow = task("Sow", Day{2026, 3, 21}, note);
  LKTask& rake = task("Rake", Day{2026, 3, 22}, note);
  task("Today, and nine has struck", Day{2026, 3, 20}, note);
  task("Some day", std::nullopt, note);
  task("Done", Day{2026, 3, 22}, note).isComplete = true;
  LKNote& trashed = index->notes().insert(LKNote("Trashed", ""));
  trashed.isTrashed = true;
  task("In the trash", Day{2026, 3, 22}, trashed);
  LKNote& archived = index->notes().insert(LKNote("Archived", ""));
  archived.status = "archived";
  task("Archived", Day{2026, 3, 22}, archived);
  const LKNotificationRequest snoozed = {"lk-snooze-1", {}, at("2026-03-20T10:00")};
  center.add(snoozed);
  reconcile();
  EXPECT_EQ(center.pending.erase(snoozed.identifier), 1U) << "not a reminder of a task";
  EXPECT_EQ(pending(), (Shown{"Rake 2026-03-22T09:00", "Sow 2026-03-21T09:00"}));
  reconcile();
  EXPECT_EQ(center.additions, 3) << "nothing to change";
  sow.isComplete = true;
  rake.dateDue = Day{2026, 3, 23};
  reconcile();
  EXPECT_EQ(pending(), Shown{"Rake 2026-03-23T09:00"});
  settings.timing = Timing::dayBefore;
  center.refuses = true;
  reconcile();
  EXPECT_EQ(pending(), Shown{"Rake 2026-03-23T09:00"}) << "a refusal is no end";
  center.refuses = false;
  reconcile();
  EXPECT_EQ(pending(), Shown{"Rake 2026-03-22T09:00"});
  now = at("2026-03-22T09:00");
  reconcile();
  EXPECT_EQ(pending(), Shown{"Rake 2026-03-22T09:00"}) << "due to be shown, and not shown yet";
  settings.timing = Timing::morningOf;
  now = at("2026-03-23T09:00");
  reconcile();
  EXPECT_EQ(pending(), Shown{}) << "another time, and that one has passed too";
  settings.enabled = false;
  center.pending[snoozed.identifier] = snoozed;
  reconcile();
  EXPECT_EQ(center.pending.size(), 1U) << "what was snoozed stays";
  scheduler->reconcile(*index);
  scheduler.reset();
  center.answer();  // too late, and harmless
}

TEST_F(Reminders, SayWhatIsDueAndOfferActions) {
  const LKTask& sow = task("Sow", Day{2026, 3, 21}, note);
  scheduler->registerCategories();
  scheduler->contentDecorator = [](LKNotificationContent& content,
                                   const Scheduler::TaskInfo& info) {
    content.userInfo["dueDate"] = LKDateOnly::text(info.dueDate);
  };
  reconcile();
  const LKNotificationContent content = center.pending.at(identifierOf(sow)).content;
  EXPECT_EQ(content.title, "Task Due");
  EXPECT_EQ(content.subtitle, "Today");
  EXPECT_EQ(content.body, "Sow\nPlan");
  EXPECT_EQ(content.userInfo.at("dueDate"), "2026-03-21");
  EXPECT_EQ(center.categories.at(content.categoryIdentifier),
            (std::vector<LKNotificationAction>{
                {"lk-action-snooze-1h", "Snooze 1 Hour"},
                {"lk-action-snooze-tomorrow", "Snooze Until Tomorrow (9 AM)"},
                {"lk-action-mark-done", "Mark Done"}}));
}

TEST_F(Reminders, ObeyTheUsersAnswer) {
  const LKTask& sow = task("Sow", Day{2026, 3, 21}, note);
  const test::TempFolder folder;
  note.fileURL = folder / "Plan.md";
  test::writeWhole(*note.fileURL, "- [ ] Sow due:2026-03-21\n");
  reconcile();
  const LKNotificationRequest request = center.pending.at(identifierOf(sow));
  now = at("2026-03-21T23:30");
  center.pending.clear();
  scheduler->handleAction({Scheduler::snoozeHourActionID, request});
  EXPECT_EQ(pending(), Shown{"Sow 2026-03-22T00:30"});
  scheduler->handleAction({Scheduler::snoozeTomorrowActionID, request});
  EXPECT_EQ(pending(), Shown{"Sow 2026-03-22T09:00"}) << "in place of the first";
  scheduler->handleAction({"default", request});
  scheduler->handleAction({Scheduler::markDoneActionID, request});
  EXPECT_EQ(test::readWhole(*note.fileURL), "- [x] Sow due:2026-03-21 done:2026-03-21\n");
  EXPECT_EQ(center.pending.size(), 1U);
  scheduler->handleAction({Scheduler::markDoneActionID, request});
  const LKNotificationRequest& notice = center.pending.at("lk-markdone-failed-" + sow.id.text());
  EXPECT_EQ(notice.content.title, "Couldn't Complete Task") << "it is done already";
  EXPECT_EQ(notice.content.body, "Open the note to mark it done — the task may have changed.");
  EXPECT_EQ(notice.fireDate, std::nullopt);
}

}  // namespace
}  // namespace lk
