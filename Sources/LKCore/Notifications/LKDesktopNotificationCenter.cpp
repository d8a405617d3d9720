#include "LKCore/Notifications/LKDesktopNotificationCenter.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Platform/SharedFile.h"

namespace lk {

namespace {

// An object by identifier, so that a request takes the place of the one before it.
Json requestJson(const LKNotificationRequest& request, Instant now) {
  const LKNotificationContent& content = request.content;
  return {
      {"title", content.title},       {"subtitle", content.subtitle},
      {"body", content.body},         {"category", content.categoryIdentifier},
      {"userInfo", content.userInfo}, {"fireDate", formatISO8601(request.fireDate.value_or(now))}};
}

std::map<std::string, std::string> userInfoIn(const Json& object) {
  std::map<std::string, std::string> userInfo;
  const auto found = object.find("userInfo");
  if (found == object.end() || !found->is_object()) return userInfo;
  for (const auto& [key, value] : found->items()) {
    if (value.is_string()) userInfo[key] = value.get<std::string>();
  }
  return userInfo;
}

// Nothing for what nobody here has written.
std::optional<LKNotificationRequest> requestIn(const std::string& identifier, const Json& object) {
  if (!object.is_object()) return std::nullopt;
  try {
    LKNotificationRequest request;
    request.identifier = identifier;
    request.content.title = stringMember(object, "title").value_or("");
    request.content.subtitle = stringMember(object, "subtitle").value_or("");
    request.content.body = stringMember(object, "body").value_or("");
    request.content.categoryIdentifier = stringMember(object, "category").value_or("");
    request.content.userInfo = userInfoIn(object);
    request.fireDate = parseISO8601(stringMember(object, "fireDate").value_or(""));
    return request.fireDate ? std::optional(std::move(request)) : std::nullopt;
  } catch (const JsonError&) {
    return std::nullopt;
  }
}

std::vector<LKNotificationRequest> requestsIn(const Json& file) {
  std::vector<LKNotificationRequest> requests;
  for (const auto& [identifier, object] : file.items()) {
    if (auto request = requestIn(identifier, object)) requests.push_back(std::move(*request));
  }
  std::ranges::stable_sort(requests, {}, &LKNotificationRequest::fireDate);
  return requests;
}

}  // namespace

LKDesktopNotificationCenter::LKDesktopNotificationCenter(std::filesystem::path file, Clock clock)
    : file_(std::move(file)), clock_(std::move(clock)) {}

void LKDesktopNotificationCenter::fetchPending(Pending then) {
  then(requestsIn(readSharedObject(file_)));
}

void LKDesktopNotificationCenter::add(const LKNotificationRequest& request) {
  add(std::vector<LKNotificationRequest>{request});
}

void LKDesktopNotificationCenter::add(const std::vector<LKNotificationRequest>& requests) {
  const Instant now = clock_();
  changeSharedObject(file_, now, [&](Json& file) {
    for (const LKNotificationRequest& each : requests) {
      file[each.identifier] = requestJson(each, now);
    }
  });
}

void LKDesktopNotificationCenter::removePending(const std::vector<std::string>& identifiers) {
  changeSharedObject(file_, clock_(), [&](Json& file) {
    for (const std::string& identifier : identifiers) file.erase(identifier);
  });
}

void LKDesktopNotificationCenter::registerCategory(
    const std::string& identifier, const std::vector<LKNotificationAction>& actions) {
  categories_[identifier] = actions;
}

bool LKDesktopNotificationCenter::serve(std::chrono::milliseconds wait) {
  if (!connect()) return false;
  std::vector<LKNotificationRequest> refused;
  for (const LKNotificationRequest& request : takeDue()) {
    if (!show(request)) refused.push_back(request);
  }
  if (!refused.empty()) add(refused);
  try {
    desktop_->process(wait);
  } catch (const Error& error) {
    log::warning("[LKNotifications] " + error.description());
    desktop_.reset();
    shown_.clear();
  }
  return desktop_ != nullptr;
}

bool LKDesktopNotificationCenter::connect() {
  if (desktop_) return true;
  desktop_ = DesktopNotifications::open();
  if (!desktop_) return false;
  desktop_->onAction = [this](uint32_t number, const std::string& key) { answer(number, key); };
  desktop_->onClosed = [this](uint32_t number) { shown_.erase(number); };
  return true;
}

// Under the file's lock, so that no other host shows them too.
std::vector<LKNotificationRequest> LKDesktopNotificationCenter::takeDue() {
  const Instant now = clock_();
  std::vector<LKNotificationRequest> due;
  changeSharedObject(file_, now, [&](Json& file) {
    due = requestsIn(file);
    std::erase_if(due, [&](const LKNotificationRequest& each) { return *each.fireDate > now; });
    for (const LKNotificationRequest& each : due) file.erase(each.identifier);
  });
  return due;
}

bool LKDesktopNotificationCenter::show(const LKNotificationRequest& request) {
  const LKNotificationContent& content = request.content;
  DesktopNotification notification;
  notification.summary =
      content.subtitle.empty() ? content.title : content.title + " — " + content.subtitle;
  notification.body = content.body;
  for (const LKNotificationAction& action : categories_[content.categoryIdentifier]) {
    notification.actions.emplace_back(action.identifier, action.title);
  }
  try {
    shown_[desktop_->show(notification)] = request;
    return true;
  } catch (const Error& error) {
    log::error("[LKNotifications] Failed to show: " + error.description());
    return false;
  }
}

void LKDesktopNotificationCenter::answer(uint32_t number, const std::string& actionIdentifier) {
  const auto found = shown_.find(number);
  if (found == shown_.end()) return;  // another program's
  const LKNotificationRequest request = found->second;
  if (onResponse) onResponse({actionIdentifier, request});
}

}  // namespace lk
