#pragma once

#include <filesystem>
#include <functional>
#include <string_view>

#include "LKCore/Platform/Files.h"

// How every file of a collection is written: whole, with its extended attributes kept, and leaving
// a trace in LKOwnFileContent so that the file watcher knows the program's own writes.
//
//     retriedWhenChanged([&] {
//       const FileLock lock = FileLock::forUpdate(url);
//       LKFileWrite::atomically(changed(readFile(lock.path())), lock);
//     });
namespace lk::LKFileWrite {

// Replaces the file or makes it, as `replaceFile` does. A Markdown file's digest is recorded
// before the write, so that a watcher woken by the write finds it; it stays recorded when the
// write fails. Throws FileError and then leaves the file as it was.
void atomically(std::string_view data, const std::filesystem::path& url);

// Replaces the locked file alone: throws FileChanged when somebody without a lock was faster.
void atomically(std::string_view data, const FileLock& lock);

// Makes a file that was not there, with the same recording. False, with nothing changed, when the
// name is taken. Throws FileError.
[[nodiscard]] bool createAtomically(std::string_view data, const std::filesystem::path& url,
                                    Durability durability = Durability::now);

// Runs `body`, which may replace the file by other means, and puts back the attributes that the
// file had before. What `body` throws goes through, and nothing is put back then.
void preservingAttributes(const std::filesystem::path& url, const std::function<void()>& body);

}  // namespace lk::LKFileWrite
