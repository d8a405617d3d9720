// A schema file: what decodes is written and decodes again to the same, and adding and removing
// one definition leaves everything else as it was.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Properties/PropertySchemaDocument.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  try {
    lk::PropertySchemaDocument document = lk::PropertySchemaDocument::decode(text);
    const std::string first = document.text();
    const auto definitions = document.definitions();
    const auto again = lk::PropertySchemaDocument::decode(first);
    require(again.text() == first && again.definitions() == definitions);

    lk::LKPropertyDefinition added;
    added.id = lk::UUID::random();
    added.name = "a name that no input has";
    document.add(added);
    require(document.definitions().size() == definitions.size() + 1);
    require(document.definitions().back() == added);
    document.remove(added.id);
    require(document.text() == first);
    document.replaceAll(definitions);
    require(document.definitions() == definitions);
  } catch (const lk::JsonError&) {
    return 0;
  } catch (const lk::LKPropertySchemaError&) {
    return 0;  // an input has that name after all
  }
  return 0;
}
