#include "LKCore/Platform/DesktopNotifications.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string_view>
#include <system_error>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Text.h"

// What the bus library has; declared here, since nothing of it is needed to build.
struct sd_bus;
struct sd_bus_message;
struct sd_bus_slot;

namespace lk {

using BusMessageHandler = int (*)(sd_bus_message*, void*, void*);

// The functions of the library under the names that it gives them, without the prefix.
struct BusLibrary {
  int (*open_user)(sd_bus**);
  sd_bus* (*flush_close_unref)(sd_bus*);
  int (*message_new_method_call)(sd_bus*, sd_bus_message**, const char*, const char*, const char*,
                                 const char*);
  int (*message_append)(sd_bus_message*, const char*, ...);
  int (*message_append_strv)(sd_bus_message*, char**);
  int (*message_read)(sd_bus_message*, const char*, ...);
  int (*message_read_strv)(sd_bus_message*, char***);
  sd_bus_message* (*message_unref)(sd_bus_message*);
  int (*call)(sd_bus*, sd_bus_message*, uint64_t, void*, sd_bus_message**);
  int (*match_signal)(sd_bus*, sd_bus_slot**, const char*, const char*, const char*, const char*,
                      BusMessageHandler, void*);
  int (*process)(sd_bus*, sd_bus_message**);
  int (*wait)(sd_bus*, uint64_t);
};

namespace {

constexpr const char* kBusLibrary = "libsystemd.so.0";
constexpr const char* kService = "org.freedesktop.Notifications";
constexpr const char* kServicePath = "/org/freedesktop/Notifications";
constexpr uint64_t kCallMicroseconds = 5'000'000;
constexpr int32_t kServiceDecides = -1;  // how long a notification stays

template <typename Function>
bool loadFunction(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

std::optional<BusLibrary> loadBusLibrary() {
  void* const library = dlopen(kBusLibrary, RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) return std::nullopt;
  BusLibrary bus{};
  const bool isWhole =
      loadFunction(library, "sd_bus_open_user", bus.open_user) &&
      loadFunction(library, "sd_bus_flush_close_unref", bus.flush_close_unref) &&
      loadFunction(library, "sd_bus_message_new_method_call", bus.message_new_method_call) &&
      loadFunction(library, "sd_bus_message_append", bus.message_append) &&
      loadFunction(library, "sd_bus_message_append_strv", bus.message_append_strv) &&
      loadFunction(library, "sd_bus_message_read", bus.message_read) &&
      loadFunction(library, "sd_bus_message_read_strv", bus.message_read_strv) &&
      loadFunction(library, "sd_bus_message_unref", bus.message_unref) &&
      loadFunction(library, "sd_bus_call", bus.call) &&
      loadFunction(library, "sd_bus_match_signal", bus.match_signal) &&
      loadFunction(library, "sd_bus_process", bus.process) &&
      loadFunction(library, "sd_bus_wait", bus.wait);
  return isWhole ? std::optional(bus) : std::nullopt;
}

// The library stays loaded: what it has handed out may still be in use at the end.
const std::optional<BusLibrary>& busLibrary() {
  static const std::optional<BusLibrary> library = loadBusLibrary();
  return library;
}

int checkedBus(int result) {
  if (result < 0) {
    throw Error("The desktop's notification service failed: " +
                std::generic_category().message(-result) + ".");
  }
  return result;
}

using BusMessage = std::unique_ptr<sd_bus_message, sd_bus_message* (*)(sd_bus_message*)>;

std::string escapedMarkup(std::string_view plain) {
  std::string markup = text::replacingAll(plain, "&", "&amp;");
  markup = text::replacingAll(markup, "<", "&lt;");
  return text::replacingAll(markup, ">", "&gt;");
}

}  // namespace

struct DesktopNotifications::Bus {
  explicit Bus(const BusLibrary& functions) : sd(functions) {}
  ~Bus() {
    if (connection != nullptr) sd.flush_close_unref(connection);
  }
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  BusMessage method(const char* member) const {
    sd_bus_message* message = nullptr;
    checkedBus(
        sd.message_new_method_call(connection, &message, kService, kServicePath, kService, member));
    return {message, sd.message_unref};
  }

  // The answer.
  BusMessage call(const BusMessage& message) const {
    sd_bus_message* answer = nullptr;
    checkedBus(sd.call(connection, message.get(), kCallMicroseconds, nullptr, &answer));
    return {answer, sd.message_unref};
  }

