#include "LKCore/DataModel/Entities.h"

#include <algorithm>
#include <utility>

namespace lk {

namespace {

// Whoever is taken out was mostly put in last.
template <typename Row>
void eraseFromBack(std::vector<Row*>& rows, const Row* row) {
  const auto found = std::find(rows.rbegin(), rows.rend(), row);
  if (found != rows.rend()) rows.erase(std::next(found).base());
}

template <typename Row>
bool hasRow(const std::vector<Row*>& rows, const Row* row) {
  return std::ranges::find(rows, row) != rows.end();
}

// A tag may have all notes and a note very many tags; the shorter list of the two knows as well.
bool areTied(const LKNote& note, const LKTag& tag) {
  return note.tags.size() <= tag.notes.size() ? hasRow(note.tags, &tag) : hasRow(tag.notes, &note);
}

template <typename Row, typename Owner>
void setOwner(Row& row, Owner* Row::*owner, std::vector<Row*> Owner::*rows, Owner* wanted) {
  if (row.*owner == wanted) return;
  if (row.*owner != nullptr) eraseFromBack((row.*owner)->*rows, &row);
  row.*owner = wanted;
  if (wanted != nullptr) (wanted->*rows).push_back(&row);
}

}  // namespace

LKNote::LKNote(std::string noteTitle, std::string noteText, bool favourite, std::optional<Day> day)
    : id(UUID::random()),
      title(std::move(noteTitle)),
      text(std::move(noteText)),
      creationDate(Instant::now()),
      isFavourite(favourite),
      dailyDate(day) {
  setModifiedDate(creationDate);
}

void LKNote::setModifiedDate(Instant date) {
  modifiedDate = date;
  sortModifiedDate = {date.seconds, 0};
}

void addTag(LKNote& note, LKTag& tag) {
  if (areTied(note, tag)) return;
  note.tags.push_back(&tag);
  tag.notes.push_back(&note);
}

void removeTag(LKNote& note, LKTag& tag) {
  if (!areTied(note, tag)) return;
  eraseFromBack(note.tags, &tag);
  eraseFromBack(tag.notes, &note);
}

void setNote(LKTask& task, LKNote* note) {
  setOwner(task, &LKTask::note, &LKNote::tasks, note);
}

void setNote(LKBackLink& link, LKNote* note) {
  setOwner(link, &LKBackLink::note, &LKNote::backLinks, note);
}

void setNoteVersion(LKTaskVersion& task, LKNoteVersion* version) {
  setOwner(task, &LKTaskVersion::noteVersion, &LKNoteVersion::taskVersions, version);
}

}  // namespace lk
