#include "LKCore/DataModel/SQLiteContext.h"

#include <algorithm>
#include <unordered_set>
#include <utility>
#include <vector>

#include "LKCore/DataModel/RowRelations.h"
#include "LKCore/DataModel/StoredRows.h"

namespace lk {

namespace {

using StoredNote = StoredRow<LKNote>;
using StoredTag = StoredRow<LKTag>;

bool hasKey(const std::vector<int64_t>& keys, int64_t key) {
  return std::ranges::find(keys, key) != keys.end();
}

template <typename Value>
void sortUnique(std::vector<Value>& values) {
  std::ranges::sort(values);
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

class SQLiteContext final : public LKContext {
 public:
  SQLiteContext(std::unique_ptr<Connection> connection, bool isReadOnly,
                std::unique_ptr<UnlockedFile> unlocked)
      : unlocked_(std::move(unlocked)),
        connection_(std::move(connection)),
        isReadOnly_(isReadOnly),
        notes_(*this, *connection_, isReadOnly),
        tasks_(*this, *connection_, isReadOnly, ownersOf<LKTask>()),
        tags_(*this, *connection_, isReadOnly),
        backLinks_(*this, *connection_, isReadOnly, ownersOf<LKBackLink>()),
        noteVersions_(*this, *connection_, isReadOnly),
        taskVersions_(*this, *connection_, isReadOnly, versionOwners()) {}

  LKTable<LKNote>& notes() override { return notes_; }
  LKTable<LKTask>& tasks() override { return tasks_; }
  LKTable<LKTag>& tags() override { return tags_; }
  LKTable<LKBackLink>& backLinks() override { return backLinks_; }
  LKTable<LKNoteVersion>& noteVersions() override { return noteVersions_; }
  LKTable<LKTaskVersion>& taskVersions() override { return taskVersions_; }

  void save() override;

 private:
  template <typename Row>
  class Table final : public LKTable<Row> {
   public:
    Table(SQLiteContext& context, Connection& connection, bool isReadOnly,
          typename StoredRows<Row>::Owners owners = {})
        : rows(connection, isReadOnly, std::move(owners)), context_(context) {}

    std::vector<Row*> fetch(const LKFetch<Row>& what) override {
      const Transaction oneState(*context_.connection_, Transaction::Kind::read);
      const auto found = rows.fetch(what);
      context_.link(found, what.parts, what.where.sql.empty() && !what.limit);
      context_.verify();
      return {found.begin(), found.end()};
    }

    size_t count(const LKPredicate<Row>& where) override {
      const size_t found = rows.count(where);
      context_.verify();
      return found;
    }

    Row& insert(Row row) override { return rows.insert(std::move(row)); }

    void remove(Row& row) override {
      removeDependents(context_, row);
      detach(row);
      rows.remove(StoredRows<Row>::of(row));
    }

    void removeAll() override {
      rows.forEach([&](Row& row) {
        removeDependents(context_, row);
        detachWithAll(row);
      });
      rows.removeAll();
    }

    int64_t persistentID(const Row& row) override { return StoredRows<Row>::of(row).pk; }

    StoredRows<Row> rows;

   private:
    SQLiteContext& context_;
  };

  template <typename Row>
  typename StoredRows<Row>::Owners ownersOf() {
    return {.key =
                [](const Row& row) {
                  return row.note == nullptr ? 0 : StoredRows<LKNote>::of(*row.note).pk;
                },
            .isGone = [this](int64_t pk) { return notes_.rows.isGone(pk); }};
  }

  StoredRows<LKTaskVersion>::Owners versionOwners() {
    return {.key =
                [](const LKTaskVersion& row) {
                  return row.noteVersion == nullptr
                             ? 0
                             : StoredRows<LKNoteVersion>::of(*row.noteVersion).pk;
                },
            .isGone = {}};
  }

  void verify() const {
    if (unlocked_) unlocked_->verify();
  }

  // --- Relations of fetched rows; `isWhole` says that they are all of their table ------------------

  void link(const std::vector<StoredNote*>& notes, LKParts parts, bool isWhole);
  void link(const std::vector<StoredTag*>& tags, LKParts parts, bool isWhole);
  void link(const std::vector<StoredRow<LKTask>*>& tasks, LKParts parts, bool isWhole);
  void link(const std::vector<StoredRow<LKBackLink>*>& links, LKParts parts, bool isWhole);
  void link(const std::vector<StoredRow<LKNoteVersion>*>& versions, LKParts parts, bool isWhole);
  void link(const std::vector<StoredRow<LKTaskVersion>*>& tasks, LKParts parts, bool isWhole);

  void linkTags(const std::vector<StoredNote*>& notes, bool isWhole);
  template <typename Row>
  void linkOwned(StoredRows<Row>& rows, const std::vector<StoredNote*>& notes, LKParts part,
                 bool isWhole);
  template <typename Row>
  void linkWithNotes(StoredRows<Row>& table, const std::vector<StoredRow<Row>*>& rows,
                     LKParts parts);
  template <typename Row>
  void joinNotes(StoredRows<Row>& rows);
  void joinVersions();
  void complete(std::vector<StoredNote*> notes, LKParts parts);

  // A note and a tag of it, by their keys.
  struct Tie {
    int64_t note;
    int64_t tag;
  };
  std::vector<Tie> readTies(const TableScope& scope);  // in the order in which they were tied
  void tie(const std::vector<Tie>& ties);

  struct NewTies {
    StoredNote* note;
    std::vector<int64_t> tags;
  };
  std::vector<NewTies> writeTies();
  void writeAll();

  template <typename Visit>
  void forEachTable(const Visit& visit) {
    visit(notes_.rows);
    visit(tags_.rows);
    visit(noteVersions_.rows);
    visit(tasks_.rows);
    visit(backLinks_.rows);
    visit(taskVersions_.rows);
  }

  std::unique_ptr<UnlockedFile> unlocked_;
  std::unique_ptr<Connection> connection_;
  bool isReadOnly_;
  Table<LKNote> notes_;
  Table<LKTask> tasks_;
  Table<LKTag> tags_;
  Table<LKBackLink> backLinks_;
  Table<LKNoteVersion> noteVersions_;
  Table<LKTaskVersion> taskVersions_;
};

// --- Reading -------------------------------------------------------------------------------------

// The keys of those that lack the relation.
template <typename Stored>
std::vector<int64_t> keysLacking(const std::vector<Stored*>& rows, LKParts relation) {
  std::vector<int64_t> keys;
  for (const Stored* row : rows) {
    if (row->pk != 0 && !hasParts(row->linkedParts, relation)) keys.push_back(row->pk);
  }
  return keys;
}

template <typename Stored>
void markLinked(const std::vector<Stored*>& rows, LKParts relation) {
  for (Stored* row : rows) row->linkedParts = row->linkedParts | relation;
}

TableScope scopeOfKeys(const std::string& column, const std::vector<int64_t>& keys, bool isWhole) {
  return isWhole ? TableScope{} : TableScope::withKeys(column, keys);
}

void SQLiteContext::link(const std::vector<StoredNote*>& notes, LKParts parts, bool isWhole) {
  if (hasParts(parts, LKParts::tags)) linkTags(notes, isWhole);
  if (hasParts(parts, LKParts::taskLines)) linkOwned(tasks_.rows, notes, LKParts::tasks, isWhole);
  if (hasParts(parts, LKParts::links)) linkOwned(backLinks_.rows, notes, LKParts::links, isWhole);
}

void SQLiteContext::linkTags(const std::vector<StoredNote*>& notes, bool isWhole) {
  const std::vector<int64_t> keys = keysLacking(notes, LKParts::tags);
  if (keys.empty()) return;
  TableScope tagsOfNotes;
  if (!isWhole) {
    tagsOfNotes.where =
        "pk IN (SELECT tag FROM noteTag WHERE note IN (SELECT value FROM json_each(?)))";
    tagsOfNotes.values = {keyList(keys)};
  }
  tags_.rows.read(tagsOfNotes, LKParts::none);
  tie(readTies(scopeOfKeys("note", keys, isWhole)));
  markLinked(notes, LKParts::tags);
}

template <typename Row>
void SQLiteContext::linkOwned(StoredRows<Row>& rows, const std::vector<StoredNote*>& notes,
                              LKParts part, bool isWhole) {
  const std::vector<int64_t> keys = keysLacking(notes, part);
  if (keys.empty()) return;
  rows.read(scopeOfKeys("note", keys, isWhole), LKParts::none);
  joinNotes(rows);
  markLinked(notes, part);
}

void SQLiteContext::link(const std::vector<StoredTag*>& tags, LKParts parts, bool isWhole) {
  const std::vector<int64_t> keys = keysLacking(tags, LKParts::tags);
  if (!keys.empty()) {
    const std::vector<Tie> ties = readTies(scopeOfKeys("tag", keys, isWhole));
    std::vector<int64_t> missing;
    for (const Tie& each : ties) {
      if (notes_.rows.find(each.note) == nullptr) missing.push_back(each.note);
    }
    sortUnique(missing);
    if (!missing.empty()) notes_.rows.read(TableScope::withKeys("pk", missing), parts);
    tie(ties);
    markLinked(tags, LKParts::tags);
  }
  std::vector<StoredNote*> notes;
  for (const StoredTag* tag : tags) {
    for (LKNote* note : tag->notes) notes.push_back(&StoredRows<LKNote>::of(*note));
  }
  complete(std::move(notes), parts);
}

void SQLiteContext::link(const std::vector<StoredRow<LKTask>*>& tasks, LKParts parts,
                         bool /*isWhole*/) {
  linkWithNotes(tasks_.rows, tasks, parts);
}

void SQLiteContext::link(const std::vector<StoredRow<LKBackLink>*>& links, LKParts parts,
                         bool /*isWhole*/) {
  linkWithNotes(backLinks_.rows, links, parts);
}

template <typename Row>
void SQLiteContext::linkWithNotes(StoredRows<Row>& table, const std::vector<StoredRow<Row>*>& rows,
                                  LKParts parts) {
  std::vector<int64_t> missing;
  for (const StoredRow<Row>* row : table.unlinked()) {
    const int64_t owner = row->savedOwner;
    if (owner != 0 && notes_.rows.find(owner) == nullptr) missing.push_back(owner);
  }
  if (!missing.empty()) notes_.rows.read(TableScope::withKeys("pk", missing), parts);
  joinNotes(table);
  std::vector<StoredNote*> notes;
  for (const StoredRow<Row>* row : rows) {
    if (row->note != nullptr) notes.push_back(&StoredRows<LKNote>::of(*row->note));
  }
  complete(std::move(notes), parts);
}

// Gives notes that came as relations the parts that they lack.
void SQLiteContext::complete(std::vector<StoredNote*> notes, LKParts parts) {
  sortUnique(notes);
  notes_.rows.fill(notes, parts);
  link(notes, parts, false);
}

template <typename Row>
void SQLiteContext::joinNotes(StoredRows<Row>& rows) {
  for (StoredRow<Row>* row : rows.takeUnlinked()) {
    setNote(*row, notes_.rows.find(row->savedOwner));
  }
}

void SQLiteContext::joinVersions() {
  for (StoredRow<LKTaskVersion>* row : taskVersions_.rows.takeUnlinked()) {
    setNoteVersion(*row, noteVersions_.rows.find(row->savedOwner));
  }
}

void SQLiteContext::link(const std::vector<StoredRow<LKNoteVersion>*>& versions, LKParts /*parts*/,
                         bool isWhole) {
  const std::vector<int64_t> keys = keysLacking(versions, LKParts::all);
  if (keys.empty()) return;
  taskVersions_.rows.read(scopeOfKeys("noteVersion", keys, isWhole), LKParts::none);
  joinVersions();
  markLinked(versions, LKParts::all);
}

void SQLiteContext::link(const std::vector<StoredRow<LKTaskVersion>*>& /*tasks*/, LKParts /*parts*/,
                         bool /*isWhole*/) {
  std::vector<int64_t> missing;
  for (const StoredRow<LKTaskVersion>* row : taskVersions_.rows.unlinked()) {
    if (noteVersions_.rows.find(row->savedOwner) == nullptr) missing.push_back(row->savedOwner);
  }
  if (!missing.empty()) {
    noteVersions_.rows.read(TableScope::withKeys("pk", missing), LKParts::none);
  }
  joinVersions();
}

std::vector<SQLiteContext::Tie> SQLiteContext::readTies(const TableScope& scope) {
  const std::string where = scope.where.empty() ? "" : " WHERE " + scope.where;
  Statement statement =
      connection_->prepared("SELECT note, tag FROM noteTag" + where + " ORDER BY pk");
  statement.bind(scope.values);
  std::vector<Tie> ties;
  while (statement.step()) {
    RowReader reader(statement);
    Tie& each = ties.emplace_back();
    each.note = reader.integer();
    each.tag = reader.integer();
  }
  return ties;
}

// A note whose tags were read before knows better, and so does one whose tag was read and taken off.
void SQLiteContext::tie(const std::vector<Tie>& ties) {
  std::vector<std::pair<StoredNote*, StoredTag*>> fresh;
  for (const Tie& each : ties) {
    StoredNote* note = notes_.rows.find(each.note);
    StoredTag* tag = tags_.rows.find(each.tag);
    if (note == nullptr || tag == nullptr || hasParts(note->linkedParts, LKParts::tags)) continue;
    if (!hasKey(note->savedTags, each.tag)) fresh.emplace_back(note, tag);
  }
  for (const auto& [note, tag] : fresh) {
    note->savedTags.push_back(tag->pk);
    addTag(*note, *tag);
  }
}

// --- Writing -------------------------------------------------------------------------------------

void SQLiteContext::save() {
  if (isReadOnly_) throw LKStoreError(connection_->path().string() + ": opened for reading only");
  std::vector<NewTies> newTies;
  try {
    Transaction writing(*connection_, Transaction::Kind::write);
    writeAll();
    newTies = writeTies();
    writing.commit();
  } catch (...) {
    forEachTable([](auto& rows) { rows.afterFailure(); });
    throw;
  }
  forEachTable([](auto& rows) { rows.afterCommit(); });
  for (NewTies& each : newTies) each.note->savedTags = std::move(each.tags);
}

void SQLiteContext::writeAll() {
  // Owners first, so that their keys are known; removals last, so that a row that has left a
  // removed owner is not taken along.
  forEachTable([](auto& rows) { rows.write(); });
  notes_.rows.removeFromFile(
      {{"body", "note"}, {"noteTag", "note"}, {"task", "note"}, {"backLink", "note"}});
  tags_.rows.removeFromFile({{"noteTag", "tag"}});
  tasks_.rows.removeFromFile({});
  backLinks_.rows.removeFromFile({});
  noteVersions_.rows.removeFromFile({});
  taskVersions_.rows.removeFromFile({});
}

std::vector<SQLiteContext::NewTies> SQLiteContext::writeTies() {
  std::vector<NewTies> changed;
  notes_.rows.forEach([&](StoredNote& note) {
    std::vector<int64_t> keys;
    keys.reserve(note.tags.size());
    for (const LKTag* tag : note.tags) keys.push_back(StoredRows<LKTag>::of(*tag).pk);
    if (keys == note.savedTags) return;
    const auto change = [&](const char* sql, const std::vector<int64_t>& from,
                            const std::vector<int64_t>& without) {
      const std::unordered_set<int64_t> excluded(without.begin(), without.end());
      for (const int64_t key : from) {
        if (excluded.contains(key)) continue;
        Statement statement = connection_->prepared(sql);
        statement.bind(note.pk);
        statement.bind(key);
        statement.run();
      }
    };
    change("INSERT OR IGNORE INTO noteTag (note, tag) VALUES (?, ?)", keys, note.savedTags);
    change("DELETE FROM noteTag WHERE note = ? AND tag = ?", note.savedTags, keys);
    changed.push_back({&note, std::move(keys)});
  });
  return changed;
}

}  // namespace

std::unique_ptr<LKContext> makeSQLiteContext(std::unique_ptr<Connection> connection,
                                             bool isReadOnly,
                                             std::unique_ptr<UnlockedFile> unlocked) {
  return std::make_unique<SQLiteContext>(std::move(connection), isReadOnly, std::move(unlocked));
}

}  // namespace lk
