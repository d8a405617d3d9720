// The centre over the desktop's service: its file, a machine without a desktop, and a real session
// bus where one can be started.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Notifications/LKDesktopNotificationCenter.h"
#include "LKCore/Platform/SharedFile.h"
#include "Support/Process.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

constexpr Instant kPast = {1'773'480'000, 0};
constexpr Instant kNow = {1'773'480'413, 0};
constexpr Instant kFuture = {1'773'490'000, 0};
constexpr const char* kInSession = "LK_NOTIFICATION_SESSION";
constexpr const char* kSessionTest = "DesktopCenter.ShowsAndAnswersOverASessionBus";

LKNotificationRequest request(const std::string& identifier, Instant date) {
  return {identifier, {"Task Due", "Today", "a < b & c", "task", {{"taskID", identifier}}}, date};
}

std::vector<LKNotificationRequest> pendingIn(LKDesktopNotificationCenter& center) {
  std::vector<LKNotificationRequest> found;
  center.fetchPending([&](const std::vector<LKNotificationRequest>& pending) { found = pending; });
  return found;
}

TEST(DesktopCenter, SharesItsPendingRequestsThroughAFile) {
  const test::TempFolder folder;
  const fs::path file = folder / "notifications.json";
  LKDesktopNotificationCenter center(file, [] { return kNow; });
  LKDesktopNotificationCenter other(file, [] { return kNow; });
  EXPECT_TRUE(pendingIn(center).empty());
  center.removePending({"nothing"});
  EXPECT_FALSE(fs::exists(file));
  center.add(request("b", kFuture));
  other.add(request("a", kFuture));
  other.add(request("b", kPast));
  EXPECT_EQ(pendingIn(center),
            (std::vector<LKNotificationRequest>{request("b", kPast), request("a", kFuture)}));
  Json object = parseJson(test::readWhole(file));
  object["later"] = 7;
  object["dateless"] = {{"title", "x"}};
  test::writeWhole(file, printJson(object));
  center.removePending({"b"});
  EXPECT_EQ(pendingIn(other), std::vector<LKNotificationRequest>{request("a", kFuture)});
  EXPECT_EQ(readSharedObject(file).size(), 3U) << "what nobody here wrote stays";
}

TEST(DesktopCenter, KeepsWhatCannotBeShownWithoutADesktop) {
  if (std::getenv(kInSession) != nullptr) return;
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
  const test::TempFolder folder;
  LKDesktopNotificationCenter center(folder / "notifications.json", [] { return kNow; });
  center.add(request("a", kPast));
  EXPECT_FALSE(center.serve(std::chrono::milliseconds(1000)));
  EXPECT_EQ(pendingIn(center).size(), 1U);
}

// A notification service that reads markup, and whose user at once takes the first action.
class FakeService {
 public:
  // `shown` gets summary, body and actions of each notification; to be read when this has gone.
  FakeService(void* library, std::vector<Words>& shown) : library_(library), shown_(shown) {
    thread_ = std::thread([this] { run(); });
    isReady_.get_future().wait();
  }
  ~FakeService() {
    isOver_ = true;
    thread_.join();
  }
  FakeService(const FakeService&) = delete;
  FakeService& operator=(const FakeService&) = delete;

 private:
  template <typename Function>
  Function symbol(const char* name) const {
    return reinterpret_cast<Function>(dlsym(library_, name));
  }
  template <typename... Parameters>
  int call(const char* name, Parameters... parameters) const {
    return symbol<int (*)(Parameters...)>(name)(parameters...);
  }

  void run() {
    call("sd_bus_open_user", &bus_);
    call("sd_bus_add_filter", bus_, static_cast<void**>(nullptr), &FakeService::receive,
         static_cast<void*>(this));
    call("sd_bus_request_name", bus_, kName, uint64_t{0});
    isReady_.set_value();
    while (!isOver_) {
      while (call("sd_bus_process", bus_, static_cast<void**>(nullptr)) > 0) {
      }
      call("sd_bus_wait", bus_, uint64_t{20'000});
    }
    symbol<void* (*)(void*)>("sd_bus_flush_close_unref")(bus_);
  }

  static int receive(void* message, void* data, void* /*error*/) {
    auto& service = *static_cast<FakeService*>(data);
    if (service.isCall(message, "GetCapabilities")) {
      service.variadic("sd_bus_reply_method_return")(message, "as", 2, "actions", "body-markup");
      return 1;
    }
    if (!service.isCall(message, "Notify")) return 0;
    service.show(message);
    return 1;
  }

  using Variadic = int (*)(void*, const char*, ...);
  using Signal = int (*)(void*, const char*, const char*, const char*, const char*, ...);
  Variadic variadic(const char* name) const { return symbol<Variadic>(name); }
  bool isCall(void* message, const char* member) const {
    return call("sd_bus_message_is_method_call", message, kName, member) > 0;
  }

  void show(void* message) {
    const char* application = nullptr;
    uint32_t replaced = 0;
    const char* icon = nullptr;
    const char* summary = nullptr;
    const char* body = nullptr;
    variadic("sd_bus_message_read")(message, "susss", &application, &replaced, &icon, &summary,
                                    &body);
    Words words = {summary, body};
    char** actions = nullptr;
    call("sd_bus_message_read_strv", message, &actions);
    for (char** action = actions; action != nullptr && *action != nullptr; ++action) {
      words.emplace_back(*action);
      std::free(*action);
    }
    std::free(static_cast<void*>(actions));
    shown_.push_back(words);
    const auto number = static_cast<uint32_t>(shown_.size());
    variadic("sd_bus_reply_method_return")(message, "u", number);
    const auto signal = symbol<Signal>("sd_bus_emit_signal");
    signal(bus_, kPath, kName, "ActionInvoked", "us", number, words.at(2).c_str());
    signal(bus_, kPath, kName, "NotificationClosed", "uu", number, 2U);
  }

  static constexpr const char* kName = "org.freedesktop.Notifications";
  static constexpr const char* kPath = "/org/freedesktop/Notifications";

  void* library_;
  std::vector<Words>& shown_;
  std::promise<void> isReady_;
  void* bus_ = nullptr;
  std::atomic<bool> isOver_ = false;
  std::thread thread_;
};

void showOverTheSessionBus() {
  void* const library = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) GTEST_SKIP() << "libsystemd is not installed";
  std::vector<Words> shown;
  auto service = std::make_unique<FakeService>(library, shown);
  const test::TempFolder folder;
  LKDesktopNotificationCenter center(folder / "notifications.json", [] { return kNow; });
  center.registerCategory("task", {{"done", "Mark Done"}});
  center.add(request("due", kPast));
  center.add(request("later", kFuture));
  Words answers;
  center.onResponse = [&](const LKNotificationResponse& response) {
    answers.push_back(response.actionIdentifier + " " + response.request.identifier);
  };
  for (int attempt = 0; attempt < 100 && answers.empty(); ++attempt) {
    ASSERT_TRUE(center.serve(std::chrono::milliseconds(100)));
  }
  EXPECT_EQ(answers, Words{"done due"});
  service.reset();
  EXPECT_EQ(shown,
            (std::vector<Words>{{"Task Due — Today", "a &lt; b &amp; c", "done", "Mark Done"}}));
  EXPECT_EQ(pendingIn(center), std::vector<LKNotificationRequest>{request("later", kFuture)});
  // With the service gone, what is due waits for another.
  center.add(request("second", kPast));
  center.add(request("third", kPast));
  center.serve(std::chrono::milliseconds(0));
  EXPECT_EQ(pendingIn(center),
            (std::vector<LKNotificationRequest>{request("second", kPast), request("third", kPast),
                                                request("later", kFuture)}));
}

// Runs itself again inside a session of its own.
TEST(DesktopCenter, ShowsAndAnswersOverASessionBus) {
  if (std::getenv(kInSession) != nullptr) return showOverTheSessionBus();
  const test::Sandbox sandbox;
  if (sandbox.run("dbus-run-session", {"--version"}).status != 0) {
    GTEST_SKIP() << "dbus-run-session is not installed";
  }
  const test::ProcessResult result = sandbox.run("dbus-run-session",
                                                 {"--", fs::read_symlink("/proc/self/exe").string(),
                                                  std::string("--gtest_filter=") + kSessionTest},
                                                 {.environment = {{kInSession, "1"}}});
  EXPECT_EQ(result.status, 0) << result.out << result.err;
  EXPECT_NE(result.out.find("1 test"), std::string::npos) << result.out;
}

}  // namespace
}  // namespace lk
