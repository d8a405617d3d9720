#include "LKCore/DataModel/StoreColumns.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string_view>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

Json decodedJson(const std::string& text) {
  return Json::parse(text, nullptr, false);  // a discarded value, which is of no kind, on failure
}

std::string encodedJson(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

// The texts of a list ("," between them) or of a dictionary (":" and "," in turn), where none has an
// escape; nothing for any other document, which the parser reads. Nearly all are of this kind, and
// the parser would take a quarter of the time of reading the notes.
std::optional<std::vector<std::string_view>> plainTexts(std::string_view json,
                                                        std::string_view brackets,
                                                        std::string_view between) {
  if (!json.starts_with(brackets.front()) || !json.ends_with(brackets.back())) return std::nullopt;
  const auto isPlain = [](char c) {
    return c != '"' && c != '\\' && static_cast<uint8_t>(c) >= 0x20;
  };
  std::vector<std::string_view> texts;
  for (size_t at = 1; at + 1 < json.size() && json[at] == '"'; ++at) {
    size_t end = at + 1;
    while (end < json.size() && isPlain(json[end])) ++end;
    if (end + 1 >= json.size() || json[end] != '"') break;
    texts.push_back(json.substr(at + 1, end - at - 1));
    at = end + 1;
    const bool isWhole = texts.size() % between.size() == 0;
    if (at + 1 == json.size() && isWhole) return texts;
    if (json[at] != between[(texts.size() - 1) % between.size()]) break;
  }
  return std::nullopt;
}

bool holdsTextsOnly(const Json& container) {
  return std::all_of(container.begin(), container.end(),
                     [](const Json& item) { return item.is_string(); });
}

template <typename Row, auto Member>
Column<Row> columnOf(const std::string& names, LKParts part = LKParts::none) {
  return {.names = names,
          .part = part,
          .take = [](RowReader& reader, Row& row) { reader.take(row.*Member); },
          .put = [](RowBinder& binder, const Row& row) { binder.put(row.*Member); },
          .same = [](const Row& a, const Row& b) { return a.*Member == b.*Member; },
          .assign = [](Row& to, const Row& from) { to.*Member = from.*Member; }};
}

Column<LKNote> modifiedColumn() {
  Column<LKNote> result =
      columnOf<LKNote, &LKNote::modifiedDate>("modifiedDate, modifiedNanoseconds");
  result.take = [](RowReader& reader, LKNote& note) {
    Instant date;
    reader.take(date);
    note.setModifiedDate(date);
  };
  result.assign = [](LKNote& to, const LKNote& from) { to.setModifiedDate(from.modifiedDate); };
  return result;
}

template <typename Row>
std::string createTable() {
  const TableShape<Row>& shape = shapeOf<Row>();
  std::string sql = "CREATE TABLE " + shape.name + " (pk INTEGER PRIMARY KEY AUTOINCREMENT";
  if (!shape.owner.empty()) sql += ", " + shape.owner + " INTEGER";
  for (const Column<Row>& each : shape.columns) {
    if (each.part != LKParts::text) sql += ", " + each.names;
  }
  return sql + ")";
}

}  // namespace

// --- Values --------------------------------------------------------------------------------------

int64_t RowReader::integer() {
  return sqlite3_column_int64(statement_, next_++);
}

void RowReader::take(int& value) {
  value = static_cast<int>(std::clamp<int64_t>(integer(), std::numeric_limits<int>::min(),
                                               std::numeric_limits<int>::max()));
}

void RowReader::take(std::string& value) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement_, next_));
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, next_++));
  if (bytes == nullptr || !text::isValidUTF8({bytes, size})) return value.clear();
  value.assign(bytes, size);
}

void RowReader::take(UUID& value) {
  std::array<uint8_t, 16> bytes{};
  const void* blob = sqlite3_column_blob(statement_, next_);
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, next_++));
  if (blob != nullptr && size == bytes.size()) std::memcpy(bytes.data(), blob, size);
  value = UUID::fromBytes(bytes);
}

void RowReader::take(Instant& value) {
  static constexpr int64_t kLastNanosecond = 999'999'999;
  value.seconds = integer();
  value.nanoseconds = static_cast<int32_t>(std::clamp<int64_t>(integer(), 0, kLastNanosecond));
}

void RowReader::take(std::vector<std::string>& value) {
  std::string text;
  take(text);
  value.clear();
  if (text.empty() || text == "[]") return;
  if (const auto texts = plainTexts(text, "[]", ",")) {
    return value.assign(texts->begin(), texts->end());
  }
  const Json list = decodedJson(text);
  if (!list.is_array() || !holdsTextsOnly(list)) return;
  for (const Json& item : list) value.push_back(item.get<std::string>());
}

