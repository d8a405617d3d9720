#include "LKCore/DataModel/LKIndexClear.h"

#include "LKCore/Base/Log.h"

namespace lk::LKIndexClear {

namespace {

template <typename Step>
bool succeeds(const Step& step) {
  try {
    step();
    return true;
  } catch (const LKStoreError& error) {
    log::error("The index was not cleared: " + error.description());
    return false;
  }
}

}  // namespace

bool clearAll(LKContext& context) {
  // One by one, so that no note is left with a tag that is gone.
  const bool tagsAreGone = succeeds([&] {
    for (LKTag* tag : context.tags().fetch({.parts = LKParts::none})) context.tags().remove(*tag);
    context.save();
  });
  const bool restIsGone = succeeds([&] {
    context.notes().removeAll();
    context.backLinks().removeAll();
    context.tasks().removeAll();
    context.save();
  });
  return tagsAreGone && restIsGone;
}

}  // namespace lk::LKIndexClear
