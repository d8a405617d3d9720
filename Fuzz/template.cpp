// Template files and placeholders: what decodes is written and decodes to the same; filling in ends,
// keeps to its limit, leaves a text without placeholders alone, and puts the caret inside.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/Templates/FilledTemplate.h"
#include "LKCore/Templates/LKTemplateError.h"

namespace {

const lk::Instant kMoment{1'773'480'413, 0};

void require(bool holds) {
  if (!holds) std::abort();
}

void checkResolved(std::string_view text) {
  const lk::LKTemplateResolver::Values values = {{"a", "v"}, {"b", "{{a}}{{date:yyyy}}"}};
  const auto result = lk::LKTemplateResolver::resolve(text, values, kMoment, "en_US");
  require(result.text.size() <= lk::LKTemplateResolver::kResultLimit);
  if (result.cursorOffset) require(*result.cursorOffset <= lk::text::scalarCount(result.text));
  const bool hasPlaceholder = text.find("{{") < text.rfind("}}") && text.rfind("}}") != text.npos;
  if (!hasPlaceholder) require(result.text == text && !result.cursorOffset);
}

void checkFile(std::string_view text) {
  try {
    const lk::LKTemplate decoded = lk::decodeTemplate(lk::parseJson(text));
    const lk::Json document = lk::encodeTemplate(decoded);
    require(lk::encodeTemplate(lk::decodeTemplate(document)) == document);
    lk::filled(decoded, {{"a", "v"}}, kMoment, "en_US");
  } catch (const lk::JsonError&) {
    return;
  } catch (const lk::LKTemplateError&) {
    return;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) return 0;
  checkResolved(text);
  checkFile(text);
  return 0;
}
