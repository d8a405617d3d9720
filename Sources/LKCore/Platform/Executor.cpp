#include "LKCore/Platform/Executor.h"

#include <algorithm>
#include <asio/thread_pool.hpp>
#include <thread>

namespace lk {

asio::thread_pool& backgroundPool() {
  static asio::thread_pool pool(std::clamp(std::thread::hardware_concurrency(), 1U, 4U));
  return pool;
}

}  // namespace lk
