#pragma once

// Asio's headers cost seconds of compile time; whoever posts work includes <asio/thread_pool.hpp>.
namespace asio {
class thread_pool;
}

namespace lk {

// The threads on which the library's asynchronous operations and timers run, up to four of them.
// Started at the first call, so that a run that needs none pays nothing. When the process ends,
// work under way is finished and work not begun is dropped.
//
//     asio::co_spawn(backgroundPool(), operation(), asio::detached);
asio::thread_pool& backgroundPool();

}  // namespace lk
