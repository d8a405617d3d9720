#pragma once

// What commands can tell of a collection from its files alone, for a run in which no index can be
// had.

#include <deque>
#include <filesystem>
#include <vector>

#include "LKCore/DataModel/Entities.h"
#include "LarkspireCLI/Support/OutputFormatter.h"

namespace lk {

// A row for each note with a readable block, from that block; without tags, tasks and links.
std::deque<LKNote> scanNotesFromFiles(const std::filesystem::path& collection);

// The tags that stand in the files as "#name", those in the trash left out; each file counts once
// for a tag.
std::vector<TagRow> scanTagsFromFiles(const std::filesystem::path& collection);

// True for a file below a folder ".trash" of the collection.
bool isInTrash(const std::filesystem::path& file, const std::filesystem::path& collection);

}  // namespace lk
