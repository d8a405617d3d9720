#pragma once

// Small files that several processes of the library change: registries, settings, side files.
// A change takes the file's lock, reads the file anew, changes what is there and replaces it, so
// that nobody's change is lost.
//
//     changeSharedObject(file, now, [&](Json& projects) { projects.erase("acme"); });

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Time.h"

namespace lk {

// Gives the new bytes for the old ones. It may be called again for one change, when another process
// makes or changes the file at the same moment.
using SharedFileChange = std::function<std::string(const std::string& before)>;

// Changes the file's bytes; equal bytes are not written. A file that is not there counts as
// `initial` and is made, with its folders, if the change makes something else of it. Throws
// FileError and what `change` throws; the file is then as it was.
void changeSharedFile(const std::filesystem::path& path, const std::string& initial,
                      const SharedFileChange& change);

// Saves bytes that could not be understood, which a person may still mend, beside the file as
// e.g. "projects.damaged-20260314T092653Z.json", and gives that path. Throws FileError.
std::filesystem::path keepDamagedFile(const std::filesystem::path& path, std::string_view bytes,
                                      Instant now);

// The JSON object in the file; empty when there is no file. Throws FileError, and JsonError for
// anything but one object.
Json readSharedObject(const std::filesystem::path& path);

struct SharedObject {  // NOLINT(bugprone-exception-escape): moving JSON does not throw
  Json object;         // as it is in the file now
  bool isChanged = false;
};

// Changes the JSON object in the file, its unknown members included. A damaged file is kept aside
// with `keepDamagedFile`, logged, and begun anew; so is an empty one, of which nothing is kept. Throws FileError and what `change` throws.
SharedObject changeSharedObject(const std::filesystem::path& path, Instant now,
                                const std::function<void(Json&)>& change);

}  // namespace lk
