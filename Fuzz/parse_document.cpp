// Any bytes as a note file: reading ends, and what was read is written and read back unchanged.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// The bytes as every text of a note there is: whatever they are, a file comes out that reads.
void writeHostileFields(std::string_view bytes) {
  lk::LKFileFrontMatter hostile;
  hostile.title = bytes;
  hostile.userProperties = {{std::string(bytes), "value"}, {"key", std::string(bytes)}};
  hostile.tagRanks = {{std::string(bytes), "m"}, {"tag", std::string(bytes)}};
  hostile.taskEntries = {{0, lk::UUID(), std::string(bytes)}};
  const std::string file = lk::serialize(hostile, "body");
  lk::LKParsedDocument read = lk::parseDocument(file);
  require(read.frontMatter.id == hostile.id && read.body == "body");
  require(read.frontMatter.taskEntries.size() == 1);
  // A property may have raised a flag; from then on nothing changes.
  const std::string again = lk::serialize(read.frontMatter, read.body);
  require(lk::serialize(lk::parseDocument(again).frontMatter, read.body) == again);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::optional<lk::UUID> identity = lk::readIdentity(text);
  writeHostileFields(text);
  try {
    lk::LKParsedDocument document = lk::parseDocument(text);
    require(!identity || identity == document.frontMatter.id);
    const std::string file = lk::serialize(document.frontMatter, document.body);
    require(lk::readIdentity(file) == document.frontMatter.id);
    document.frontMatter.contentHash = lk::computeContentHash(document.body);
    require(lk::parseDocument(file) == document);
    const auto entries = lk::deriveTaskEntries(document.body, document.frontMatter.taskEntries);
    require(lk::deriveTaskEntries(document.body, entries) == entries);
  } catch (const lk::LKSyncError&) {
    require(!identity);
  }
  return 0;
}