void RowReader::take(LKNote::Properties& value) {
  std::string text;
  take(text);
  value.clear();
  if (text.empty() || text == "{}") return;
  if (const auto texts = plainTexts(text, "{}", ":,")) {
    for (size_t i = 0; i < texts->size(); i += 2) {
      value.insert_or_assign(value.end(), std::string((*texts)[i]), std::string((*texts)[i + 1]));
    }
    return;
  }
  const Json object = decodedJson(text);
  if (!object.is_object() || !holdsTextsOnly(object)) return;
  for (const auto& [key, item] : object.items()) value.emplace(key, item.get<std::string>());
}

bool RowReader::takeNull() {
  if (sqlite3_column_type(statement_, next_) != SQLITE_NULL) return false;
  ++next_;
  return true;
}

void RowReader::take(std::optional<std::string>& value) {
  value.reset();
  if (!takeNull()) take(value.emplace());
}

void RowReader::take(std::optional<UUID>& value) {
  value.reset();
  if (!takeNull()) take(value.emplace());
}

void RowReader::take(std::optional<Day>& value) {
  value.reset();
  if (takeNull()) return;
  const int64_t number = std::clamp<int64_t>(integer(), 0, 99'991'231);
  const auto digits = static_cast<int>(number);
  value = Day::make(digits / 10'000, digits / 100 % 100, digits % 100);
}

void RowReader::take(std::optional<std::filesystem::path>& value) {
  value.reset();
  if (takeNull()) return;
  // A name of a file may be any bytes.
  const auto* bytes = static_cast<const char*>(sqlite3_column_blob(statement_, next_));
  const auto size = static_cast<size_t>(sqlite3_column_bytes(statement_, next_++));
  if (bytes != nullptr) value = std::string(bytes, size);
}

void RowBinder::put(const Instant& value) {
  put(value.seconds);
  put(int{value.nanoseconds});
}

void RowBinder::put(const std::vector<std::string>& value) {
  put(value.empty() ? "[]" : encodedJson(value));
}

void RowBinder::put(const LKNote::Properties& value) {
  put(value.empty() ? "{}" : encodedJson(value));
}

void RowBinder::put(const std::optional<Day>& value) {
  if (!value) return statement_.bind(nullptr);
  put(value->year * 10'000 + value->month * 100 + value->day);
}

void RowBinder::put(const std::optional<std::filesystem::path>& value) {
  if (!value) return statement_.bind(nullptr);
  put(value->native());
}

// --- Tables --------------------------------------------------------------------------------------

template <>
const TableShape<LKNote>& shapeOf<LKNote>() {
  static const TableShape<LKNote> shape{
      "note",
      "",
      {columnOf<LKNote, &LKNote::id>("id"),
       columnOf<LKNote, &LKNote::title>("title"),
       columnOf<LKNote, &LKNote::creationDate>("creationDate, creationNanoseconds"),
       modifiedColumn(),
       columnOf<LKNote, &LKNote::isFavourite>("isFavourite"),
       columnOf<LKNote, &LKNote::isTrashed>("isTrashed"),
       columnOf<LKNote, &LKNote::isBook>("isBook"),
       columnOf<LKNote, &LKNote::status>("status"),
       columnOf<LKNote, &LKNote::dailyDate>("dailyDate"),
       columnOf<LKNote, &LKNote::lastCursorLocation>("lastCursorLocation"),
       columnOf<LKNote, &LKNote::size>("size"),
       columnOf<LKNote, &LKNote::userProperties>("userPropertiesJSON"),
       columnOf<LKNote, &LKNote::tagRanks>("tagRanksJSON"),
       columnOf<LKNote, &LKNote::fileURL>("fileURL"),
       columnOf<LKNote, &LKNote::hasActiveTasks>("hasActiveTasks", LKParts::tags),
       columnOf<LKNote, &LKNote::activeTaskCount>("activeTaskCount", LKParts::tags),
       columnOf<LKNote, &LKNote::doneTaskCount>("doneTaskCount", LKParts::tags),
       columnOf<LKNote, &LKNote::overdueTaskCount>("overdueTaskCount", LKParts::tags),
       columnOf<LKNote, &LKNote::imageAttachments>("imageAttachments", LKParts::tags),
       columnOf<LKNote, &LKNote::lineCount>("lineCount", LKParts::words),
       columnOf<LKNote, &LKNote::contentHash>("contentHash", LKParts::hashes),
       columnOf<LKNote, &LKNote::fileDigest>("fileDigest", LKParts::hashes),
       columnOf<LKNote, &LKNote::text>("text", LKParts::text)}};
  return shape;
}

template <>
const TableShape<LKTask>& shapeOf<LKTask>() {
  static const TableShape<LKTask> shape{
      "task",
      "note",
      {columnOf<LKTask, &LKTask::id>("id"), columnOf<LKTask, &LKTask::text>("text"),
       columnOf<LKTask, &LKTask::isComplete>("isComplete"),
       columnOf<LKTask, &LKTask::dateCompleted>("dateCompleted"),
       columnOf<LKTask, &LKTask::dateDue>("dateDue"),
       columnOf<LKTask, &LKTask::priority>("priority"),
       columnOf<LKTask, &LKTask::project>("project"),
       columnOf<LKTask, &LKTask::projectIsInherited>("projectIsInherited"),
       columnOf<LKTask, &LKTask::contexts>("contexts"),
       columnOf<LKTask, &LKTask::paragraphIndex>("paragraphIndex"),
       columnOf<LKTask, &LKTask::statusRaw>("statusRaw"),
       columnOf<LKTask, &LKTask::detail>("detail")}};
  return shape;
}

template <>
const TableShape<LKTag>& shapeOf<LKTag>() {
  static const TableShape<LKTag> shape{
      "tag",
      "",
      {columnOf<LKTag, &LKTag::id>("id"), columnOf<LKTag, &LKTag::text>("text"),
       columnOf<LKTag, &LKTag::createdDate>("createdDate, createdNanoseconds"),
       columnOf<LKTag, &LKTag::symbolName>("symbolName"),
       columnOf<LKTag, &LKTag::tintColorName>("tintColorName")}};
  return shape;
}

template <>
const TableShape<LKBackLink>& shapeOf<LKBackLink>() {
  static const TableShape<LKBackLink> shape{
      "backLink",
      "note",
      {columnOf<LKBackLink, &LKBackLink::id>("id"),
       columnOf<LKBackLink, &LKBackLink::sourceParagraph>("sourceParagraph"),
       columnOf<LKBackLink, &LKBackLink::sourceParagraphIndex>("sourceParagraphIndex"),
       columnOf<LKBackLink, &LKBackLink::targetNoteID>("targetNoteID"),
       columnOf<LKBackLink, &LKBackLink::targetNoteReference>("targetNoteReference")}};
  return shape;
}

template <>
const TableShape<LKNoteVersion>& shapeOf<LKNoteVersion>() {
  static const TableShape<LKNoteVersion> shape{
      "noteVersion",
      "",
      {columnOf<LKNoteVersion, &LKNoteVersion::id>("id"),
       columnOf<LKNoteVersion, &LKNoteVersion::noteText>("noteText"),
       columnOf<LKNoteVersion, &LKNoteVersion::title>("title"),
       columnOf<LKNoteVersion, &LKNoteVersion::dateCreated>("dateCreated, createdNanoseconds"),
       columnOf<LKNoteVersion, &LKNoteVersion::lineCount>("lineCount")}};
  return shape;
}

template <>
const TableShape<LKTaskVersion>& shapeOf<LKTaskVersion>() {
  static const TableShape<LKTaskVersion> shape{
      "taskVersion",
      "noteVersion",
      {columnOf<LKTaskVersion, &LKTaskVersion::id>("id"),
       columnOf<LKTaskVersion, &LKTaskVersion::text>("text"),
       columnOf<LKTaskVersion, &LKTaskVersion::isComplete>("isComplete"),
       columnOf<LKTaskVersion, &LKTaskVersion::dateDue>("dateDue"),
       columnOf<LKTaskVersion, &LKTaskVersion::priority>("priority")}};
  return shape;
}

const std::vector<std::string>& storeSchema() {
  static const std::vector<std::string> statements = {
      createTable<LKNote>(),
      createTable<LKTask>(),
      createTable<LKTag>(),
      createTable<LKBackLink>(),
      createTable<LKNoteVersion>(),
      createTable<LKTaskVersion>(),
      "CREATE TABLE body (note INTEGER PRIMARY KEY, text)",
      "CREATE TABLE noteTag (pk INTEGER PRIMARY KEY, note INTEGER, tag INTEGER)",
      "CREATE INDEX noteByID ON note (id)",
      "CREATE INDEX noteByTitle ON note (title)",
      "CREATE INDEX taskByID ON task (id)",
      "CREATE INDEX taskByNote ON task (note)",
      "CREATE INDEX tagByText ON tag (text)",
      "CREATE INDEX backLinkByNote ON backLink (note)",
      "CREATE INDEX backLinkByTarget ON backLink (targetNoteID)",
      "CREATE INDEX taskVersionByVersion ON taskVersion (noteVersion)",
      "CREATE UNIQUE INDEX noteTagByNote ON noteTag (note, tag)",
      "CREATE INDEX noteTagByTag ON noteTag (tag)",
  };
  return statements;
}

std::string keyList(const std::vector<int64_t>& keys) {
  std::string list = "[";
  for (const int64_t key : keys) {
    if (list.size() > 1) list.push_back(',');
    list += std::to_string(key);
  }
  return list + "]";
}

std::string placeholders(const std::string& names) {
  std::string result = "?";
  for (const char c : names) {
    if (c == ',') result += ", ?";
  }
  return result;
}

}  // namespace lk
