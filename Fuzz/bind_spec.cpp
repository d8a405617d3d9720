// A bind spec's document: what decodes is written and decodes again to the same.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Json.h"
#include "LKCore/Bind/LKBindSpec.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  try {
    const lk::LKBindSpec spec = lk::LKBindSpec::decode(bytes);
    const std::string document = spec.encodedJSON();
    const lk::LKBindSpec again = lk::LKBindSpec::decode(document);
    require(again == spec);
    require(again.encodedJSON() == document);
  } catch (const lk::JsonError&) {
    return 0;
  } catch (const lk::LKBindSpecError& error) {
    require(error.found() > error.supported());
  }
  return 0;
}
