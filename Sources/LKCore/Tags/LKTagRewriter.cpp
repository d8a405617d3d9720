#include "LKCore/Tags/LKTagRewriter.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <unordered_set>
#include <utility>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileWrite.h"
#include "LKCore/NoteFiles/LKNoteEdit.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKOwnFileWrites.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tags/TagPaths.h"

namespace lk::LKTagRewriter {

namespace fs = std::filesystem;

namespace {

// Matches the name in any Unicode form: they are one tag.
std::string anyForm(std::string_view name) {
  const std::set<std::string> forms{std::string(name), text::composed(name),
                                    text::decomposed(name)};
  if (forms.size() == 1) return Pattern::escaped(name);
  std::string pattern;
  for (const std::string& form : forms) {
    pattern.append(pattern.empty() ? "(?:" : "|").append(Pattern::escaped(form));
  }
  return pattern + ")";
}

using TagRanks = std::map<std::string, std::string>;

TagRanks renamedRanks(const TagRanks& ranks, const KeyTransform& transform) {
  return tags::withRenamedKeys(ranks, [&](const std::string& key) {
    std::string name = transform(key);
    return name == key ? std::nullopt : std::optional(std::move(name));
  });
}

// Does one step of a change; a failure of it is logged in the step's words and goes on up.
template <typename Step>
auto logged(const char* failure, const fs::path& url, const Step& step) {
  try {
    return step();
  } catch (const FileError& error) {
    log::error("LKTagRewriter: " + std::string(failure) + " for " + url.string() + ": " +
               error.description());
    throw;
  }
}

void renameIcons(const std::string& from, const std::string& to, bool isPrefix,
                 const LKTagIconStore& icons) {
  try {
    if (isPrefix) {
      icons.renamePrefix(from, to);
    } else {
      icons.rename(from, to);
    }
  } catch (const Error& error) {
    log::error("LKTagRewriter: the icon of #" + from + " stays: " + error.description());
  }
}

}  // namespace

// --- Names ---------------------------------------------------------------------------------------

RenamePattern renamePattern(std::string_view from, std::string_view to, bool isPrefix) {
  constexpr std::string_view kTagEnd = R"((?=[^\p{L}\p{N}\-/]|$))";
  const std::string below = isPrefix ? R"((/[\p{L}\p{N}\-/]*)?)" : "";
  return {"#" + anyForm(from) + below + std::string(kTagEnd),
          "#" + Pattern::escapedTemplate(to) + (isPrefix ? "$1" : "")};
}

KeyTransform rankKeyTransform(std::string from, std::string to) {
  return [from = std::move(from), to = std::move(to)](const std::string& key) {
    return tags::renamed(key, from, to).value_or(key);
  };
}

std::vector<std::string> collisions(std::string_view renaming, std::string_view to,
                                    const std::vector<std::string>& existingTags) {
  std::unordered_set<std::string> targets;
  std::vector<std::string> staying;
  for (const std::string& tag : existingTags) {
    if (const auto target = tags::renamed(tag, renaming, to)) {
      targets.insert(text::composed(*target));
    } else {
      staying.push_back(tag);
    }
  }
  std::erase_if(staying,
                [&](const std::string& tag) { return !targets.contains(text::composed(tag)); });
  std::ranges::sort(staying);
  return staying;
}

bool isPrefix(std::string_view tag, const std::vector<std::string>& tags) {
  return std::ranges::any_of(tags,
                             [&](const std::string& other) { return tags::isBelow(other, tag); });
}

// --- Files ---------------------------------------------------------------------------------------

std::optional<std::string> rewritten(std::string_view file, const fs::path& url,
                                     const Pattern& pattern, std::string_view replacement,
                                     const KeyTransform& rankKeyTransform) {
  const std::optional<LKNoteEdit> note = LKNoteEdit::read(file);
  if (!note) return std::nullopt;
  const std::string rawBody = pattern.replacingAllByTemplate(note->rawBody, replacement);
  LKFileFrontMatter changed = note->frontMatter;
  changed.tagRanks = renamedRanks(changed.tagRanks, rankKeyTransform);
  if (rawBody == note->rawBody && changed.tagRanks == note->frontMatter.tagRanks) {
    return std::nullopt;
  }
  changed.taskEntries =
      deriveTaskEntriesInPlace(LKNoteEdit::bodyInMemory(note->rawBody),
                               LKNoteEdit::bodyInMemory(rawBody), changed.taskEntries);
  if (LKNoteFilename::isUUIDBasename(url.stem().string())) {
    changed.title = LKNoteFilename::displayName(url);
  }
  return note->written(changed, rawBody);
}

namespace {

// Throws FileError, PatternError, and Error for a text that could not be written; the file is then
// as it was.
bool changeFile(const fs::path& url, const Pattern& pattern, std::string_view replacement,
                const KeyTransform& rankKeyTransform) {
  const FileLock lock = logged("coordinator error", url, [&] { return FileLock::forUpdate(url); });
  const auto after = rewritten(readFile(lock.path()), url, pattern, replacement, rankKeyTransform);
  if (!after) return false;
  if (!text::isValidUTF8(*after)) {
    log::error("LKTagRewriter: serialize failed for " + url.string());
    throw Error("The changed text is not UTF-8.");
  }
  const LKOwnFileWrites::Scope inFlight(url);
  logged("write failed", url, [&] { LKFileWrite::atomically(*after, lock); });
  return true;
}

}  // namespace

bool rewriteFile(const fs::path& url, const Pattern& pattern, std::string_view replacement,
                 const KeyTransform& rankKeyTransform) {
  try {
    return retriedWhenChanged(
        [&] { return changeFile(url, pattern, replacement, rankKeyTransform); });
  } catch (const Error&) {
    return false;
  }
}

std::vector<fs::path> renameInFiles(const std::map<fs::path, std::string>& files,
                                    const std::string& from, const std::string& to, bool isPrefix,
                                    const LKTagIconStore& icons, const FileFailure& onFailure,
                                    const FileProgress& onProgress) {
  std::vector<fs::path> changed;
  if (from.empty() || from == to) return changed;
  const auto fail = [&](const fs::path& url, const Error& error) {
    if (onFailure) onFailure(url, error);
  };
  const RenamePattern names = renamePattern(from, to, isPrefix);
  std::optional<Pattern> pattern;
  try {
    // An accent that stands alone goes on with the name: "#cafe" is not found in "#cafe\u0301".
    pattern.emplace("(?!#" + anyForm(from) + R"(\p{M}))" + names.pattern);
  } catch (const PatternError& error) {
    log::error("LKTagRewriter: #" + from + " cannot be looked for: " + error.description());
    for (const auto& [url, text] : files) fail(url, error);
    return changed;
  }
  const KeyTransform rankKeys = rankKeyTransform(from, to);
  renameIcons(from, to, isPrefix, icons);
  size_t done = 0;
  for (const auto& [url, text] : files) {
    try {
      const bool isChanged = retriedWhenChanged(
          [&, &file = url] { return changeFile(file, *pattern, names.replacement, rankKeys); });
      if (isChanged) changed.push_back(url);
    } catch (const Error& error) {
      fail(url, error);
    }
    ++done;
    if (onProgress) onProgress(done);
  }
  return changed;
}

// --- In the cache --------------------------------------------------------------------------------

bool rewriteNote(const UUID& id, const Pattern& pattern, std::string_view replacement,
                 const KeyTransform& rankKeyTransform, LKTagCache& cache) {
  const std::optional<LKTagCache::Note> before = cache.note(id);
  if (!before) return false;
  LKTagCache::Note after = *before;
  after.text = pattern.replacingAllByTemplate(before->text, replacement);
  after.tagRanks = renamedRanks(before->tagRanks, rankKeyTransform);
  if (after == *before) return false;
  after.tags = LKTagExtractor::extractTags(after.text);
  cache.setNote(id, after);
  return true;
}

std::vector<std::string> syncTags(const UUID& id, std::string_view text, LKTagCache& cache) {
  std::vector<std::string> lost;
  std::optional<LKTagCache::Note> note = cache.note(id);
  if (!note) return lost;
  auto tags = LKTagExtractor::extractTags(text);
  if (tags == note->tags) return lost;
  std::ranges::set_difference(note->tags, tags, std::back_inserter(lost));
  note->tags = std::move(tags);
  cache.setNote(id, *note);
  return lost;
}

std::vector<std::string> removeOrphaned(const std::vector<std::string>& among, LKTagCache& cache,
                                        const LKTagIconStore& icons) {
  std::vector<std::string> removed;
  for (const std::string& tag : among) {
    if (cache.noteCount(tag) != 0) continue;
    cache.removeTag(tag);
    removed.push_back(tag);
  }
  try {
    icons.clear(removed);
  } catch (const Error& error) {
    log::error("LKTagRewriter: icons of removed tags stay: " + error.description());
  }
  return removed;
}

std::vector<std::string> removeOrphanedTags(LKTagCache& cache, const LKTagIconStore& icons) {
  return removeOrphaned(cache.tags(), cache, icons);
}

}  // namespace lk::LKTagRewriter
