#pragma once

// The notes that a book is bound from: those of a tag in the order that was given to them, or one
// book note, read from their files.
//
//     BindNotes notes(options);
//     std::vector<LKBindNoteInput> inputs = notes.withTag("novel");
//
// Notes in the trash and archived ones are no source. A note's property "manuscript-role" says what
// it is in the book.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindNoteChoice.h"
#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/DataModel/Entities.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/GlobalOptions.h"

namespace lk {

class BindNotes {
 public:
  // Of the collection of this run. Throws CLIError when there is no index.
  explicit BindNotes(const GlobalOptions& options);

  // The notes with the tag or one below it, chapters unless they say otherwise. One that cannot be
  // read is left out, which is said on standard error. Throws CLIError when none is left.
  std::vector<LKBindNoteInput> withTag(const std::string& tag);

  // The book note of that title, a whole manuscript unless it says otherwise. Throws CLIError.
  LKBindNoteInput bookTitled(const std::string& title);

  // For the notes that a spec names. Lives as long as this.
  LKBindNoteChoice::Source source();

  // True when the file is a note of the collection, be it in the trash.
  bool holds(const std::filesystem::path& file) const;

 private:
  std::vector<LKNote*> liveNotes() const;
  std::vector<LKNote*> inOrderOf(const std::string& tag, std::vector<LKNote*> notes) const;
  std::vector<LKBindNoteInput> inputsOf(const std::vector<LKNote*>& notes) const;
  std::optional<LKBindNoteInput> inputOf(const LKNote& note, LKBindNoteRole withoutRole) const;

  const GlobalOptions& options_;
  CacheReader cache_;
  std::vector<LKNote*> notes_;  // the one changed last first
};

}  // namespace lk
