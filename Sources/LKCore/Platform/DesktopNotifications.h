#pragma once

// The desktop's notification service (org.freedesktop.Notifications on the session bus).
//
//     const auto desktop = DesktopNotifications::open();
//     if (desktop) desktop->show({"Task Due", "Order seeds", {{"done", "Mark Done"}}});
//
// The bus library (libsystemd) is loaded by `open`, so that who never asks pays nothing, and a
// machine without it, or without a desktop, is a machine without notifications. Used on one thread.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace lk {

struct DesktopNotification {
  std::string summary;
  std::string body;                                          // plain text
  std::vector<std::pair<std::string, std::string>> actions;  // key and label
};

class DesktopNotifications {
 public:
  // Null without the library, a session bus or a notification service.
  static std::unique_ptr<DesktopNotifications> open();
  ~DesktopNotifications();
  DesktopNotifications(const DesktopNotifications&) = delete;
  DesktopNotifications& operator=(const DesktopNotifications&) = delete;

  // Shows it and gives the number by which the service knows it. Throws Error when the service
  // does not take it within five seconds.
  uint32_t show(const DesktopNotification& notification);

  // Called by `process`: the user chose an action; the notification has gone, whatever the reason.
  std::function<void(uint32_t number, const std::string& actionKey)> onAction;
  std::function<void(uint32_t number)> onClosed;

  // Passes on what the service has told since the last call, after waiting for it at most so long.
  // Throws Error when the bus has gone.
  void process(std::chrono::milliseconds wait);

  struct Bus;

 private:
  explicit DesktopNotifications(std::unique_ptr<Bus> bus);

  std::unique_ptr<Bus> bus_;
};

}  // namespace lk
