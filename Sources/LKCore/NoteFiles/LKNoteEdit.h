#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "LKCore/NoteFiles/LKFileFrontMatter.h"

namespace lk {

// A note's file taken apart so that it can be changed in place: only lines of the block whose
// meaning changes are written anew, and every other byte of the block stays, foreign line ends,
// unknown keys and odd orders among them.
//
//     if (auto note = LKNoteEdit::read(bytes)) {
//       LKFileFrontMatter changed = note->frontMatter;
//       changed.tagRanks["garden"] = "m";
//       bytes = note->written(changed, note->rawBody);
//     }
struct LKNoteEdit {
  std::string_view block;    // with its closing line; points into the file
  std::string_view rawBody;  // as it stands in the file
  LKFileFrontMatter frontMatter;

  // Nothing when the bytes are not UTF-8 or have no valid block.
  static std::optional<LKNoteEdit> read(std::string_view file);

  // The raw body as it is in memory, which is what hashes and task entries are taken from.
  static std::string bodyInMemory(std::string_view rawBody);

  // The whole file with another raw body and block. Keys that this version knows are written where
  // `changed` differs from `frontMatter`, in the line where they stand or else where `serialize`
  // has them; `lk-hash` is always that of the new body. Properties stay as they are.
  std::string written(const LKFileFrontMatter& changed, std::string_view newRawBody) const;
};

}  // namespace lk
