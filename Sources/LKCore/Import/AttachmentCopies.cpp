#include <algorithm>

#include "LKCore/Attachments/LKAttachmentNaming.h"
#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportEngine.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"

namespace lk::LKImportEngine {

namespace fs = std::filesystem;

namespace {

struct AttachmentName {
  std::string stem;
  std::string extension;  // with its full stop
};

// A name that a link can hold: no "#", which would end it, and no "%", which would be an escape.
AttachmentName storedName(const fs::path& url) {
  std::string name = LKAttachmentNaming::sanitizeFilename(text::composed(url.filename().string()));
  std::ranges::replace_if(
      name, [](char c) { return c == '#' || c == '%' || c == '\0'; }, '_');
  std::string extension = fs::path(name).extension().string();
  std::string stem = name.substr(0, name.size() - extension.size());
  stem.erase(0, stem.find_first_not_of('.'));  // never a hidden file
  if (stem.empty()) stem = "attachment";
  if (extension.empty()) extension = text::lowercased(url.extension().string());
  return {LKNoteFilename::clampToBytes(stem, LKNoteFilename::displayNameByteLimit), extension};
}

}  // namespace

bool isAllowedAttachment(const fs::path& url) {
  return LKAttachmentTypes::contains(LKAttachmentTypes::all,
                                     LKAttachmentTypes::pathExtension(url.native()));
}

std::string copyAttachment(const fs::path& url, FreeNames& names) {
  const AttachmentName wanted = storedName(url);
  std::string name = wanted.stem + wanted.extension;
  if (sameContents(url, names.folder() / name)) return name;
  do {
    name = names.next(wanted.stem, wanted.extension);
  } while (!copyToNewFile(url, names.folder() / name, Durability::atFlush));
  return name;
}

std::map<fs::path, std::string> copyAttachments(const std::vector<fs::path>& urls,
                                                const fs::path& folder) {
  std::map<fs::path, std::string> copied;
  FreeNames names(folder);
  for (const fs::path& url : urls) {
    if (!isAllowedAttachment(url) || copied.contains(url)) continue;
    try {
      copied.emplace(url, copyAttachment(url, names));
    } catch (const FileError& error) {
      log::warning("an attachment is not copied: " + error.description());
    }
  }
  return copied;
}

std::string attachmentReference(std::string_view storedName) {
  std::string reference = ".attachments/";
  for (const char c : storedName) {
    switch (c) {
      case ' ':
        reference += "%20";
        break;
      case '(':
        reference += "%28";
        break;
      case ')':
        reference += "%29";
        break;
      default:
        reference += c;
    }
  }
  return reference;
}

FreeNames* attachmentNames(ImportContext& importContext) {
  if (!importContext.attachmentsDirectory) return nullptr;
  try {
    createFolders(*importContext.attachmentsDirectory);
    return &namesIn(*importContext.attachmentsDirectory, importContext);
  } catch (const FileError& error) {
    log::warning("no folder for attachments: " + error.description());
    return nullptr;
  }
}

bool sameContents(const fs::path& a, const fs::path& b) {
  return haveSameBytes(a, b);
}

}  // namespace lk::LKImportEngine
