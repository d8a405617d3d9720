#include "LarkspireCLI/CompletionValues.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <optional>
#include <set>

#include "LKCore/Base/Text.h"
#include "LKCore/CacheSync/StoreIndexFacts.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/Navigation/LKTaskContextStore.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Properties/LKPropertySchemaStore.h"
#include "LKCore/Queries/LKQueryStore.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteFinder.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/ShellLine.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

struct CompletionKind {
  std::string_view name;
  Completion kind;
};

constexpr CompletionKind completionKinds[] = {
    {"note", Completion::noteTitle},
    {"trashed", Completion::trashedTitle},
    {"tag", Completion::tag},
    {"project", Completion::project},
    {"context", Completion::context},
    {"collection", Completion::collection},
    {"property", Completion::property},
    {"query", Completion::query},
    {"collection", Completion::collectionOrFolder},
};

// --- Where ---------------------------------------------------------------------------------------

// As far as a shell would expand it without running anything.
std::string withHomeFolder(std::string path) {
  const char* home = std::getenv("HOME");
  if (home != nullptr && (path == "~" || path.starts_with("~/"))) path.replace(0, 1, home);
  return path;
}

std::optional<std::string> collectionNamedIn(const std::vector<std::string>& words) {
  constexpr std::string_view option = "--collection";
  std::optional<std::string> reference;
  for (auto word = words.begin(); word != words.end() && *word != "--"; ++word) {
    if (*word == option && std::next(word) != words.end()) {
      reference = withHomeFolder(*++word);
    } else if (word->starts_with(option) && word->substr(option.size()).starts_with('=')) {
      reference = withHomeFolder(word->substr(option.size() + 1));
    }
  }
  return reference;
}

// --- What ----------------------------------------------------------------------------------------

std::set<std::string> offeredCollections() {
  std::set<std::string> names;
  for (const LKCollectionRecord& record : LKCollectionStore::shared().collections()) {
    names.insert(record.name);
  }
  if (const auto registry = AppContainerRegistry::read()) {
    for (const auto& row : registry->collections) names.insert(row.name);
  }
  return names;
}

bool isInHiddenFolder(const fs::path& file, const fs::path& collection) {
  const fs::path inside = file.lexically_relative(collection);
  return std::any_of(inside.begin(), inside.end(),
                     [](const fs::path& part) { return part.native().starts_with('.'); });
}

// Daily notes are named by their day and would only be in the way.
std::set<std::string> offeredTitles(const fs::path& collection) {
  std::set<std::string> titles;
  for (const fs::path& file : LKFileIndex::noteFiles(collection)) {
    if (!isInHiddenFolder(file, collection) && !LKNoteFilename::isUntitledFilename(file)) {
      titles.insert(LKNoteFilename::displayName(file));
    }
  }
  return titles;
}

std::set<std::string> offeredTrashedTitles(const fs::path& collection) {
  std::set<std::string> titles;
  for (const fs::path& file : NoteFinder::notesDirectlyIn(collection / ".trash")) {
    titles.insert(LKNoteFilename::displayName(file));
  }
  return titles;
}

std::set<std::string> offeredTags() {
  CacheReader cache(LKParts::tags);
  std::set<std::string> names;
  for (const TagRow& row : OutputFormatter::tagRows(cache.fetchTags())) names.insert(row.tag);
  return names;
}

std::set<std::string> offeredProjectsOrContexts(Completion kind) {
  CacheReader cache(LKParts::tags | LKParts::taskLines);
  LKContext* index = cache.container();
  if (index == nullptr) return {};
  const StoreIndexFacts facts(*index);
  const std::vector<std::string> names = kind == Completion::project
                                             ? LKProjectStore::shared().allKnownNames(facts.facts())
                                             : LKTaskContextStore::allKnownContexts(facts.facts());
  return {names.begin(), names.end()};
}

