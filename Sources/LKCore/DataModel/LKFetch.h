#pragma once

// What a fetch asks for. A predicate and an order know two faces of one question, a test on a row
// and a piece of SQL, so that a store in memory and one on disk answer alike:
//
//     context.notes().fetch({.where = allOf(notTrashed(), notesTitled("Groceries")),
//                            .order = {notesByModifiedDate(LKOrder::descending)},
//                            .limit = 1,
//                            .parts = LKParts::text});
//
// All SQL of the system stands in this folder.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "LKCore/DataModel/Entities.h"

namespace lk {

using LKSqlValue = std::variant<std::nullptr_t, int64_t, double, std::string>;

template <typename Row>
struct LKPredicate {
  std::function<bool(const Row&)> test;  // empty: every row
  std::string sql;                       // a condition with "?" for each value; empty: every row
  std::vector<LKSqlValue> values;
  // When there, a shortcut: no row with another id passes.
  std::shared_ptr<const std::unordered_set<UUID>> ids = nullptr;
};

enum class LKOrder { ascending, descending };

template <typename Row>
struct LKSort {
  std::function<int(const Row&, const Row&)> compare;  // ascending: negative, zero or positive
  std::string sql;                                     // the column, with its collation
  LKOrder order = LKOrder::ascending;
};

// Rows come in the order given, ties and fetches without an order in the order of insertion.
template <typename Row>
struct LKFetch {
  LKPredicate<Row> where = {};
  std::vector<LKSort<Row>> order = {};
  std::optional<size_t> limit = std::nullopt;
  LKParts parts = LKParts::all;  // of the notes that come, as rows or as relations of rows
};

template <typename Row>
LKPredicate<Row> allOf(LKPredicate<Row> a, LKPredicate<Row> b) {
  if (!a.test) return b;
  if (!b.test) return a;
  LKPredicate<Row> both;
  both.sql = "(" + a.sql + ") AND (" + b.sql + ")";
  both.values = std::move(a.values);
  both.values.insert(both.values.end(), b.values.begin(), b.values.end());
  both.ids = a.ids ? a.ids : b.ids;
  both.test = [first = std::move(a.test), second = std::move(b.test)](const Row& row) {
    return first(row) && second(row);
  };
  return both;
}

LKPredicate<LKNote> notesWithID(const UUID& id);
LKPredicate<LKNote> notesWithIDs(const std::vector<UUID>& ids);
LKPredicate<LKNote> notTrashed();
// Exactly these code points.
LKPredicate<LKNote> notesTitled(const std::string& title);
LKPredicate<LKNote> notesTitledAnyOf(const std::vector<std::string>& titles);
// A part of the title, without regard to case and accents; a superset of what any stricter
// comparison would find.
LKPredicate<LKNote> notesWithTitleLike(const std::string& part);
LKPredicate<LKTask> tasksWithID(const UUID& id);
// Exactly these code points, any of them.
LKPredicate<LKTag> tagsWithText(const std::vector<std::string>& texts);
LKPredicate<LKBackLink> linksTo(const UUID& noteID);

LKSort<LKNote> notesByModifiedDate(LKOrder order);  // sortModifiedDate

// The test of notesWithTitleLike: whether folded `text` contains what is folded already
// (text::folded).
bool foldedContains(std::string_view text, std::string_view foldedPart);

}  // namespace lk
