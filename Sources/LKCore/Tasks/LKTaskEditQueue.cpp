#include "LKCore/Tasks/LKTaskEditQueue.h"

#include <asio/post.hpp>
#include <asio/strand.hpp>
#include <asio/thread_pool.hpp>
#include <utility>

#include "LKCore/Platform/Executor.h"

namespace lk {

struct LKTaskEditQueue::Strand {
  asio::strand<asio::thread_pool::executor_type> executor{backgroundPool().get_executor()};
};

LKTaskEditQueue::LKTaskEditQueue(std::shared_ptr<LKTaskFileSurgeon> surgeon)
    : surgeon_(std::move(surgeon)), strand_(std::make_unique<Strand>()) {}

LKTaskEditQueue::~LKTaskEditQueue() = default;

void LKTaskEditQueue::post(Edit edit, Completion completion) {
  asio::post(strand_->executor,
             [surgeon = surgeon_, edit = std::move(edit), completion = std::move(completion)] {
               const bool wasChanged = edit(*surgeon);
               if (completion) completion(wasChanged);
             });
}

}  // namespace lk
