#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Puts the ids that tasks were given into their note's file, if nobody changed it meanwhile.
//
//     const std::string before = LKTaskIDWriteBack::fingerprint(text);
//     ...                                        // derive the entries, serialize
//     LKTaskIDWriteBack::write(file, url, before);
namespace lk::LKTaskIDWriteBack {

enum class Outcome {
  written,
  fileChanged,  // another content is there now, and stays
  failed,       // logged; the file is as it was
};

// What a text is recognised by.
std::string fingerprint(std::string_view text);

// Replaces the file under its lock and keeps its modification date, so that an id does not count
// as an edit. Does nothing unless the file's content still has the fingerprint. Never throws for
// what the disk does.
Outcome write(std::string_view data, const std::filesystem::path& url,
              std::string_view ifUnchangedSince);

}  // namespace lk::LKTaskIDWriteBack
