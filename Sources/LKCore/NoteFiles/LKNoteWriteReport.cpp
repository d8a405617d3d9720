#include "LKCore/NoteFiles/LKNoteWriteReport.h"

#include <cerrno>
#include <utility>

#include "LKCore/Base/Error.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace {

std::string quoted(const std::string& title) {
  return "“" + title + "”";
}

}  // namespace

void LKNoteWriteReport::succeed(const UUID& id) {
  succeeded.push_back(id);
}

void LKNoteWriteReport::fail(const UUID& id, std::string title, const std::exception& error) {
  fail(id, std::move(title), reason(error));
}

void LKNoteWriteReport::fail(const UUID& id, std::string title, std::string reason) {
  failures.push_back({.noteID = id, .title = std::move(title), .reason = std::move(reason)});
}

std::string LKNoteWriteReport::reason(const std::exception& error) {
  switch (errnoOf(error)) {
    case EACCES:
    case EPERM:
    case EROFS:
      return "the file is locked or not writable. Check Get Info in the Finder.";
    case ENOSPC:
    case EDQUOT:
      return "the disk is full. Free some space, then try again.";
    case ENOENT:
      return "the file is missing.";
    default:
      return error.what();
  }
}

std::optional<std::string> LKNoteWriteReport::message() const {
  if (failures.empty()) return std::nullopt;
  if (failures.size() == 1) {
    const Failure& only = failures.front();
    return "Couldn't " + action + " " + quoted(only.title) + ": " + only.reason;
  }
  const size_t total = failures.size() + succeeded.size();
  std::string text = "Couldn't " + action + " " + std::to_string(failures.size()) + " of " +
                     std::to_string(total) + " notes:";
  for (const Failure& failure : failures) {
    text += "\n" + quoted(failure.title) + ": " + failure.reason;
  }
  return text;
}

}  // namespace lk
