#pragma once

// The two lists that a block holds in one line each, read and written the same way wherever that
// is done: `lk-tasks` and `lk-folded`. A value is what stands behind the key, without line ends.
//
//     readTaskList("2:3B9A0C11-7A2D-4C2F-8D10-5C6B7A8F9E01:1a2b3c4d, 7:junk").size() == 1

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// The readable pieces between commas, in order; every other piece is dropped alone.
std::vector<TaskEntry> readTaskList(std::string_view value);
std::vector<int> readIndexList(std::string_view value);

// An empty hash is left out. A hash must hold no comma and no newline scalar to come back.
std::string taskListText(const std::vector<TaskEntry>& entries);
std::string indexListText(const std::vector<int>& indices);

}  // namespace lk
