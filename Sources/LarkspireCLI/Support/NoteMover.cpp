#include "LarkspireCLI/Support/NoteMover.h"

#include <cerrno>

#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"

namespace lk::NoteMover {

namespace fs = std::filesystem;

void move(const fs::path& from, const fs::path& to) {
  LKNoteFileService::moveNote(from, to);
}

fs::path moveInto(const fs::path& folder, const fs::path& file) {
  while (true) {
    fs::path target = folder / LKNoteFileService::uniqueFilename(file.stem().string(), folder);
    try {
      move(file, target);
      return target;
    } catch (const FileError& error) {
      // The name was free a moment ago; the next number is tried.
      if (error.code() != EEXIST) throw;
    }
  }
}

}  // namespace lk::NoteMover
