#pragma once

// Change notices inside one process, broadcast by name: "the tags changed", "another collection
// is open". Who posts does not know who listens. Observers run on the thread that posts, in the
// order in which they came, outside the lock; they may post, observe and end observations.
//
//     const notices::Observation watch =
//         notices::observe("com.larkspire.tasksChanged", [&] { stale = true; });

#include <cstdint>
#include <functional>
#include <string_view>

namespace lk::notices {

// Ends its observation when it goes. One that goes while a notice is being delivered on another
// thread may still see that delivery.
class Observation {
 public:
  Observation() = default;
  explicit Observation(uint64_t id) noexcept : id_(id) {}
  ~Observation();
  Observation(Observation&& other) noexcept;
  Observation& operator=(Observation&& other) noexcept;
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;

 private:
  uint64_t id_ = 0;  // 0 observes nothing
};

[[nodiscard]] Observation observe(std::string_view name, std::function<void()> handler);

// Throws what a handler throws; the handlers after it are then not called.
void post(std::string_view name);

}  // namespace lk::notices
