#pragma once

// How writes of note files reach the index of their collection, where one is open. A failure here
// goes to the log: the file is the truth, and the next load of the note repeats the work.

#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// Gives the open index of the collection that holds the file; null when none is open.
using FindOpenCache = std::function<LKContext*(const std::filesystem::path& url)>;

// Set by a host that keeps an index, before its first write; an empty function ends that. Without
// one, the file is the whole effect of a write.
void setOpenCache(FindOpenCache find);

// The note's tasks are now these.
void updateTasksInCache(const std::filesystem::path& url, const UUID& noteID, std::string_view body,
                        const std::vector<TaskEntry>& taskEntries);

// The note's block says this, and the file has these bytes.
void updateFlagsInCache(const std::filesystem::path& url, const LKFileFrontMatter& frontMatter,
                        std::string_view file);

}  // namespace lk
