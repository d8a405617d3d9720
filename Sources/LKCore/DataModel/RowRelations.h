#pragma once

// What a row's removal means for the rows that it is related to; the same for both stores.

#include <utility>

#include "LKCore/DataModel/LKContext.h"

namespace lk {

// The rows that go with it: a note's tasks and links.
template <typename Row>
void removeDependents(LKContext& /*context*/, Row& /*row*/) {}

inline void removeDependents(LKContext& context, LKNote& note) {
  for (LKTask* task : std::exchange(note.tasks, {})) {
    task->note = nullptr;
    context.tasks().remove(*task);
  }
  for (LKBackLink* link : std::exchange(note.backLinks, {})) {
    link->note = nullptr;
    context.backLinks().remove(*link);
  }
}

// Takes the row out of the relations that its dependents leave.
inline void detach(LKNote& note) {
  while (!note.tags.empty()) removeTag(note, *note.tags.back());
}
inline void detach(LKTag& tag) {
  while (!tag.notes.empty()) removeTag(*tag.notes.back(), tag);
}
inline void detach(LKTask& task) {
  setNote(task, nullptr);
}
inline void detach(LKBackLink& link) {
  setNote(link, nullptr);
}
inline void detach(LKTaskVersion& task) {
  setNoteVersion(task, nullptr);
}
inline void detach(LKNoteVersion& version) {
  while (!version.taskVersions.empty()) setNoteVersion(*version.taskVersions.back(), nullptr);
}

// The same when every row of the table goes, in time linear in the relations.
inline void detachWithAll(LKNote& note) {
  for (LKTag* tag : std::exchange(note.tags, {})) tag->notes.clear();
}
inline void detachWithAll(LKTag& tag) {
  for (LKNote* note : std::exchange(tag.notes, {})) note->tags.clear();
}
inline void detachWithAll(LKTask& task) {
  if (task.note != nullptr) task.note->tasks.clear();
}
inline void detachWithAll(LKBackLink& link) {
  if (link.note != nullptr) link.note->backLinks.clear();
}
inline void detachWithAll(LKTaskVersion& task) {
  if (task.noteVersion != nullptr) task.noteVersion->taskVersions.clear();
}
inline void detachWithAll(LKNoteVersion& version) {
  detach(version);
}

}  // namespace lk
