// The collection registry: what decodes is written, decodes again to the same, and a change of
// one row leaves everything else as it was.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/Collections/CollectionRegistry.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    lk::CollectionRegistry registry = lk::CollectionRegistry::decode(text);
    const std::string first = registry.text();
    const auto records = registry.records();
    const auto again = lk::CollectionRegistry::decode(first);
    require(again.text() == first && again.records() == records);

    lk::LKCollectionRecord added;
    added.id = lk::UUID::random();
    added.name = "added";
    added.path = "/added";
    registry.add(added);
    require(registry.records().size() == records.size() + 1);
    require(registry.records().back() == added);
    registry.remove(added.id);
    require(registry.text() == first);
    if (!records.empty()) registry.setLastOpened(records.front().id, lk::Instant{});
    require(registry.records().size() == records.size());
  } catch (const lk::JsonError&) {
    return 0;
  }
  return 0;
}
