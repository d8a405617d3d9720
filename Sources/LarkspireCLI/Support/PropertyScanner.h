#pragma once

// The properties that stand in the notes of a collection, read from the blocks of the files: one
// pass, and of each file no more than its block as a rule. Hidden files and folders are passed
// over, the trash among them, and what is no note; a note counts even when its body is not UTF-8.
//
//     const auto counts = PropertyScanner::usageCounts(collection, schema);
//
// A property is one in any case; daily notes count like others unless told not to. What cannot be
// read is passed over.

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Properties/LKPropertyDefinition.h"

namespace lk {

// A property of one note.
struct NoteProperty {
  std::string noteTitle;
  std::filesystem::path noteURL;
  std::string key;
  std::string value;

  bool operator==(const NoteProperty&) const = default;
};

// A property and the notes that have it.
struct PropertyUse {
  std::string key;                      // as first met
  std::vector<std::string> noteTitles;  // each note once, in whatever cases it has the key
};

namespace PropertyScanner {

// In the order of the files' paths, by bytes, and of the keys.
std::vector<NoteProperty> scanAllProperties(const std::filesystem::path& collection,
                                            bool includeDailyNotes = true);

// By text::caseInsensitiveKey; the titles in the order of the properties, in which those of one
// note stand together.
std::map<std::string, PropertyUse> usesByKey(const std::vector<NoteProperty>& properties);

// How many notes have the property: of every definition and of every other key in the notes, by
// its text::caseInsensitiveKey.
std::map<std::string, int64_t> usageCounts(const std::filesystem::path& collection,
                                           const std::vector<LKPropertyDefinition>& schema);

// The notes that have the property, or have it with this value in any case; of a multi-select
// property, with this item. Sorted by title.
std::vector<NoteProperty> notesUsing(const std::string& property,
                                     const std::optional<std::string>& value,
                                     const std::filesystem::path& collection);

// Puts titles in the order of lists for people.
void sortTitles(std::vector<std::string>& titles);

}  // namespace PropertyScanner

}  // namespace lk
