#pragma once

#include <functional>
#include <memory>

#include "LKCore/Tasks/LKTaskFileSurgeon.h"

namespace lk {

// Task edits for a host that must not wait: done one after the other, in the order in which they
// came, on the system's threads. What is posted is done also when the queue is gone by then.
//
//     LKTaskEditQueue queue(surgeon);
//     queue.post([=](LKTaskFileSurgeon& surgeon) { return surgeon.setStatus({url, id}, 2); },
//                [=](bool wasChanged) { host.post([=] { show(wasChanged); }); });
class LKTaskEditQueue {
 public:
  using Edit = std::function<bool(LKTaskFileSurgeon&)>;
  using Completion = std::function<void(bool wasChanged)>;

  // Shared with the edits under way. Its cache must live until the last of them is done, and
  // nobody else uses the surgeon meanwhile.
  explicit LKTaskEditQueue(std::shared_ptr<LKTaskFileSurgeon> surgeon);
  ~LKTaskEditQueue();
  LKTaskEditQueue(const LKTaskEditQueue&) = delete;
  LKTaskEditQueue& operator=(const LKTaskEditQueue&) = delete;

  // `completion` gets what the edit gave, on the queue, before the next edit begins. Neither may
  // throw.
  void post(Edit edit, Completion completion = {});

 private:
  struct Strand;
  std::shared_ptr<LKTaskFileSurgeon> surgeon_;
  std::unique_ptr<Strand> strand_;
};

}  // namespace lk
