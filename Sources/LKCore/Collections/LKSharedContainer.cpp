#include "LKCore/Collections/LKSharedContainer.h"

#include <mutex>
#include <utility>

#include "LKCore/Platform/Directories.h"

namespace lk::LKSharedContainer {

namespace fs = std::filesystem;

namespace {

using Handler = std::function<void(const fs::path&)>;

struct State {
  std::mutex mutex;
  bool wasAsked = false;
  std::optional<fs::path> container;
  Handler handler;
};

State& state() {
  static State shared;
  return shared;
}

}  // namespace

std::optional<fs::path> containerURL() {
  const std::lock_guard guard(state().mutex);
  return state().container;
}

std::optional<fs::path> containerURLResolvingNow() {
  std::optional<fs::path> container;
  Handler handler;
  {
    const std::lock_guard guard(state().mutex);
    if (state().wasAsked) return state().container;
    state().wasAsked = true;
    state().container = directories::groupContainer();
    container = state().container;
    handler = std::exchange(state().handler, nullptr);
  }
  if (container && handler) handler(*container);  // outside the lock: it may ask for the container
  return container;
}

void prepare() {
  containerURLResolvingNow();
}

void setDidResolveHandler(Handler handler) {
  std::optional<fs::path> container;
  {
    const std::lock_guard guard(state().mutex);
    container = state().container;
    if (!container) {
      state().handler = std::move(handler);
      return;
    }
  }
  if (handler) handler(*container);
}

}  // namespace lk::LKSharedContainer
