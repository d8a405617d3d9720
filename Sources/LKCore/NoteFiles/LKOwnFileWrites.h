#pragma once

#include <chrono>
#include <filesystem>

// Asio's headers cost seconds of compile time; whoever awaits includes <asio/awaitable.hpp>.
namespace asio {
class any_io_executor;
template <typename Result, typename Executor>
class awaitable;
}  // namespace asio

// The files that this process is writing at the moment. One table for the process, safe from any
// thread; a file is known by its path with symbolic links resolved.
//
//     {
//       LKOwnFileWrites::Scope writing(url);
//       LKFileWrite::atomically(data, url);
//     }
//     co_await LKOwnFileWrites::settled(url, std::chrono::seconds(2));
namespace lk::LKOwnFileWrites {

// One more write of the file is in flight. Each `begin` needs its `end`.
void begin(const std::filesystem::path& url);
void end(const std::filesystem::path& url);

bool isInFlight(const std::filesystem::path& url);

// `begin` now and `end` when the scope is left, also by an exception.
class Scope {
 public:
  explicit Scope(const std::filesystem::path& url);
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

 private:
  std::filesystem::path url_;
};

// Waits until no write of the file is in flight, looking every 20 milliseconds, or until the
// timeout has passed. Gives true when nothing is in flight; at once, without a wait, when nothing
// was. Runs on the executor of whoever awaits it.
asio::awaitable<bool, asio::any_io_executor> settled(std::filesystem::path url,
                                                     std::chrono::milliseconds timeout);

}  // namespace lk::LKOwnFileWrites
