#include "LKCore/NoteFiles/LKNoteFilename.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk::LKNoteFilename {

namespace {

constexpr std::string_view kUntitled = "Untitled";

bool isInteger(std::string_view text) {
  int64_t ignored = 0;
  return text::parseInteger(text, ignored);
}

// "untitled", or "untitled" and an integer, in any case.
bool isLegacyUntitledBasename(std::string_view name) {
  const std::string lower = text::lowercased(name);
  if (lower == "untitled") return true;
  std::vector<std::string_view> words;
  for (const std::string_view word : text::split(lower, ' ')) {
    if (!word.empty()) words.push_back(word);
  }
  return words.size() == 2 && words[0] == "untitled" && isInteger(words[1]);
}

bool carriesNoTitle(std::string_view name) {
  return isUUIDBasename(name) || isLegacyUntitledBasename(name);
}

// Trims and drops in turn, so that no blank before a full stop saves it: a title never makes a
// hidden file.
std::string_view withoutLeadingStops(std::string_view trimmed) {
  while (trimmed.starts_with('.')) {
    trimmed = text::trimmedLeading(trimmed.substr(1));
  }
  return trimmed;
}

}  // namespace

bool hasNoteExtension(std::string_view fileName) {
  if (fileName.size() <= noteExtension.size()) return false;
  const std::string_view extension = fileName.substr(fileName.size() - noteExtension.size());
  return extension[0] == '.' && (extension[1] | 0x20) == 'm' && (extension[2] | 0x20) == 'd';
}

std::string displayName(const std::filesystem::path& url) {
  return displayNameOfBasename(url.stem().string());
}

std::string displayNameOfBasename(std::string_view basename) {
  return std::string(isUUIDBasename(basename) ? kUntitled : basename);
}

bool isUntitledFilename(const std::filesystem::path& url) {
  return carriesNoTitle(url.stem().string());
}

bool isUntitledDisplayName(std::string_view name) {
  return name == kUntitled;
}

bool isUUIDBasename(std::string_view name) {
  return UUID::parse(name).has_value();
}

bool isUntitledIgnoringCopySuffix(std::string_view name) {
  if (carriesNoTitle(name)) return true;
  const size_t blank = name.rfind(' ');
  return blank != std::string_view::npos && isInteger(name.substr(blank + 1)) &&
         carriesNoTitle(name.substr(0, blank));
}

std::string shortSuffix(const UUID& uuid) {
  return uuid.lowercaseText().substr(0, 8);
}

std::string sanitize(std::string_view displayName) {
  static const Pattern whitespace(R"(\s+)");
  std::string legal = stripIllegalCharacters(text::composed(displayName));
  std::erase(legal, '\0');  // ends a name for the system
  const std::string spaced = whitespace.replacingAll(legal, " ");
  return clampToBytes(withoutLeadingStops(text::trimmed(spaced)), displayNameByteLimit);
}

std::string stripIllegalCharacters(std::string_view text) {
  std::string result(text);
  std::erase_if(result,
                [](char c) { return illegalNameCharacters.find(c) != std::string_view::npos; });
  return result;
}

std::string clampToBytes(std::string_view text, size_t max) {
  if (text.size() <= max) return std::string(text);
  std::string_view kept = text.substr(0, 0);
  size_t characters = 0;
  for (const size_t end : text::characterEnds(text)) {
    if (end > max) break;
    kept = text.substr(0, end);
    ++characters;
  }
  const size_t least = max / 4;
  const size_t blank = kept.rfind(' ');
  if (characters < least || blank == std::string_view::npos) return std::string(kept);
  const std::string_view words = kept.substr(0, blank);
  const bool enough = text::characterEnds(words).size() >= std::max<size_t>(least, 1);
  return std::string(enough ? words : kept);
}

}  // namespace lk::LKNoteFilename
