#pragma once

// Whether an import is running, and which files it wrote: so that whoever watches the collection
// does not take the importer's own files for somebody's changes. One table for the process, safe
// from any thread.
//
//     const LKImportActivity::Scope running;
//     LKImportActivity::recordWritten(url);
//     ...
//     if (LKImportActivity::consumeImportEcho(url)) return;   // in the watcher: ours

#include <cstddef>
#include <filesystem>

#include "LKCore/Base/Clock.h"

namespace lk {

// Posted when the last running import has ended.
inline constexpr const char* lkImportDidFinish = "LKImportDidFinish";

namespace LKImportActivity {

// Imports may run side by side; each `begin` needs its `end`. `end` throws what an observer of
// lkImportDidFinish throws; one too many does nothing.
void begin();
void end();
bool isActive();

// `begin` now and `end` when the scope is left; what an observer throws goes to the log.
class Scope {
 public:
  Scope();
  ~Scope();
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;
};

// Remembers the file for ten minutes. Paths through symbolic links are one path.
void recordWritten(const std::filesystem::path& url);

// True once for each record of the file.
bool consumeImportEcho(const std::filesystem::path& url);

// The number of records held, for whoever watches the table's size.
size_t recordCount();

// Tests run on a clock of their own; an empty one puts the system's back. Forgets every record and
// every running import.
void reset(Clock clock = {});

}  // namespace LKImportActivity

}  // namespace lk
