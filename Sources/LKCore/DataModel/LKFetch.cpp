#include "LKCore/DataModel/LKFetch.h"

#include <set>
#include <string_view>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

using TextSet = std::set<std::string, std::less<>>;

// One bound value for a list of any length, for json_each.
std::string listValue(const std::vector<std::string>& texts) {
  return Json(texts).dump(-1, ' ', false, Json::error_handler_t::replace);
}

template <typename Row>
LKPredicate<Row> rowsWithIDs(const std::vector<UUID>& wanted) {
  const auto ids = std::make_shared<const std::unordered_set<UUID>>(wanted.begin(), wanted.end());
  std::vector<std::string> texts;
  texts.reserve(wanted.size());
  for (const UUID& id : wanted) texts.push_back(id.text());
  return {.test = [ids](const Row& row) { return ids->contains(row.id); },
          .sql = "id IN (SELECT lk_uuid(value) FROM json_each(?))",
          .values = {listValue(texts)},
          .ids = ids};
}

template <typename Row>
LKPredicate<Row> rowsWithText(std::string Row::*field, const std::string& column,
                              const std::vector<std::string>& wanted) {
  const auto texts = std::make_shared<const TextSet>(wanted.begin(), wanted.end());
  return {.test = [field, texts](const Row& row) { return texts->contains(row.*field); },
          .sql = column + " IN (SELECT value FROM json_each(?))",
          .values = {listValue(wanted)}};
}

}  // namespace

LKPredicate<LKNote> notesWithID(const UUID& id) {
  return rowsWithIDs<LKNote>({id});
}

LKPredicate<LKNote> notesWithIDs(const std::vector<UUID>& ids) {
  return rowsWithIDs<LKNote>(ids);
}

LKPredicate<LKNote> notTrashed() {
  return {.test = [](const LKNote& note) { return !note.isTrashed; },
          .sql = "isTrashed = 0",
          .values = {}};
}

LKPredicate<LKNote> notesTitled(const std::string& title) {
  return {.test = [title](const LKNote& note) { return note.title == title; },
          .sql = "title = ?",
          .values = {title}};
}

LKPredicate<LKNote> notesTitledAnyOf(const std::vector<std::string>& titles) {
  return rowsWithText(&LKNote::title, "title", titles);
}

LKPredicate<LKNote> notesWithTitleLike(const std::string& part) {
  const std::string folded = text::folded(part);
  return {.test = [folded](const LKNote& note) { return foldedContains(note.title, folded); },
          .sql = "lk_folded_contains(title, ?)",
          .values = {folded}};
}

LKPredicate<LKTask> tasksWithID(const UUID& id) {
  return rowsWithIDs<LKTask>({id});
}

LKPredicate<LKTag> tagsWithText(const std::vector<std::string>& texts) {
  return rowsWithText(&LKTag::text, "text", texts);
}

LKPredicate<LKBackLink> linksTo(const UUID& noteID) {
  return {.test = [noteID](const LKBackLink& link) { return link.targetNoteID == noteID; },
          .sql = "targetNoteID = lk_uuid(?)",
          .values = {noteID.text()}};
}

LKSort<LKNote> notesByModifiedDate(LKOrder order) {
  return {.compare =
              [](const LKNote& a, const LKNote& b) {
                const auto result = a.sortModifiedDate <=> b.sortModifiedDate;
                return result < 0 ? -1 : result > 0 ? 1 : 0;
              },
          .sql = "modifiedDate",
          .order = order};
}

bool foldedContains(std::string_view text, std::string_view foldedPart) {
  return text::folded(text).find(foldedPart) != std::string::npos;
}

}  // namespace lk
