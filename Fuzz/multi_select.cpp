// Any value of a multi-select property: its items survive being written in the flow form, and the
// first is found in it.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/Properties/LKMultiSelectValue.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using lk::LKMultiSelectValue::Form;
  const std::string_view value(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(value)) return 0;
  const auto items = lk::LKMultiSelectValue::parse(value);
  const std::string flow = lk::LKMultiSelectValue::serialize(items, Form::flow);
  require(lk::LKMultiSelectValue::form(flow) == Form::flow);
  require(lk::LKMultiSelectValue::parse(flow) == items);
  for (const std::string& item : items) {
    require(!item.empty() && lk::text::trimmed(item) == item);
  }
  if (!items.empty()) require(lk::LKMultiSelectValue::contains(value, items.front()));
  return 0;
}
