#include "LKCore/Terminology/LKProjectTerms.h"

#include <algorithm>
#include <array>
#include <mutex>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Collections/LKCollectionStore.h"
#include "LKCore/Platform/SharedFile.h"
#include "LKCore/Terminology/LKProjectName.h"

namespace lk {

namespace {

constexpr const char* kDefaultSingular = "project";
constexpr const char* kDefaultPlural = "projects";

}  // namespace

LKProjectTermsError LKProjectTermsError::invalid(std::string message) {
  return LKProjectTermsError(std::move(message));
}

namespace LKProjectTerms {

namespace {

std::mutex mutex;
std::shared_ptr<const LKProjectTermsSnapshot> cached;

std::filesystem::path termsFile() {
  return LKCollectionPath::activeDocumentsDirectory() / ".config/terminology.json";
}

// --- Reading -------------------------------------------------------------------------------------

std::optional<std::string> word(const Json& file, const char* key) {
  const auto found = file.find(key);
  if (found == file.end() || !found->is_string()) return std::nullopt;
  return found->get<std::string>();
}

std::vector<std::string> words(const Json& file, const char* key) {
  std::vector<std::string> result;
  if (const auto list = file.find(key); list != file.end() && list->is_array()) {
    for (const Json& past : *list) {
      if (past.is_string()) result.push_back(text::lowercased(past.get<std::string>()));
    }
  }
  return result;
}

std::vector<std::string> distinct(const std::string& current, const std::vector<std::string>& past,
                                  const std::string& fallback) {
  std::vector<std::string> all = {text::lowercased(current)};
  all.insert(all.end(), past.begin(), past.end());
  all.push_back(fallback);
  std::vector<std::string> result;
  for (const std::string& each : all) {
    if (!each.empty() && std::ranges::find(result, each) == result.end()) result.push_back(each);
  }
  return result;
}

LKProjectTermsSnapshot decode(const Json& file) {
  LKProjectTermsSnapshot terms;
  auto singular = word(file, "singular");
  auto plural = word(file, "plural");
  if (!singular || !plural) return terms;
  terms.singular = *std::move(singular);
  terms.plural = *std::move(plural);
  terms.previousSingulars = words(file, "previousSingulars");
  terms.previousPlurals = words(file, "previousPlurals");
  terms.metadataKeywords = distinct(terms.singular, terms.previousSingulars, kDefaultSingular);
  terms.tagPrefixes = distinct(terms.plural, terms.previousPlurals, kDefaultPlural);
  terms.setKeywordTables();
  return terms;
}

LKProjectTermsSnapshot load() {
  try {
    return decode(readSharedObject(termsFile()));
  } catch (const std::exception& error) {
    log::warning(std::string("The words for projects cannot be read: ") + error.what());
    return {};
  }
}

// --- Changing ------------------------------------------------------------------------------------

// Where a tag may go on. The lexers have the same set, a floor above.
bool isTagCharacter(char32_t scalar) {
  return text::isLetter(scalar) || text::isDecimalDigit(scalar) || scalar == '-' || scalar == '/';
}

// A tag opens with a letter: under any other word every project tag would be lost.
bool canOpenTag(std::string_view plural) {
  if (!text::isLetter(text::decode(plural, 0).scalar)) return false;
  for (size_t i = 0; i < plural.size();) {
    const text::Decoded d = text::decode(plural, i);
    if (!isTagCharacter(d.scalar)) return false;
    i += d.length;
  }
  return true;
}

bool isReservedKeyword(std::string_view singular) {
  static constexpr std::array<std::string_view, 5> kReserved = {"due", "done", "priority", "status",
                                                                "id"};
  return std::ranges::find(kReserved, text::lowercased(singular)) != kReserved.end();
}

std::string quoted(std::string_view word) {
  return "“" + std::string(word) + "”";
}

// Puts the word that goes into the list of those before, unless every snapshot knows it anyway.
void keepPrevious(Json& file, const char* key, std::string_view outgoing, std::string_view incoming,
                  std::string_view fallback) {
  Json& list = file[key];
  if (!list.is_array()) list = Json::array();
  const std::string past = text::lowercased(outgoing);
  if (past.empty() || past == fallback || past == text::lowercased(incoming)) return;
  if (std::ranges::find(list, Json(past)) == list.end()) list.push_back(past);
}

void setWords(Json& file, std::string_view singular, std::string_view plural) {
  const LKProjectTermsSnapshot before = decode(file);
  keepPrevious(file, "previousSingulars", before.singular, singular, kDefaultSingular);
  keepPrevious(file, "previousPlurals", before.plural, plural, kDefaultPlural);
  file["singular"] = std::string(singular);
  file["plural"] = std::string(plural);
}

}  // namespace

std::shared_ptr<const LKProjectTermsSnapshot> snapshot() {
  static const notices::Observation watch = notices::observe(kCollectionDidSwitch, invalidateCache);
  const std::lock_guard guard(mutex);
  if (!cached) cached = std::make_shared<const LKProjectTermsSnapshot>(load());
  return cached;
}

void invalidateCache() {
  {
    const std::lock_guard guard(mutex);
    cached.reset();
  }
  notices::post(kTerminologyChanged);
}

std::optional<std::string> validate(std::string_view singular, std::string_view plural) {
  singular = text::trimmedBlanks(singular);
  plural = text::trimmedBlanks(plural);
  if (singular.empty() || plural.empty()) return "Both words are required.";
  if (LKProjectName::holdsWhitespace(singular) || LKProjectName::holdsWhitespace(plural)) {
    return "Words cannot contain spaces.";
  }
  if (text::equalIgnoringCase(singular, plural)) {
    return "The singular and plural words must differ.";
  }
  if (isReservedKeyword(singular)) return quoted(singular) + " is reserved for task metadata.";
  if (!canOpenTag(plural)) return quoted(plural) + " contains characters not allowed in tags.";
  if (singular.find_first_of(":/") != std::string_view::npos) {
    return quoted(singular) + " cannot contain “:” or “/”.";
  }
  return std::nullopt;
}

void update(std::string_view singular, std::string_view plural) {
  if (auto problem = validate(singular, plural)) {
    throw LKProjectTermsError::invalid(*std::move(problem));
  }
  changeSharedObject(termsFile(), Instant::now(), [&](Json& file) {
    setWords(file, text::trimmedBlanks(singular), text::trimmedBlanks(plural));
  });
  invalidateCache();
}

}  // namespace LKProjectTerms

}  // namespace lk
