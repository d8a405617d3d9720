#pragma once

// Which notes a book is made of: the notes asked for, without those that the bind spec leaves out, and
// between the ones that it names for the front and the back. Done once, before any builder sees the
// notes.
//
//     notes = LKBindNoteChoice::notesOfBook(std::move(notes), spec, source);

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"

namespace lk {

// The bind spec names a note that the collection does not have.
class LKBindError : public Error {
 public:
  using Error::Error;
};

namespace LKBindNoteChoice {

// Where the notes come from that the bind spec names. Both may throw; it passes through.
struct Source {
  std::function<std::optional<LKBindNoteInput>(std::string_view title)> noteTitled;
  // The notes with the tag or one below it, in the order of the book.
  std::function<std::vector<LKBindNoteInput>(std::string_view tag)> notesTagged;
};

// In this order: `copyrightNote`, `dedicationNote`, `epigraphNote` and the notes with the tag of
// the front, all as front matter; `notes`; the notes with the tag of the back and `aboutAuthorNote`,
// as end matter. A note has one place: one that the bind spec names leaves the rest. Notes with the tag
// of `skipNotesTagged` or one below it are left out unless the bind spec names their title. No function
// of the source is called for what the bind spec does not name.
//
// Throws LKBindError for a title without a note.
std::vector<LKBindNoteInput> notesOfBook(std::vector<LKBindNoteInput> notes, const LKBindSpec& spec,
                                         const Source& source);

}  // namespace LKBindNoteChoice
}  // namespace lk
