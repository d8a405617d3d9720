#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk {

// What renaming tags needs of the cache of notes; whoever keeps a cache makes one of these.
class LKTagCache {
 public:
  struct Note {
    std::string text;  // the body
    std::set<std::string, std::less<>> tags;
    std::map<std::string, std::string> tagRanks;

    bool operator==(const Note&) const = default;
  };

  virtual ~LKTagCache() = default;

  // Nothing when the cache has no such note.
  virtual std::optional<Note> note(const UUID& id) = 0;
  // Puts all three in place, makes the tags that are not there yet, and derives again what the
  // cache keeps of the text besides.
  virtual void setNote(const UUID& id, const Note& note) = 0;

  virtual std::vector<std::string> tags() = 0;
  // The notes that carry exactly this tag.
  virtual size_t noteCount(const std::string& tag) = 0;
  virtual void removeTag(const std::string& tag) = 0;
};

}  // namespace lk
