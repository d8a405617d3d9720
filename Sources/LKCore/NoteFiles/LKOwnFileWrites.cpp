#include "LKCore/NoteFiles/LKOwnFileWrites.h"

#include <asio/awaitable.hpp>
#include <asio/steady_timer.hpp>
#include <asio/this_coro.hpp>
#include <asio/use_awaitable.hpp>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "LKCore/Platform/Files.h"

namespace lk::LKOwnFileWrites {

namespace fs = std::filesystem;

namespace {

struct Table {
  std::mutex mutex;
  std::unordered_map<std::string, int> inFlight;
};

Table& table() {
  static Table instance;
  return instance;
}

bool isInFlight(const std::string& key) {
  const std::lock_guard guard(table().mutex);
  return table().inFlight.contains(key);
}

}  // namespace

void begin(const fs::path& url) {
  const std::string key = resolved(url).string();
  const std::lock_guard guard(table().mutex);
  ++table().inFlight[key];
}

void end(const fs::path& url) {
  const std::string key = resolved(url).string();
  const std::lock_guard guard(table().mutex);
  const auto found = table().inFlight.find(key);
  if (found != table().inFlight.end() && --found->second == 0) table().inFlight.erase(found);
}

bool isInFlight(const fs::path& url) {
  return isInFlight(resolved(url).string());
}

Scope::Scope(const fs::path& url) : url_(resolved(url)) {
  begin(url_);
}
Scope::~Scope() {
  end(url_);
}

asio::awaitable<bool> settled(fs::path url, std::chrono::milliseconds timeout) {
  static constexpr std::chrono::milliseconds kInterval(20);
  const std::string key = resolved(url).string();
  if (!isInFlight(key)) co_return true;
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  asio::steady_timer timer(co_await asio::this_coro::executor);
  while (isInFlight(key)) {
    if (std::chrono::steady_clock::now() >= deadline) co_return false;
    timer.expires_after(kInterval);
    co_await timer.async_wait(asio::use_awaitable);
  }
  co_return true;
}

}  // namespace lk::LKOwnFileWrites
