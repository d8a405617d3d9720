// Any bytes as a damaged note: the salvage read ends, and gives what parsing gives where that works.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSalvage.h"
#include "LKCore/NoteFiles/LKSyncError.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto salvaged = lk::extractSalvageableFields(text);
  try {
    const lk::LKParsedDocument document = lk::parseDocument(text);
    if (!salvaged || salvaged->body != document.body ||
        salvaged->fields.id != document.frontMatter.id ||
        salvaged->fields.userProperties != document.frontMatter.userProperties) {
      std::abort();
    }
  } catch (const lk::LKSyncError&) {
    // Salvage may still find something; that it came back is all there is to hold.
  }
  return 0;
}
