// Finding and reading the notes of a vault, with their blocks.

#include <algorithm>
#include <cerrno>
#include <tuple>

#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportText.h"
#include "LKCore/Import/LKObsidianImporter.h"
#include "LKCore/NoteFiles/NoteBlock.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"

namespace lk::LKObsidianImporter {

namespace fs = std::filesystem;

using LKImportEngine::stripYAMLQuotes;

namespace {

// --- Blocks --------------------------------------------------------------------------------------

// Takes a line, without its line feed, from the front of the text.
std::string_view takeVaultLine(std::string_view& text) {
  const size_t end = std::min(text.find('\n'), text.size());
  const std::string_view line = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return line;
}

// The values of one key as they come in.
class BlockReader {
 public:
  void take(std::string_view line) {
    line = text::trimmed(line);
    if (line.empty() || line.starts_with('#')) return;
    if (line.starts_with("- ")) {
      addTo(list_, line.substr(2));
      return;
    }
    const size_t colon = line.find(':');
    if (colon == std::string_view::npos) return;
    setKey(text::lowercased(text::trimmed(line.substr(0, colon))),
           text::trimmed(line.substr(colon + 1)));
  }

  ObsidianFrontMatter result() && { return std::move(block_); }

 private:
  using List = std::vector<std::string> ObsidianFrontMatter::*;

  void setKey(const std::string& key, std::string_view value) {
    list_ = nullptr;
    const std::string text(stripYAMLQuotes(value));
    if (key == "title" && !text.empty()) block_.title = text;
    const bool isDate = key == "date" || key == "created" || key == "date created";
    if (isDate && !text.empty()) block_.date = text;
    const bool isClass = key == "cssclass" || key == "cssclasses";
    if (isClass && !text.empty()) block_.cssclass = text;
    if (key == "aliases" || key == "alias") setList(&ObsidianFrontMatter::aliases, value);
    if (key == "tags") setList(&ObsidianFrontMatter::tags, value);
  }

  void setList(List list, std::string_view value) {
    list_ = list;
    (block_.*list).clear();
    const bool isInline = value.size() >= 2 && value.front() == '[' && value.back() == ']';
    if (isInline) value = value.substr(1, value.size() - 2);
    for (const std::string_view piece : text::split(value, ',')) addTo(list, piece);
  }

  void addTo(List list, std::string_view piece) {
    if (list == nullptr) return;
    std::string_view value = stripYAMLQuotes(text::trimmed(piece));
    const bool isTag = list == &ObsidianFrontMatter::tags;
    if (isTag && value.starts_with('#')) value.remove_prefix(1);
    if (!value.empty()) (block_.*list).emplace_back(value);
  }

