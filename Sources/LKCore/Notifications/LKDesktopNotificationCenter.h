#pragma once

// The notification centre over the desktop's service, which shows a notification at once and knows
// nothing of later. So the requests that wait for their time stand in a file, which every process
// of the user shares, and a host process that runs for long serves it:
//
//     LKDesktopNotificationCenter center(directories::applicationSupport() /
//                                        "Larkspire/notifications.json");
//     center.onResponse = [&](const auto& response) { scheduler.handleAction(response); };
//     while (isRunning) center.serve(std::chrono::seconds(1));
//
// Nobody serves it: the requests stay and are shown, late, once somebody does. With several hosts
// each request is shown by one of them. Without a desktop nothing is shown and nothing is lost.

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Notifications/LKNotificationCenter.h"
#include "LKCore/Platform/DesktopNotifications.h"

namespace lk {

class LKDesktopNotificationCenter final : public LKNotificationCenter {
 public:
  explicit LKDesktopNotificationCenter(std::filesystem::path file, Clock clock = Instant::now);

  // Called by `serve` when the user has chosen an action.
  std::function<void(const LKNotificationResponse&)> onResponse;

  void fetchPending(Pending then) override;
  void add(const LKNotificationRequest& request) override;
  void removePending(const std::vector<std::string>& identifiers) override;
  void registerCategory(const std::string& identifier,
                        const std::vector<LKNotificationAction>& actions) override;

  // Shows the requests whose time has come and passes on the user's answers, waiting for them at
  // most so long. False without a desktop to show anything on, at once; asking again looks for one
  // again. What cannot be shown is logged and waits for the next call. Throws Error when the file
  // cannot be read or written.
  bool serve(std::chrono::milliseconds wait);

 private:
  std::vector<LKNotificationRequest> takeDue();
  bool connect();
  void add(const std::vector<LKNotificationRequest>& requests);
  // False when the service did not take it.
  bool show(const LKNotificationRequest& request);
  void answer(uint32_t number, const std::string& actionIdentifier);

  std::filesystem::path file_;
  Clock clock_;
  std::map<std::string, std::vector<LKNotificationAction>> categories_;
  std::unique_ptr<DesktopNotifications> desktop_;
  std::map<uint32_t, LKNotificationRequest> shown_;  // by the service's number
};

}  // namespace lk