  // Whether the service reads markup in a body, which plain text must then not look like. Throws
  // when there is no service.
  bool readsMarkup() const {
    const BusMessage answer = call(method("GetCapabilities"));
    char** words = nullptr;
    checkedBus(sd.message_read_strv(answer.get(), &words));
    bool reads = false;
    for (char** word = words; word != nullptr && *word != nullptr; ++word) {
      reads = reads || std::string_view(*word) == "body-markup";
      std::free(*word);
    }
    std::free(static_cast<void*>(words));
    return reads;
  }

  void listen(const char* signal, BusMessageHandler handler) {
    checkedBus(sd.match_signal(connection, nullptr, kService, kServicePath, kService, signal,
                               handler, this));
  }

  const BusLibrary& sd;
  sd_bus* connection = nullptr;
  bool escapesMarkup = false;
  // Gathered while the library runs, whose callbacks must not be left by an exception.
  std::vector<std::pair<uint32_t, std::string>> chosen;
  std::vector<uint32_t> closed;
};

namespace {

int noteAction(sd_bus_message* message, void* data, void* /*error*/) {
  auto& bus = *static_cast<DesktopNotifications::Bus*>(data);
  uint32_t number = 0;
  const char* key = nullptr;
  if (bus.sd.message_read(message, "us", &number, &key) >= 0) bus.chosen.emplace_back(number, key);
  return 0;
}

int noteClosed(sd_bus_message* message, void* data, void* /*error*/) {
  auto& bus = *static_cast<DesktopNotifications::Bus*>(data);
  uint32_t number = 0;
  uint32_t reason = 0;
  if (bus.sd.message_read(message, "uu", &number, &reason) >= 0) bus.closed.push_back(number);
  return 0;
}

}  // namespace

DesktopNotifications::DesktopNotifications(std::unique_ptr<Bus> bus) : bus_(std::move(bus)) {}

DesktopNotifications::~DesktopNotifications() = default;

std::unique_ptr<DesktopNotifications> DesktopNotifications::open() {
  if (!busLibrary()) return nullptr;
  auto bus = std::make_unique<Bus>(*busLibrary());
  try {
    checkedBus(bus->sd.open_user(&bus->connection));
    bus->escapesMarkup = bus->readsMarkup();
    bus->listen("ActionInvoked", noteAction);
    bus->listen("NotificationClosed", noteClosed);
  } catch (const Error&) {
    return nullptr;
  }
  return std::unique_ptr<DesktopNotifications>(new DesktopNotifications(std::move(bus)));
}

uint32_t DesktopNotifications::show(const DesktopNotification& notification) {
  std::vector<std::string> words;
  for (const auto& [key, label] : notification.actions) {
    words.push_back(key);
    words.push_back(label);
  }
  std::vector<char*> actions;
  std::ranges::transform(words, std::back_inserter(actions),
                         [](std::string& word) { return word.data(); });
  actions.push_back(nullptr);
  const std::string body =
      bus_->escapesMarkup ? escapedMarkup(notification.body) : notification.body;
  const BusMessage message = bus_->method("Notify");
  checkedBus(bus_->sd.message_append(message.get(), "susss", "Larkspire", uint32_t{0}, "",
                                     notification.summary.c_str(), body.c_str()));
  checkedBus(bus_->sd.message_append_strv(message.get(), actions.data()));
  checkedBus(bus_->sd.message_append(message.get(), "a{sv}i", 0U, kServiceDecides));
  const BusMessage answer = bus_->call(message);
  uint32_t number = 0;
  checkedBus(bus_->sd.message_read(answer.get(), "u", &number));
  return number;
}

void DesktopNotifications::process(std::chrono::milliseconds wait) {
  const auto takeAll = [this] {
    while (checkedBus(bus_->sd.process(bus_->connection, nullptr)) > 0) {
    }
  };
  takeAll();
  if (bus_->chosen.empty() && bus_->closed.empty() && wait.count() > 0) {
    checkedBus(bus_->sd.wait(bus_->connection, static_cast<uint64_t>(wait.count()) * 1000));
    takeAll();
  }
  const auto chosen = std::exchange(bus_->chosen, {});
  const auto closed = std::exchange(bus_->closed, {});
  for (const auto& [number, key] : chosen) {
    if (onAction) onAction(number, key);
  }
  for (const uint32_t number : closed) {
    if (onClosed) onClosed(number);
  }
}

}  // namespace lk