  ObsidianFrontMatter block_;
  List list_ = nullptr;  // that "- " lines belong to
};

// --- Dates ---------------------------------------------------------------------------------------

// "2024-03-01" with "09:26" or "09:26:53" behind one character, in the current time zone.
std::optional<Instant> parseLocalMoment(std::string_view text) {
  static constexpr size_t kDate = 10;
  static constexpr size_t kMinute = 16;
  static constexpr size_t kSecond = 19;
  const bool hasSeconds = text.size() == kSecond && text[kMinute] == ':';
  if (text.size() != kMinute && !hasSeconds) return std::nullopt;
  const bool hasT = text[kDate] == 'T';
  if (!hasT && text[kDate] != ' ') return std::nullopt;
  if (hasT && !hasSeconds) return std::nullopt;
  static const auto minute = LKDateOnly::machineFormatter("yyyy-MM-dd'T'HH:mm");
  std::string form(text.substr(0, kMinute));
  form[kDate] = 'T';
  auto moment = minute->date(form);
  if (!moment || !hasSeconds) return moment;
  const std::string_view digits = text.substr(kMinute + 1);
  int seconds = 0;
  const bool areDigits = std::ranges::all_of(digits, [](char c) { return c >= '0' && c <= '9'; });
  if (!areDigits || !text::parseInteger(digits, seconds) || seconds > 59) return std::nullopt;
  moment->seconds += seconds;
  return moment;
}

// --- Files ---------------------------------------------------------------------------------------

bool isNoteName(std::string_view name) {
  static constexpr std::string_view kNote = ".md";
  if (name.size() <= kNote.size()) return false;
  const std::string_view stem = name.substr(0, name.size() - kNote.size());
  return text::lowercased(name.substr(stem.size())) == kNote && !stem.ends_with(".excalidraw");
}

ObsidianEntry entryOf(const fs::path& url, const fs::path& root) {
  const std::string bytes = readFileItself(url, LKImportEngine::maxTextBytes);
  if (!text::isValidUTF8(bytes)) {
    throw LKImportEngine::ImportRefusal("Could not read or decode file");
  }
  ObsidianEntry entry;
  entry.url = url;
  entry.folderTag = obsidianTag(url, root);
  std::tie(entry.frontMatter, entry.body) = parseFile(LKImportEngine::decoded(bytes).value_or(""));
  return entry;
}

}  // namespace

std::vector<fs::path> notePaths(const fs::path& rootURL, std::vector<ImportProblem>& errors) {
  std::vector<std::string> paths;
  WalkOptions options;
  options.skippedFolders.assign(skipFolders.begin(), skipFolders.end());
  options.onProblem = [&](const WalkProblem& problem) {
    const bool isRoot = problem.relativePath.empty();
    errors.push_back({isRoot ? rootURL.string() : text::escapedInvalid(problem.relativePath),
                      "Could not read file"});
  };
  walkFolder(
      rootURL,
      [&](const WalkEntry& entry) {
        if (isNoteName(entry.name)) paths.emplace_back(entry.relativePath);
        return WalkStep::proceed;
      },
      options);
  std::ranges::sort(paths);
  std::vector<fs::path> urls;
  urls.reserve(paths.size());
  for (const std::string& path : paths) urls.push_back(rootURL / path);
  return urls;
}

std::vector<ObsidianEntry> collectEntries(const fs::path& rootURL,
                                          std::vector<ImportProblem>& errors) {
  std::vector<ObsidianEntry> entries;
  for (const fs::path& url : notePaths(rootURL, errors)) {
    try {
      entries.push_back(entryOf(url, rootURL));
    } catch (const FileError& error) {
      const char* const reason =
          error.code() == EFBIG ? "File too large (max 5 MB)" : "Could not read or decode file";
      errors.push_back({url.filename().string(), reason});
    } catch (const LKImportEngine::ImportRefusal& refusal) {
      errors.push_back({url.filename().string(), refusal.description()});
    }
  }
  return entries;
}

std::pair<std::optional<ObsidianFrontMatter>, std::string> parseFile(std::string_view text) {
  std::string_view rest = text;
  if (text::trimmed(takeVaultLine(rest)) != kBlockFence) return {std::nullopt, std::string(text)};
  BlockReader block;
  while (!rest.empty()) {
    const std::string_view line = takeVaultLine(rest);
    if (text::trimmed(line) == kBlockFence) return {std::move(block).result(), std::string(rest)};
    block.take(line);
  }
  return {std::nullopt, std::string(text)};
}

std::optional<Instant> parseDate(std::string_view text) {
  text = text::trimmed(text);
  if (const auto moment = parseISO8601(text)) return moment;
  if (const auto moment = parseLocalMoment(text)) return moment;
  return LKDateOnly::localDate(text);
}

std::optional<std::string> obsidianTag(const fs::path& url, const fs::path& rootURL) {
  const fs::path folder = url.lexically_normal().parent_path();
  const std::string relative =
      folder.lexically_relative((rootURL / "").lexically_normal().parent_path()).string();
  if (relative.empty() || relative == ".") return std::nullopt;
  return relative;
}

}  // namespace lk::LKObsidianImporter
