#include "LKCore/Properties/LKPropertySchemaStore.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Platform/SharedFile.h"
#include "LKCore/Properties/LKBuiltInProperties.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kEmptySchema = "[]\n";

bool hasNoFile(const FileError& error) {
  return error.code() == ENOENT || error.code() == ENOTDIR;
}

// Nothing also for a file that cannot be looked at, of which reading then says why.
std::optional<FileInfo> stampOf(const fs::path& file) {
  try {
    return fileInfo(file);
  } catch (const FileError&) {
    return std::nullopt;
  }
}

PropertySchemaDocument documentIn(const fs::path& file, const std::string& bytes) {
  try {
    return PropertySchemaDocument::decode(bytes);
  } catch (const JsonError& error) {
    throw LKPropertySchemaError::unreadable(file, error);
  }
}

std::vector<LKPropertyDefinition> definitionsIn(const fs::path& file,
                                                std::vector<std::string>& problems) {
  try {
    return documentIn(file, readFile(file)).definitions(&problems);
  } catch (const FileError& error) {
    if (!hasNoFile(error))
      problems.push_back("The property schema cannot be read. " + error.description());
  } catch (const LKPropertySchemaError& error) {
    problems.push_back(error.description());
  }
  return {};
}

void sortDefinitions(std::vector<LKPropertyDefinition>& definitions) {
  std::ranges::stable_sort(definitions,
                           [](const LKPropertyDefinition& a, const LKPropertyDefinition& b) {
                             return text::compareLocalized(a.name, b.name) < 0;
                           });
}

}  // namespace

LKPropertySchemaStore& LKPropertySchemaStore::shared() {
  static LKPropertySchemaStore store(LKCollectionPath::activeDocumentsDirectory);
  return store;
}

LKPropertySchemaStore::LKPropertySchemaStore(std::function<fs::path()> collectionFolder,
                                             Clock clock)
    : collectionFolder_(std::move(collectionFolder)), clock_(std::move(clock)) {}

fs::path LKPropertySchemaStore::file() const {
  return collectionFolder_() / ".properties" / "schema.json";
}

// With the mutex held, as long as the result is used.
const LKPropertySchemaStore::Loaded& LKPropertySchemaStore::loaded() const {
  const fs::path path = file();
  const std::optional<FileInfo> stamp = stampOf(path);
  const Instant now = clock_();
  const bool isFresh = cached_ && cached_->file == path && cached_->stamp == stamp &&
                       cached_->at.seconds == now.seconds;
  if (isFresh) return *cached_;
  cached_.reset();
  Loaded made{.file = path, .stamp = stamp, .at = now, .definitions = {}, .problems = {}};
  std::vector<LKPropertyDefinition> own = definitionsIn(path, made.problems);
  sortDefinitions(own);
  made.definitions = LKBuiltInProperties::all();
  std::ranges::move(own, std::back_inserter(made.definitions));
  for (const std::string& problem : made.problems) log::warning(problem);
  return cached_.emplace(std::move(made));
}

std::vector<LKPropertyDefinition> LKPropertySchemaStore::loadAll() const {
  const std::lock_guard guard(mutex_);
  return loaded().definitions;
}

std::vector<std::string> LKPropertySchemaStore::problems() const {
  const std::lock_guard guard(mutex_);
  return loaded().problems;
}

std::optional<LKPropertyDefinition> LKPropertySchemaStore::definitionNamed(
    std::string_view name) const {
  const std::lock_guard guard(mutex_);
  const LKPropertyDefinition* const found = findDefinition(name, loaded().definitions);
  return found != nullptr ? std::optional(*found) : std::nullopt;
}

void LKPropertySchemaStore::invalidateCache() {
  const std::lock_guard guard(mutex_);
  cached_.reset();
}

void LKPropertySchemaStore::change(const std::function<void(PropertySchemaDocument&)>& apply) {
  const fs::path path = file();
  bool isChanged = false;
  changeSharedFile(path, kEmptySchema, [&](const std::string& before) {
    PropertySchemaDocument document = documentIn(path, before);
    const std::string old = document.text();
    apply(document);
    std::string after = document.text();
    isChanged = after != old;
    return isChanged ? after : before;
  });
  invalidateCache();
  if (isChanged) notices::post(kPropertySchemaChanged);
}

void LKPropertySchemaStore::add(const LKPropertyDefinition& definition) {
  change([&](PropertySchemaDocument& document) { document.add(definition); });
}

void LKPropertySchemaStore::update(const LKPropertyDefinition& definition) {
  change([&](PropertySchemaDocument& document) { document.update(definition); });
}

void LKPropertySchemaStore::remove(const UUID& id) {
  change([&](PropertySchemaDocument& document) { document.remove(id); });
}

void LKPropertySchemaStore::saveAll(const std::vector<LKPropertyDefinition>& definitions) {
  change([&](PropertySchemaDocument& document) { document.replaceAll(definitions); });
}

}  // namespace lk
