#pragma once

#include <string_view>
#include <vector>

#include "LKCore/DataModel/Entities.h"

namespace lk {

// How a list of notes is ordered: newest change first, newest creation first, by title as people
// sort, or largest first. Ties go by title, and equal titles by file.
enum class NoteOrder { modified, created, title, size };

// The order of that name; `modified` for any other word.
NoteOrder noteOrder(std::string_view name);

void sortNotes(std::vector<LKNote*>& notes, NoteOrder order);

}  // namespace lk
