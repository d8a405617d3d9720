// A query's file: what decodes is written, decodes again to the same, and runs over a note.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Queries/LKQueryExecutor.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// One answer for a query and for what a save makes of it.
void run(const lk::LKSavedQuery& query, const lk::LKSavedQuery& saved) {
  lk::LKTag tag;
  tag.text = "work/caf\u00E9";
  lk::LKTask task;
  task.dateDue = lk::Day{2028, 2, 29};
  task.project = "acme/site";
  task.contexts = {"phone"};
  lk::LKNote note;
  note.title = "Garden plan";
  note.text = "Sow beans";
  addTag(note, tag);
  setNote(task, &note);
  const lk::Instant now = {1'773'480'413, 0};
  require(lk::LKQueryExecutor::matches(note, query, now) ==
          lk::LKQueryExecutor::matches(note, saved, now));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const lk::LKSavedQuery query = lk::decodeQuery(bytes);
    const std::string text = lk::encodeQuery(query);
    const lk::LKSavedQuery again = lk::decodeQuery(text);
    require(again == query);
    require(lk::encodeQuery(again) == text);
    run(query, again);
  } catch (const lk::JsonError&) {
    return 0;
  }
  return 0;
}
