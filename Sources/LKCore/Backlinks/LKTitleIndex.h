#pragma once

// Which note a `[[reference]]` means: the one of that title, in any case and either Unicode form.
//
//     if (LKNote* note = LKTitleIndex::noteTitled("garden plan", context)) open(*note);
//
// A title's key is text::caseInsensitiveKey. Among notes of one key a live note comes before one
// in the trash, and then the later row before the earlier one. Notes come without LKParts.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "LKCore/Base/UUID.h"
#include "LKCore/DataModel/LKContext.h"

namespace lk {

// What a reference may link to, in the order of the rows.
struct LKLinkTitleMatches {
  std::vector<LKNote*> exact;          // of this title
  std::vector<LKNote*> withExtension;  // of this title and more behind a "."
};

// Every note of a context by its title: for many questions at once, and for a context that grows
// meanwhile. It reads all notes at the first question.
class LKTitleIndex {
 public:
  using Notes = std::unordered_map<std::string, LKNote*>;   // by key
  using TargetIDs = std::unordered_map<std::string, UUID>;  // by key

  explicit LKTitleIndex(LKContext& context) : context_(context) {}

  // Null when there is none. Throws LKStoreError when the notes cannot be read.
  LKNote* noteForTitle(std::string_view title);

  // Takes in a new note, or one whose title changed. A note that lost its title to another one
  // leaves that one in place. Throws LKStoreError.
  void add(LKNote& note);

  // --- Questions to the store, for a few titles. ---

  // Null when there is none, or when the store fails.
  static LKNote* noteTitled(const std::string& title, LKContext& context);

  // The notes found, by the keys of the titles. For more than `batchThreshold` distinct titles all
  // notes are read at once. A store that fails finds nothing.
  static Notes notesTitledAny(const std::vector<std::string>& titles, LKContext& context,
                              size_t batchThreshold);

  // Trash excluded. Throws LKStoreError.
  static LKLinkTitleMatches linkMatches(const std::string& title, LKContext& context);

  // The id of the first of `exact` of each title that has one, by the keys of the titles. Throws
  // LKStoreError.
  static TargetIDs linkTargetIDs(const std::vector<std::string>& titles, LKContext& context,
                                 size_t batchThreshold);

  // The other Unicode form of a title that a comparison without accents would not see through:
  // Hangul, and marks other than the common accents. Nothing when there is none.
  static std::optional<std::string> otherUnicodeForm(std::string_view title);

 private:
  void load();

  LKContext& context_;
  bool isLoaded_ = false;
  Notes byTitle_;
  std::unordered_map<UUID, std::string> titleByNote_;  // keys
};

}  // namespace lk
