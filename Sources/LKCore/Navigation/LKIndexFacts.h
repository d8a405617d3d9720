#pragma once

// What the index of a collection tells the registries of projects and contexts: plain views, so
// that any store of notes can fill them. Whoever fills them leaves out what is in the trash, and
// keeps the text alive while they are used.

#include <span>
#include <string_view>

namespace lk {

// One record a note.
struct LKNoteFacts {
  std::span<const std::string_view> tags;  // as written, without "#"
};

// One record a task, of any status.
struct LKTaskFacts {
  std::string_view project;         // empty for none
  bool projectIsInherited = false;  // from a tag of the note, not from a token on the line
  std::span<const std::string_view> contexts;
  bool isActive = true;  // not started or in progress
};

struct LKIndexFacts {
  std::span<const LKNoteFacts> notes;
  std::span<const LKTaskFacts> tasks;
};

}  // namespace lk
