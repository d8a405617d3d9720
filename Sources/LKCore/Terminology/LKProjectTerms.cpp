#include "LKCore/Terminology/LKProjectTerms.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <mutex>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"

namespace lk {

namespace {

bool holdsWhitespace(std::string_view word) {
  for (size_t i = 0; i < word.size();) {
    const text::Decoded d = text::decode(word, i);
    if (text::isWhitespaceOrNewline(d.scalar)) return true;
    i += d.length;
  }
  return false;
}

template <typename Value>
void appendDistinct(std::vector<Value>& list, const Value& value) {
  if (std::ranges::find(list, value) == list.end()) list.push_back(value);
}

}  // namespace

void LKProjectTermsSnapshot::setKeywordTables() {
  keywordScalars.clear();
  keywordFirstScalars.clear();
  keywordBreakPairs.clear();
  for (const std::string& keyword : metadataKeywords) {
    if (keyword.empty() || holdsWhitespace(keyword)) continue;
    const std::string withColon = keyword + ":";
    const text::Decoded first = text::decode(withColon, 0);
    const text::Decoded second = text::decode(withColon, first.length);
    keywordScalars.push_back({keyword, withColon});
    appendDistinct(keywordFirstScalars, first.scalar);
    appendDistinct(keywordBreakPairs, {first.scalar, second.scalar});
  }
}

namespace LKProjectTerms {

namespace {

std::mutex mutex;
std::shared_ptr<const LKProjectTermsSnapshot> cached;

std::vector<std::string> words(const Json& file, const char* key) {
  std::vector<std::string> result;
  if (const auto list = file.find(key); list != file.end() && list->is_array()) {
    for (const Json& word : *list) {
      if (word.is_string()) result.push_back(text::lowercased(word.get<std::string>()));
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
  for (std::string& word : all) {
    if (!word.empty() && std::ranges::find(result, word) == result.end()) {
      result.push_back(std::move(word));
    }
  }
  return result;
}

LKProjectTermsSnapshot load() {
  LKProjectTermsSnapshot terms;
  try {
    std::ifstream in(LKCollectionPath::activeDocumentsDirectory() / ".config/terminology.json",
                     std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (bytes.empty()) return terms;
    const Json file = parseJson(bytes);
    if (!file.is_object() || !file.contains("singular") || !file.contains("plural")) return terms;
    LKProjectTermsSnapshot read;
    read.singular = file.at("singular").get<std::string>();
    read.plural = file.at("plural").get<std::string>();
    read.previousSingulars = words(file, "previousSingulars");
    read.previousPlurals = words(file, "previousPlurals");
    read.metadataKeywords = distinct(read.singular, read.previousSingulars, "project");
    read.tagPrefixes = distinct(read.plural, read.previousPlurals, "projects");
    read.setKeywordTables();
    return read;
  } catch (const std::exception&) {
    return terms;
  }
}

}  // namespace

std::shared_ptr<const LKProjectTermsSnapshot> snapshot() {
  const std::lock_guard guard(mutex);
  if (!cached) cached = std::make_shared<const LKProjectTermsSnapshot>(load());
  return cached;
}

void invalidateCache() {
  const std::lock_guard guard(mutex);
  cached.reset();
}

}  // namespace LKProjectTerms

}  // namespace lk
