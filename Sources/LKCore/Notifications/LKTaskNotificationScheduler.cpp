#include "LKCore/Notifications/LKTaskNotificationScheduler.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "LKCore/Base/Log.h"

namespace lk {

namespace {

constexpr int64_t kSnoozeSeconds = 3600;
constexpr int kSnoozeMorningHour = 9;

constexpr const char* kTaskIDKey = "taskID";
constexpr const char* kNoteIDKey = "noteID";
constexpr const char* kCollectionIDKey = "collectionID";

struct SharedScheduler {
  std::mutex mutex;
  std::shared_ptr<LKTaskNotificationScheduler> scheduler;
};

SharedScheduler& sharedScheduler() {
  static SharedScheduler shared;
  return shared;
}

bool isTaskRequest(const LKNotificationRequest& request) {
  return request.identifier.starts_with(LKTaskNotificationScheduler::identifierPrefix);
}

std::vector<std::string> identifiersOf(const std::vector<LKNotificationRequest>& pending) {
  std::vector<std::string> identifiers;
  for (const LKNotificationRequest& request : pending) {
    if (isTaskRequest(request)) identifiers.push_back(request.identifier);
  }
  return identifiers;
}

std::string userInfoText(const LKNotificationRequest& request, const char* key) {
  const auto found = request.content.userInfo.find(key);
  return found == request.content.userInfo.end() ? std::string() : found->second;
}

}  // namespace

LKTaskNotificationScheduler::LKTaskNotificationScheduler(LKNotificationCenter& center,
                                                         const UUID& collectionID,
                                                         MarkDone markDone, Clock clock)
    : center_(center),
      collectionID_(collectionID),
      markDone_(std::move(markDone)),
      clock_(std::move(clock)) {}

std::shared_ptr<LKTaskNotificationScheduler> LKTaskNotificationScheduler::shared() {
  const std::lock_guard guard(sharedScheduler().mutex);
  return sharedScheduler().scheduler;
}

void LKTaskNotificationScheduler::setShared(
    std::shared_ptr<LKTaskNotificationScheduler> scheduler) {
  const std::lock_guard guard(sharedScheduler().mutex);
  sharedScheduler().scheduler = std::move(scheduler);
}

// --- What should be pending ----------------------------------------------------------------------

bool LKTaskNotificationScheduler::isEligible(const LKTask& task) {
  return !task.isComplete && task.dateDue && task.note != nullptr && !task.note->isTrashed &&
         !task.note->isArchived();
}

std::vector<LKTaskNotificationScheduler::TaskInfo>
LKTaskNotificationScheduler::fetchActiveTasksWithDueDates(LKContext& index,
                                                          const UUID& collectionID) {
  std::vector<TaskInfo> tasks;
  for (const LKTask* task : index.tasks().fetch({.parts = LKParts::none})) {
    if (!isEligible(*task)) continue;
    tasks.push_back(
        {task->id, task->text, *task->dateDue, task->note->title, task->note->id, collectionID});
  }
  std::ranges::stable_sort(tasks, {}, &TaskInfo::dueDate);
  return tasks;
}

LKNotificationRequest LKTaskNotificationScheduler::request(const TaskInfo& task,
                                                           LKTaskNotificationTiming timing) {
  LKNotificationRequest request;
  request.identifier = identifierPrefix + task.id.text();
  request.fireDate = fireDate(task.dueDate, timing);
  request.content.title = "Task Due";
  if (timing != LKTaskNotificationTiming::dayBefore) request.content.subtitle = "Today";
  request.content.body = task.text + "\n" + task.noteTitle;
  request.content.categoryIdentifier = taskCategoryIdentifier;
  request.content.userInfo = {{kTaskIDKey, task.id.text()},
                              {kNoteIDKey, task.noteID.text()},
                              {kCollectionIDKey, task.collectionID.text()}};
  return request;
}

std::vector<LKNotificationRequest> LKTaskNotificationScheduler::requestsOfTasks(
    LKContext& index) const {
  const LKTaskNotificationTiming timing = settings().timing;
  std::vector<LKNotificationRequest> requests;
  for (const TaskInfo& task : fetchActiveTasksWithDueDates(index, collectionID_)) {
    LKNotificationRequest made = request(task, timing);
    if (contentDecorator) contentDecorator(made.content, task);
    requests.push_back(std::move(made));
  }
  return requests;
}

LKTaskNotificationScheduler::Changes LKTaskNotificationScheduler::changes(
    const std::vector<LKNotificationRequest>& pending,
    const std::vector<LKNotificationRequest>& ofTasks, Instant now) {
  std::map<std::string, const LKNotificationRequest*> left;
  for (const LKNotificationRequest& request : pending) {
    if (isTaskRequest(request)) left[request.identifier] = &request;
  }
  Changes result;
  for (const LKNotificationRequest& request : ofTasks) {
    const auto found = left.find(request.identifier);
    const bool isPending = found != left.end();
    const bool isSame = isPending && found->second->fireDate == request.fireDate;
    if (!isSame && request.fireDate <= now) continue;
    if (!isPending) {
      result.added.push_back(request);
      continue;
    }
    if (!isSame) result.replaced.push_back(request);
    left.erase(found);
  }
  for (const auto& [identifier, request] : left) result.removed.push_back(identifier);
  return result;
}

// --- Making it so --------------------------------------------------------------------------------

void LKTaskNotificationScheduler::reconcile(LKContext& index) {
  try {
    if (!settings().enabled) return removeAllTaskNotifications();
    fetchPending([this, requests = requestsOfTasks(index)](
                     const std::vector<LKNotificationRequest>& pending) {
      apply(changes(pending, requests, clock_()));
    });
  } catch (const LKStoreError& error) {
    log::error("[LKNotifications] Failed to schedule: " + error.description());
  }
}

void LKTaskNotificationScheduler::removeAllTaskNotifications() {
  fetchPending([this](const std::vector<LKNotificationRequest>& pending) {
    remove(identifiersOf(pending));
  });
}

void LKTaskNotificationScheduler::fetchPending(const LKNotificationCenter::Pending& then) {
  try {
    center_.fetchPending([then, alive = std::weak_ptr<bool>(isAlive_)](
                             const std::vector<LKNotificationRequest>& pending) {
      if (!alive.expired()) then(pending);
    });
  } catch (const Error& error) {
    log::error("[LKNotifications] Failed to schedule: " + error.description());
  }
}

void LKTaskNotificationScheduler::apply(const Changes& changes) {
  remove(changes.removed);
  for (const LKNotificationRequest& request : changes.added) {
    schedule(request, "[LKNotifications] Failed to schedule: ");
  }
  for (const LKNotificationRequest& request : changes.replaced) {
    schedule(request, "[LKNotifications] Failed to reschedule: ");
  }
}

void LKTaskNotificationScheduler::remove(const std::vector<std::string>& identifiers) {
  if (identifiers.empty()) return;
  try {
    center_.removePending(identifiers);
  } catch (const Error& error) {
    log::error("[LKNotifications] Failed to remove: " + error.description());
  }
}

void LKTaskNotificationScheduler::schedule(const LKNotificationRequest& request,
                                           const char* failure) {
  try {
    center_.add(request);
  } catch (const Error& error) {
    log::error(failure + error.description());
  }
}

// --- Actions -------------------------------------------------------------------------------------

void LKTaskNotificationScheduler::registerCategories() {
  center_.registerCategory(taskCategoryIdentifier,
                           {{snoozeHourActionID, "Snooze 1 Hour"},
                            {snoozeTomorrowActionID, "Snooze Until Tomorrow (9 AM)"},
                            {markDoneActionID, "Mark Done"}});
}

void LKTaskNotificationScheduler::handleAction(const LKNotificationResponse& response) {
  const Instant now = clock_();
  if (response.actionIdentifier == snoozeHourActionID) {
    snooze(response.request, {now.seconds + kSnoozeSeconds, now.nanoseconds});
  } else if (response.actionIdentifier == snoozeTomorrowActionID) {
    snooze(response.request, Day::local(now).adding(1).localHour(kSnoozeMorningHour));
  } else if (response.actionIdentifier == markDoneActionID) {
    markDone(response.request);
  }
}

void LKTaskNotificationScheduler::snooze(const LKNotificationRequest& request, Instant until) {
  LKNotificationRequest copy = request;
  copy.identifier = snoozePrefix + userInfoText(request, kTaskIDKey);
  copy.fireDate = until;
  schedule(copy, "[LKNotifications] Failed to snooze: ");
}

void LKTaskNotificationScheduler::markDone(const LKNotificationRequest& request) {
  const auto taskID = UUID::parse(userInfoText(request, kTaskIDKey));
  const auto noteID = UUID::parse(userInfoText(request, kNoteIDKey));
  const auto collectionID = UUID::parse(userInfoText(request, kCollectionIDKey));
  if (taskID && noteID && collectionID && markDone_(*noteID, *taskID, *collectionID)) return;
  LKNotificationRequest notice;
  notice.identifier = markDoneFailedPrefix + userInfoText(request, kTaskIDKey);
  notice.content.title = "Couldn't Complete Task";
  notice.content.body = "Open the note to mark it done — the task may have changed.";
  schedule(notice, "[LKNotifications] Failed to schedule: ");
}

}  // namespace lk
