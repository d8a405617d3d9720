#include "LarkspireCLI/Support/NoteWriting.h"

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/NoteFiles/LKSalvage.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteRepository/LKNoteFileError.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CollectionLocation.h"

namespace lk {

namespace fs = std::filesystem;

void writeNotes(const std::function<void()>& write, const std::string& readOnlyMessage) {
  try {
    write();
  } catch (const LKSyncError& error) {
    if (error.errorCase() == LKSyncError::Case::invalidFrontMatter) {
      throw CLIError::invalidFrontMatter(error.url().filename().string());
    }
    throw CLIError::writeFailed(error.description());
  } catch (const LKNoteFileError& error) {
    throw CLIError::general(error.kind() == LKNoteFileError::Case::readOnly
                                ? readOnlyMessage
                                : "Could not encode file content as UTF-8");
  } catch (const FileError& error) {
    throw CLIError::writeFailed(error.description());
  }
}

void requireWritable(const fs::path& collection, const std::string& message) {
  if (collectionMode(collection) == LKCollectionMode::readOnly) throw CLIError::general(message);
}

CLIError notANote(const fs::path& url, const std::string& text) {
  const CLIError error = CLIError::invalidFrontMatter(url.filename().string());
  if (!text::isValidUTF8(text)) {
    return error.withHint("The file is not UTF-8 text. Convert it first, e.g. with iconv.");
  }
  if (hasLarkspireFrontMatterKey(text)) {
    return error.withHint(
        "This was a note: its block has lost its id or its date. The text below it is whole. "
        "Mend the block by hand, or save the text as a new note: lk create TITLE --from FILE");
  }
  return error.withHint(
      "This is a plain Markdown file, not a note. Make a note of it: lk create TITLE --from FILE");
}

void requireReadableBlock(const fs::path& url) {
  std::string bytes;
  try {
    bytes = readFile(url);
  } catch (const FileError& error) {
    throw CLIError::general(error.description());
  }
  if (!text::isValidUTF8(bytes)) throw notANote(url, bytes);
  try {
    parseDocument(bytes);
  } catch (const LKSyncError&) {
    throw notANote(url, bytes);
  }
}

std::string withLineFeeds(const std::string& argument) {
  return text::replacingAll(argument, "\\n", "\n");
}

}  // namespace lk
