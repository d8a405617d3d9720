#include "LarkspireCLI/Support/BindNotes.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKDocumentFile.h"
#include "LKCore/NoteFiles/LKSyncError.h"
#include "LKCore/NoteRepository/LKNoteFilters.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Ranks/LKRankComparator.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/NoteOrder.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kRoleProperty = "manuscript-role";

bool isLiveSource(const LKNote& note) {
  return !note.isTrashed && !note.isArchived();
}

bool isBelowTag(const LKNote& note, std::string_view tag) {
  return LKNoteFilters::hasTag(note, tag, LKNoteFilters::TagMatch::subtree);
}

// The first levels of the tag, as many as `like` has.
std::string_view levelsLike(std::string_view tag, std::string_view like) {
  size_t end = 0;
  for (auto slashes = std::ranges::count(like, '/'); slashes >= 0; --slashes) {
    end = std::min(tag.find('/', end == 0 ? 0 : end + 1), tag.size());
  }
  return tag.substr(0, end);
}

// The tag in the letters that the notes use: ranks are kept under those.
std::string tagAsWritten(const std::string& typed, const std::vector<LKNote*>& notes) {
  std::string written = typed;
  for (const LKNote* note : notes) {
    for (const LKTag* tag : note->tags) {
      const std::string_view levels = levelsLike(tag->text, typed);
      if (levels == typed) return typed;
      if (text::equalIgnoringCase(levels, typed)) written = levels;
    }
  }
  return written;
}

}  // namespace

BindNotes::BindNotes(const GlobalOptions& options) : options_(options), cache_(LKParts::tags) {
  if (cache_.container() == nullptr) {
    throw CLIError::general("No index available, and lk couldn't build one from the note files.");
  }
  notes_ = cache_.fetchNotes();
  sortNotes(notes_, NoteOrder::modified);
}

std::vector<LKBindNoteInput> BindNotes::withTag(const std::string& tag) {
  std::vector<LKNote*> tagged = notes_;
  std::erase_if(tagged, [&](const LKNote* note) { return !isBelowTag(*note, tag); });
  if (tagged.empty()) {
    throw CLIError::general("Tag '" + tag +
                            "' was not found in this collection. Run `lk tags` to list available "
                            "tags.");
  }
  std::erase_if(tagged, [](const LKNote* note) { return !isLiveSource(*note); });
  if (tagged.empty()) {
    throw CLIError::general("Tag '" + tag +
                            "' exists but every note carrying it is trashed or archived. Restore "
                            "one before binding.");
  }
  std::vector<LKBindNoteInput> inputs = inputsOf(inOrderOf(tag, tagged));
  if (inputs.empty()) {
    throw CLIError::general(
        "Tag '" + tag + "' matches " + std::to_string(tagged.size()) +
        " note(s) but none could be loaded from disk. The collection's source files may be out of "
        "sync with the SwiftData cache — open Larkspire once to refresh.");
  }
  return inputs;
}

LKBindNoteInput BindNotes::bookTitled(const std::string& title) {
  std::vector<LKNote*> books = liveNotes();
  std::erase_if(books, [](const LKNote* note) { return !note->isBook; });
  if (books.empty()) {
    throw CLIError::general(
        "No book notes found in this collection. Mark one with `lk-book: true` in its front matter "
        "(or use the Mac bind sheet's 'Mark as Book' action), then re-run.");
  }
  sortNotes(books, NoteOrder::title);
  const auto found = std::ranges::find_if(
      books, [&](const LKNote* book) { return text::equal(book->title, title); });
  if (found == books.end()) {
    std::string message =
        "No book note titled '" + title + "' was found. Available book notes in this collection:";
    for (const LKNote* book : books) message += "\n  - " + book->title;
    throw CLIError::general(message);
  }
  if (auto input = inputOf(**found, LKBindNoteRole::book)) return std::move(*input);
  throw CLIError::general("Book note '" + title +
                          "' was found in the cache, but its source file could not be loaded from "
                          "disk. Open Larkspire once to refresh the cache.");
}

LKBindNoteChoice::Source BindNotes::source() {
  return {
      .noteTitled = [this](std::string_view title) -> std::optional<LKBindNoteInput> {
        for (const LKNote* note : liveNotes()) {
          if (text::equal(note->title, title)) return inputOf(*note, LKBindNoteRole::chapter);
        }
        return std::nullopt;
      },
      .notesTagged =
          [this](std::string_view tag) {
            std::vector<LKNote*> tagged = liveNotes();
            std::erase_if(tagged, [&](const LKNote* note) { return !isBelowTag(*note, tag); });
            return inputsOf(inOrderOf(std::string(tag), std::move(tagged)));
          },
  };
}

bool BindNotes::holds(const fs::path& file) const {
  const fs::path target = resolved(file);
  return std::ranges::any_of(notes_, [&](const LKNote* note) {
    std::error_code notThere;
    return note->fileURL && note->fileURL->filename() == target.filename() &&
           fs::equivalent(*note->fileURL, target, notThere);
  });
}

std::vector<LKNote*> BindNotes::liveNotes() const {
  std::vector<LKNote*> live = notes_;
  std::erase_if(live, [](const LKNote* note) { return !isLiveSource(*note); });
  return live;
}

std::vector<LKNote*> BindNotes::inOrderOf(const std::string& tag,
                                          std::vector<LKNote*> notes) const {
  const LKRankComparator::Context list = LKRankComparator::Tag{tagAsWritten(tag, notes)};
  std::ranges::stable_sort(notes, [&](const LKNote* a, const LKNote* b) {
    return LKRankComparator::compare(*a, *b, list) < 0;
  });
  return notes;
}

std::vector<LKBindNoteInput> BindNotes::inputsOf(const std::vector<LKNote*>& notes) const {
  std::vector<LKBindNoteInput> inputs;
  for (const LKNote* note : notes) {
    if (auto input = inputOf(*note, LKBindNoteRole::chapter)) inputs.push_back(std::move(*input));
  }
  return inputs;
}

// Nothing when the file cannot be read.
std::optional<LKBindNoteInput> BindNotes::inputOf(const LKNote& note,
                                                  LKBindNoteRole withoutRole) const {
  if (!note.fileURL) return std::nullopt;
  try {
    LKDocumentFile file = LKDocumentFile::parse(*note.fileURL);
    LKBindNoteInput input = {std::move(file.title), std::move(file.text), withoutRole};
    for (const LKTag* tag : note.tags) input.tags.push_back(tag->text);
    const auto said = file.userProperties.find(kRoleProperty);
    if (said == file.userProperties.end()) return input;
    const auto role = LKBindNoteRoles::parse(said->second);
    input.role = role.value_or(withoutRole);
    if (!role && !text::trimmed(said->second).empty()) {
      printNote(options_, "Warning: '" + input.noteTitle + "' has the unknown manuscript-role '" +
                              said->second + "'; bound as " + std::string(rawValue(withoutRole)) +
                              ".");
    }
    return input;
  } catch (const LKSyncError& error) {
    printNote(options_, "Warning: '" + note.title + "' cannot be bound: " + error.description());
    return std::nullopt;
  }
}

}  // namespace lk