std::set<std::string> offeredProperties(const fs::path& collection) {
  std::set<std::string> names;
  const LKPropertySchemaStore schema([&] { return collection; });
  for (const LKPropertyDefinition& each : schema.loadAll()) names.insert(each.name);
  CacheReader cache(LKParts::none);
  for (const LKNote* note : cache.fetchNotes()) {
    for (const auto& property : note->userProperties) names.insert(property.first);
  }
  return names;
}

std::set<std::string> offeredQueries(const fs::path& collection) {
  std::set<std::string> names;
  const LKQueryStore store(collection);  // completing a word changes no file
  for (const LKSavedQuery& each : store.loadAll({}, LKQueryStore::OldFolder::left)) {
    names.insert(each.name);
  }
  return names;
}

std::set<std::string> offeredValues(Completion kind, const std::vector<std::string>& words) {
  if (kind == Completion::collection) return offeredCollections();
  const fs::path collection = resolvedCollectionAsItStands(collectionNamedIn(words), true);
  switch (kind) {
    case Completion::noteTitle:
      return offeredTitles(collection);
    case Completion::trashedTitle:
      return offeredTrashedTitles(collection);
    case Completion::tag:
      return offeredTags();
    case Completion::project:
    case Completion::context:
      return offeredProjectsOrContexts(kind);
    case Completion::property:
      return offeredProperties(collection);
    case Completion::query:
      return offeredQueries(collection);
    default:
      return {};
  }
}

// --- How -----------------------------------------------------------------------------------------

// What is asked: the words before the one at the cursor, and that one where the shell leaves the
// choice to us.
struct Question {
  Completion kind = Completion::none;
  bool isArgument = false;  // no value of an option
  std::vector<std::string> words;
  std::optional<ShellWord> typed;
};

Question questionOf(const std::vector<std::string>& words) {
  Question question;
  const auto named = std::ranges::find(completionKinds, words[1], &CompletionKind::name);
  if (named == std::end(completionKinds)) return question;
  question.kind = named->kind;
  question.isArgument = words[2] == "argument";
  if (words[0] == "words") {
    question.words.assign(words.begin() + 3, words.end());
  } else if (words.size() == 4) {
    ShellWords line = shellCommands(words[3]).back();
    question.typed = line.back();
    line.pop_back();
    for (ShellWord& word : line) question.words.push_back(std::move(word.text));
  }
  return question;
}

// `--note=Gar` is being completed as "Gar".
ShellWord valuePart(ShellWord typed) {
  const size_t assigned = typed.text.find('=');
  if (!typed.text.starts_with("--") || assigned == std::string::npos) return typed;
  typed.text.erase(0, assigned + 1);
  typed.kept -= std::min(typed.kept, assigned + 1);
  return typed;
}

std::string answerTo(const Question& question) {
  const bool isBare = std::ranges::find(question.words, "--") != question.words.end();
  ShellWord typed = question.typed.value_or(ShellWord{});
  if (!question.isArgument) typed = valuePart(std::move(typed));
  std::string lines;
  for (const std::string& value : offeredValues(question.kind, question.words)) {
    // Where options may stand, a word with a dash in front would be taken for one.
    if (question.isArgument && !isBare && value.starts_with('-')) continue;
    if (!value.starts_with(typed.text) || withoutControls(value) != value) continue;
    lines += question.typed
                 ? shellQuoted(std::string_view(value).substr(typed.kept), typed.openQuote)
                 : value;
    lines += '\n';
  }
  return lines;
}

}  // namespace

std::string_view completionName(Completion kind) {
  const auto* named = std::ranges::find(completionKinds, kind, &CompletionKind::kind);
  return named == std::end(completionKinds) ? "" : named->name;
}

std::string completionValues(const std::vector<std::string>& words) {
  const bool isUnderstood =
      words.size() >= 3 &&
      std::ranges::all_of(words, [](const std::string& word) { return text::isValidUTF8(word); });
  if (!isUnderstood) return "";
  try {
    return answerTo(questionOf(words));
  } catch (const std::exception&) {
    return "";  // a shell has no place for it in the middle of a line
  }
}

}  // namespace lk
