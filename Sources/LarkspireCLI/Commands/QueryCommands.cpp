#include "LarkspireCLI/Commands/QueryCommands.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Queries/LKQueryExecutor.h"
#include "LKCore/Queries/LKQueryStore.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteOrder.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {

namespace {

// The queries of the collection in use, the built-in ones among them unless nothing may be written
// there.
std::vector<LKSavedQuery> savedQueries(const GlobalOptions& options) {
  const std::filesystem::path collection = resolvedCollection(options.collection, options.quiet);
  const LKQueryStore store(collection);
  // The tool cannot tell what is still on its way from the cloud.
  constexpr bool kFullySynced = false;
  const bool isReadOnly = collectionMode(collection) == LKCollectionMode::readOnly;
  if (!isReadOnly) store.installDefaultQueries(LKQueryStore::Install::once, kFullySynced);
  const auto warn = [&](const std::filesystem::path& file, const Error& why) {
    printNote(options, "Warning: " + file.string() +
                           " is no saved query that lk understands: " + why.description());
  };
  return store.loadAll(warn,
                       isReadOnly ? LKQueryStore::OldFolder::left : LKQueryStore::OldFolder::moved);
}

std::string ruleWords(const LKQueryRule& rule) {
  std::string words(fieldText(rule.field));
  words.append(" ").append(operatorText(rule.op));
  if (!takesNoValue(rule.op)) words.append(" \"").append(rule.value).append("\"");
  return words;
}

std::string rulesWords(const std::vector<LKQueryRule>& rules, std::string_view conjunction) {
  std::string words;
  for (const LKQueryRule& rule : rules) {
    if (!words.empty()) words.append(" ").append(conjunction).append(" ");
    words += ruleWords(rule);
  }
  return words;
}

// What the query asks for: "tag isUnder "garden" and one task: taskDueDate isToday".
std::string queryWords(const LKSavedQuery& query) {
  const bool isAny = query.combiner == LKSavedQuery::Combiner::any;
  const bool hasGroup = query.taskGroup && !query.taskGroup->isEmpty();
  std::string words = rulesWords(query.rules, isAny ? "or" : "and");
  if (!hasGroup) return !words.empty() ? words : isAny ? "no note" : "every note";
  if (isAny && query.rules.size() > 1) words = "(" + words + ")";
  if (!words.empty()) words += " and ";
  return words + "one task: " + rulesWords(query.taskGroup->rules, "and");
}

Json rulesJson(const std::vector<LKQueryRule>& rules) {
  Json array = Json::array();
  for (const LKQueryRule& rule : rules) {
    array.push_back(
        {{"field", fieldText(rule.field)}, {"op", operatorText(rule.op)}, {"value", rule.value}});
  }
  return array;
}

Json queryJson(const LKSavedQuery& query) {
  Json object = {{"id", query.id.text()},
                 {"name", query.name},
                 {"combiner", combinerText(query.combiner)},
                 {"isBuiltIn", query.isBuiltIn},
                 {"rules", rulesJson(query.rules)}};
  if (query.taskGroup) object["taskGroup"] = {{"rules", rulesJson(query.taskGroup->rules)}};
  return object;
}

std::string queryListText(const std::vector<LKSavedQuery>& queries, bool asJSON) {
  if (asJSON) {
    Json array = Json::array();
    for (const LKSavedQuery& query : queries) array.push_back(queryJson(query));
    return OutputFormatter::jsonEncode(array);
  }
  if (queries.empty()) return "No saved queries.";
  TextColumns list;
  for (const LKSavedQuery& query : queries) {
    list.add({{query.name, TextStyle::bold}, {queryWords(query), TextStyle::dim}});
  }
  return list.text(Terminal::ofStandardOutput());
}

// The query of that name, or the only one whose name begins with it, in any case.
const LKSavedQuery& queryNamed(const std::string& name, const std::vector<LKSavedQuery>& queries) {
  const std::string wanted = text::caseInsensitiveKey(name);
  const LKSavedQuery* candidate = nullptr;
  bool isOnly = true;
  for (const LKSavedQuery& query : queries) {
    const std::string key = text::caseInsensitiveKey(query.name);
    if (key == wanted) return query;
    if (!key.starts_with(wanted)) continue;
    isOnly = candidate == nullptr;
    candidate = &query;
  }
  if (candidate != nullptr && isOnly) return *candidate;
  throw CLIError::general("Saved query not found: " + name + ". Run `lk query list` to see them.");
}

}  // namespace

void QueryListCommand::declare(ArgumentList& /*arguments*/) {}

void QueryListCommand::run() {
  printLine(queryListText(savedQueries(options), options.json));
}

void QueryRunCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Saved query name (or unambiguous prefix).").completion =
      Completion::query;
}

void QueryRunCommand::run() {
  const std::vector<LKSavedQuery> queries = savedQueries(options);
  const LKSavedQuery& query = queryNamed(name, queries);
  CacheReader cache(LKParts::tags | LKQueryExecutor::partsNeeded(query));  // a list shows the tags
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Running a query needs an index, and lk couldn't build one from the note files.");
  }
  std::vector<LKNote*> notes = cache.fetchNotes();
  if (!query.targetsTrashedNotes()) {
    std::erase_if(notes, [](const LKNote* note) { return note->isTrashed; });
  }
  notes = LKQueryExecutor::execute(query, notes);
  sortNotes(notes, NoteOrder::title);
  printLine(OutputFormatter::formatNoteList(notes, options.json, Terminal::ofStandardOutput()));
}

}  // namespace lk
