#pragma once

// Reminders of tasks with a due date. The notification centre's pending requests are made to follow
// the tasks; what to change is worked out by functions of plain data.
//
//     LKTaskNotificationScheduler scheduler(center, collectionID, markDone);
//     scheduler.registerCategories();
//     LKTaskCacheSync::setReminders([&](LKContext& index) { scheduler.reconcile(index); });
//     center.onResponse = [&](const auto& response) { scheduler.handleAction(response); };
//
// Used on one thread. Nothing throws: a reminder that fails is logged.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/Notifications/LKNotificationCenter.h"
#include "LKCore/Notifications/LKNotificationSettings.h"

namespace lk {

class LKTaskNotificationScheduler {
 public:
  static constexpr const char* identifierPrefix = "lk-task-";  // and the task's id
  static constexpr const char* snoozePrefix = "lk-snooze-";    // likewise
  static constexpr const char* markDoneFailedPrefix = "lk-markdone-failed-";

  static constexpr const char* taskCategoryIdentifier = "lk-task-category";
  static constexpr const char* snoozeHourActionID = "lk-action-snooze-1h";
  static constexpr const char* snoozeTomorrowActionID = "lk-action-snooze-tomorrow";
  static constexpr const char* markDoneActionID = "lk-action-mark-done";

  // One task that a reminder is about.
  struct TaskInfo {
    UUID id;
    std::string text;
    Day dueDate;
    std::string noteTitle;
    UUID noteID;
    UUID collectionID;

    bool operator==(const TaskInfo&) const = default;
  };

  // What has to be done to the pending requests.
  struct Changes {
    std::vector<std::string> removed;  // identifiers
    std::vector<LKNotificationRequest> added;
    std::vector<LKNotificationRequest> replaced;

    bool operator==(const Changes&) const = default;
  };

  // LKTaskFileSurgeon::markDone, or what a host puts in its place.
  using MarkDone =
      std::function<bool(const UUID& noteID, const UUID& taskID, const UUID& collectionID)>;

  // The centre must outlive the scheduler; an answer of it that comes later than that is dropped.
  LKTaskNotificationScheduler(LKNotificationCenter& center, const UUID& collectionID,
                              MarkDone markDone, Clock clock = Instant::now);

  // The host's scheduler; null until the host has set one.
  static std::shared_ptr<LKTaskNotificationScheduler> shared();
  static void setShared(std::shared_ptr<LKTaskNotificationScheduler> scheduler);

  // May change what a notification says before it is scheduled.
  std::function<void(LKNotificationContent& content, const TaskInfo& task)> contentDecorator;
  // Where the settings come from.
  std::function<LKNotificationSettings()> settings = LKNotificationSettings::current;

  // Makes the pending requests those of the index's tasks, or none when reminders are off. What
  // the user snoozed stays. The tasks are read before this returns; the centre may answer later.
  void reconcile(LKContext& index);

  void handleAction(const LKNotificationResponse& response);
  void registerCategories();
  void removeAllTaskNotifications();

  // True for an active task with a due date, of a note that is neither in the trash nor archived.
  static bool isEligible(const LKTask& task);

  // The index's eligible tasks, by due day. Throws LKStoreError.
  static std::vector<TaskInfo> fetchActiveTasksWithDueDates(LKContext& index,
                                                            const UUID& collectionID);

  // --- Pure ---

  static LKNotificationRequest request(const TaskInfo& task, LKTaskNotificationTiming timing);
  // `ofTasks` are the requests of all eligible tasks; those should be pending whose fire date is
  // after `now`. Of `pending` those count whose identifier has `identifierPrefix`; one whose fire
  // date is its task's stays as it is, also when that time has come: it is still to be shown.
  static Changes changes(const std::vector<LKNotificationRequest>& pending,
                         const std::vector<LKNotificationRequest>& ofTasks, Instant now);

 private:
  std::vector<LKNotificationRequest> requestsOfTasks(LKContext& index) const;
  void schedule(const LKNotificationRequest& request, const char* failure);
  void remove(const std::vector<std::string>& identifiers);
  void apply(const Changes& changes);
  void fetchPending(const LKNotificationCenter::Pending& then);
  void snooze(const LKNotificationRequest& request, Instant until);
  void markDone(const LKNotificationRequest& request);

  LKNotificationCenter& center_;
  UUID collectionID_;
  MarkDone markDone_;
  Clock clock_;
  std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
};

}  // namespace lk
