#pragma once

// The platform's notification centre as the reminders use it: it keeps requests until their time,
// shows them with their actions, and tells which action the user chose.

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Time.h"

namespace lk {

struct LKNotificationContent {
  std::string title;
  std::string subtitle;  // empty for none
  std::string body;
  std::string categoryIdentifier;  // which actions it has; empty for none
  std::map<std::string, std::string> userInfo;

  bool operator==(const LKNotificationContent&) const = default;
};

struct LKNotificationRequest {
  std::string identifier;
  LKNotificationContent content;
  std::optional<Instant> fireDate;  // nothing: at once

  bool operator==(const LKNotificationRequest&) const = default;
};

// What the user did with a notification that was shown.
struct LKNotificationResponse {
  std::string actionIdentifier;
  LKNotificationRequest request;
};

struct LKNotificationAction {
  std::string identifier;
  std::string title;

  bool operator==(const LKNotificationAction&) const = default;
};

// Calls come from one thread, and so do the answers.
class LKNotificationCenter {
 public:
  LKNotificationCenter() = default;
  LKNotificationCenter(const LKNotificationCenter&) = delete;
  LKNotificationCenter& operator=(const LKNotificationCenter&) = delete;
  virtual ~LKNotificationCenter() = default;

  using Pending = std::function<void(std::vector<LKNotificationRequest>)>;

  // Gives the requests that wait for their time, now or later. Throws Error.
  virtual void fetchPending(Pending then) = 0;
  // Takes a request, in place of a pending one of the same identifier. Throws Error.
  virtual void add(const LKNotificationRequest& request) = 0;
  // Forgets the pending requests of these identifiers; others are no error. Throws Error.
  virtual void removePending(const std::vector<std::string>& identifiers) = 0;
  // The actions that notifications of a category offer from now on.
  virtual void registerCategory(const std::string& identifier,
                                const std::vector<LKNotificationAction>& actions) = 0;
};

}  // namespace lk
