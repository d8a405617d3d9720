#pragma once

#include <filesystem>
#include <memory>
#include <vector>

#include "LKCore/DataModel/LKContext.h"

// The index of a collection made from its files, for one run: the same rows that a store on disk
// would give, without a store on disk.
//
//     const auto index = LKFileIndex::build(collection, LKParts::tags | LKParts::tasks);
//     for (const LKNote* note : index->notes().fetch()) ...
//
// A note is a file with the extension "md" in any case, also one without a block: that one has a
// fresh id in each run. Hidden folders other than ".daily", ".trash" and ".templates" are passed
// over, hidden files and packages too. Rows come in the order of the files' paths, by bytes.
//
// Of files that share an id one counts: a live one before one in the trash, then the one with the
// smallest name, then the first. A link has one row for each distinct reference of its note and points to the note of that
// title, a live one before one in the trash. A task that the block has no id for has one for this
// run.
namespace lk::LKFileIndex {

// The paths of the note files, in order. A folder that cannot be read is passed over.
std::vector<std::filesystem::path> noteFiles(const std::filesystem::path& folder);

// Reads each file once. Nothing is worked out that is not among the parts; the columns and
// relations that were not asked for are those of a new row. What cannot be read or is not UTF-8 is
// passed over. Null when the store cannot be made. The collection is only read.
std::unique_ptr<LKContext> build(const std::filesystem::path& collection,
                                 LKParts parts = LKParts::all);

}  // namespace lk::LKFileIndex
