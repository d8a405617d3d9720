#pragma once

// The write side of note files for everyone but the editor: commands, importers, daily notes.
// A request becomes one whole new file; the block stays true to the body.
//
//     NewNote note;
//     note.title = "Garden plan";
//     note.body = "- [ ] Order seeds";
//     std::filesystem::path file = LKNoteFileService::createNote(note, collection);
//
// Every operation throws and then has changed nothing: LKNoteFileError when the collection is
// read-only or the text is not UTF-8, LKSyncError when a file's block cannot be read, FileError
// when the system refuses. Every change of a file that is there happens under its lock, so that
// two processes never lose each other's change. Calls block and may come from any thread. Where an
// index of the collection is open (OpenCache.h), it is told afterwards what was written.

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/Platform/FreeNames.h"

namespace lk {

struct NewNote {
  std::string title;
  std::string body;
  std::optional<Day> dailyDate;  // makes a daily note, named after its day
  std::map<std::string, std::string> userProperties;
  bool untitled = false;  // names the file by the note's id
  std::optional<UUID> noteID;
  bool nameLocked = false;
  bool isFavourite = false;
};

struct NoteChange {
  // The new body made from the old one, whose indentation is normalised already; that of the new
  // one is normalised as well.
  std::function<std::string(std::string body)> bodyTransform;
  // Nothing as a value removes the property.
  std::map<std::string, std::optional<std::string>> propertyUpdates;
  std::optional<bool> isFavourite;
  // What the fields above do not reach, applied after them.
  std::function<void(LKFileFrontMatter&)> blockTransform;
  // What must see body and block together, applied before all of them. The task entries that it
  // leaves say which line has which id: one without a hash belongs to the task line at its index.
  std::function<void(std::string& body, LKFileFrontMatter&)> documentTransform;
};

// A note that gets a rank in the order of a list.
struct LKTagRankSeed {
  std::filesystem::path url;
  UUID noteID;
};

namespace LKNoteFileService {

// A `blockTransform` that ends a note's archive state: the flag goes, and the property "status"
// where it says "archived".
void bringBack(LKFileFrontMatter& frontMatter);

// Makes the file, in the root of the collection or for a daily note in its `.daily` folder, and
// gives its path. A title whose file is there gets a number ("Notes 2.md"), also in a race; a
// daily note whose file is there is an error (EEXIST).
std::filesystem::path createNote(const NewNote& note, const std::filesystem::path& collectionRoot);

// The same for one of many notes in a row, `names` being those of the collection's root. They are
// safe from a power cut once the caller has flushed the file system (flushFileSystem).
std::filesystem::path createNote(const NewNote& note, FreeNames& names);

void updateNote(const std::filesystem::path& url, const NoteChange& change);

// Changes the body alone, as it is when read, and tells whether it did: one that comes back as it
// was is not written.
bool updateBody(const std::filesystem::path& url,
                const std::function<std::string(const std::string& body)>& transform);

enum class ModificationTime { changes, preserved };

// Changes the block alone; the body stays as the file has it, byte for byte.
void setFrontMatter(const std::filesystem::path& url, ModificationTime time,
                    const std::function<void(LKFileFrontMatter&)>& transform);

// Sets the note's manual rank under a tag, or removes it.
void setTagRank(const std::filesystem::path& url, const std::string& tagPath,
                const std::optional<std::string>& rank, ModificationTime time);

// Gives every note of the list a fresh rank under the tag, in the order of the list, and keeps the
// files' modification times. A failure leaves the ranks that were written before it.
std::unordered_map<UUID, std::string> seedTagRanks(const std::vector<LKTagRankSeed>& notes,
                                                   const std::string& tagPath);

// Fixes the file's name, so that nothing renames it after its first line.
void lockName(const std::filesystem::path& url);

// Renames within or across folders; the target's folder must exist. A taken target is an error
// (EEXIST).
void moveNote(const std::filesystem::path& from, const std::filesystem::path& to);

void deleteNotePermanently(const std::filesystem::path& url);

// The text without the characters that no file name may hold, trimmed of spaces and tabs.
std::string sanitiseFilename(std::string_view text);

// "BASE.md", or the first free of "BASE 2.md", "BASE 3.md" and so on.
std::string uniqueFilename(const std::string& base, const std::filesystem::path& folder);

// Line ends become LF; four or more leading spaces become a tab for each four, and the rest of
// them stays.
std::string normaliseIndentation(std::string_view text);

}  // namespace LKNoteFileService

}  // namespace lk
