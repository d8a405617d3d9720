#include "LKCore/Base/Notices.h"

#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace lk::notices {

namespace {

struct Observer {
  std::string name;
  std::function<void()> handler;
};

struct Board {
  std::mutex mutex;
  std::map<uint64_t, std::shared_ptr<const Observer>> observers;  // shared with running deliveries
  uint64_t lastID = 0;
};

Board& board() {
  static Board shared;
  return shared;
}

void end(uint64_t id) noexcept {
  if (id == 0) return;
  const std::lock_guard guard(board().mutex);
  board().observers.erase(id);
}

}  // namespace

Observation::~Observation() {
  end(id_);
}

Observation::Observation(Observation&& other) noexcept : id_(std::exchange(other.id_, 0)) {}

Observation& Observation::operator=(Observation&& other) noexcept {
  if (this != &other) {
    end(id_);
    id_ = std::exchange(other.id_, 0);
  }
  return *this;
}

Observation observe(std::string_view name, std::function<void()> handler) {
  auto observer = std::make_shared<const Observer>(Observer{std::string(name), std::move(handler)});
  const std::lock_guard guard(board().mutex);
  const uint64_t id = ++board().lastID;
  board().observers.emplace(id, std::move(observer));
  return Observation(id);
}

void post(std::string_view name) {
  std::vector<std::shared_ptr<const Observer>> called;
  {
    const std::lock_guard guard(board().mutex);
    for (const auto& [id, observer] : board().observers) {
      if (observer->name == name) called.push_back(observer);
    }
  }
  for (const auto& observer : called) observer->handler();
}

}  // namespace lk::notices
