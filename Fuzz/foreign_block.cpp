// Any bytes as a file of another program: the body is always the end of the text, and indentation
// settles after one pass.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteFiles/LKIndentation.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const lk::StrippedDocument stripped = lk::stripForeignFrontMatter(text);
  if (!text.ends_with(stripped.body) || (stripped.title && stripped.title->empty())) std::abort();
  lk::hasLarkspireFrontMatterKey(text);
  const std::string tabs = lk::spacesToTabs(text);
  if (lk::spacesToTabs(tabs) != tabs || lk::tabsToSpaces(tabs).size() < tabs.size()) std::abort();
  return 0;
}
