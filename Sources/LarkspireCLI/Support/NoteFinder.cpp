#include "LarkspireCLI/Support/NoteFinder.h"

#include <algorithm>
#include <cerrno>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Base/Time.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LarkspireCLI/Support/CacheReader.h"

namespace lk::NoteFinder {

namespace fs = std::filesystem;

namespace {

// More than any block but one with hundreds of tasks; those are read whole.
constexpr size_t kBlockStart = size_t{16} * 1024;

bool isNoteEntry(const WalkEntry& entry) {
  return LKNoteFilename::hasNoteExtension(entry.name) &&
         (entry.kind == WalkEntry::Kind::file || entry.kind == WalkEntry::Kind::symbolicLink);
}

// The display title behind a file name, without a path object for each of 100,000 names.
std::string_view titleOf(std::string_view fileName) {
  const std::string_view base =
      fileName.substr(0, fileName.size() - LKNoteFilename::noteExtension.size());
  return LKNoteFilename::isUUIDBasename(base) ? std::string_view("Untitled") : base;
}

bool isBelowTrash(const fs::path& folder, const WalkEntry& entry) {
  return folder.native().ends_with("/.trash") || entry.relativePath.starts_with(".trash/") ||
         entry.relativePath.find("/.trash/") != std::string_view::npos;
}

// Calls `visit` with every note file of the collection: those of LKFileIndex, so that whatever is
// listed can be found, and those in the folders of daily and trashed notes where these are links.
void walkNotes(const fs::path& collection, const std::function<void(const std::string&)>& warn,
               const std::function<void(const fs::path& folder, const WalkEntry&)>& visit) {
  WalkOptions options;
  options.hiddenFolders = {".daily", ".trash", ".templates"};
  fs::path folder;
  options.onProblem = [&](const WalkProblem& problem) {
    if (problem.kind == WalkProblem::Kind::nameNotUTF8) {
      warn("Warning: skipped a file whose name is not valid UTF-8: " +
           text::escapedInvalid(problem.relativePath));
    } else if (problem.code != ENOENT) {  // else it has just gone
      warn("Warning: skipped a folder that cannot be read: " +
           FileError(problem.relativePath.empty() ? folder : folder / problem.relativePath,
                     problem.code)
               .description());
    }
  };
  for (const fs::path& each : {collection, collection / ".daily", collection / ".trash"}) {
    std::error_code ignored;
    if (each != collection && !fs::is_symlink(each, ignored)) continue;
    folder = each;
    walkFolder(
        folder,
        [&](const WalkEntry& entry) {
          if (isNoteEntry(entry)) visit(folder, entry);
          return WalkStep::proceed;
        },
        options);
  }
}

std::optional<FileInfo> infoOf(const fs::path& url) {
  try {
    return fileInfo(url);
  } catch (const FileError&) {
    return std::nullopt;
  }
}

std::optional<ResolvedNote> resolvedNote(const fs::path& url) {
  const auto info = infoOf(url);
  if (!info || !info->isRegular) return std::nullopt;
  const auto id = identityOf(url);
  return ResolvedNote{url, id ? *id : UUID::random(), LKNoteFilename::displayName(url)};
}

// Of files that share an id the one that an index keeps: a live one before one in the trash, then
// the smallest name, then the first path. They are read in that order, so the first is the one.
std::optional<ResolvedNote> noteWithID(UUID id, const fs::path& collection,
                                       const std::function<void(const std::string&)>& warn) {
  std::vector<std::tuple<bool, std::string, std::string>> files;  // trashed, name, path
  walkNotes(collection, warn, [&](const fs::path& folder, const WalkEntry& entry) {
    std::string path = (folder / "").string().append(entry.relativePath);
    files.emplace_back(isBelowTrash(folder, entry), entry.name, std::move(path));
  });
  std::ranges::sort(files);
  for (const auto& [isTrashed, name, path] : files) {
    if (identityOf(path) == id) return ResolvedNote{path, id, std::string(titleOf(name))};
  }
  return std::nullopt;
}

// The place in the collection of a note that an index knows, where it can still be meant: a note
// file, neither in the trash nor hidden otherwise, and not outside.
std::optional<fs::path> placeOf(const LKNote& row, const fs::path& collection) {
  if (!row.fileURL || row.isTrashed) return std::nullopt;
  fs::path inside = row.fileURL->lexically_relative(collection);
  if (inside.empty() || *inside.begin() == "..") {
    // The index may have come to the folder by another way.
    inside = resolved(*row.fileURL).lexically_relative(resolved(collection));
  }
  if (inside.empty() || !LKNoteFilename::hasNoteExtension(inside.filename().string()))
    return std::nullopt;
  for (auto part = inside.begin(); part != inside.end(); ++part) {
    const bool isDaily = part == inside.begin() && *part == ".daily";
    if (part->string().starts_with('.') && !isDaily) return std::nullopt;
  }
  return collection / inside;
}

// The first of the index's notes, in path order, whose file is there and passes the test.
std::optional<ResolvedNote> noteAtHand(const LKPredicate<LKNote>& where, const fs::path& collection,
                                       CacheReader& cache,
                                       const std::function<bool(const ResolvedNote&)>& test) {
  std::set<fs::path> places;
  for (const LKNote* row : cache.fetchNotesAtHand(where)) {
    if (auto place = placeOf(*row, collection)) places.insert(*std::move(place));
  }
  for (const fs::path& place : places) {
    auto note = resolvedNote(place);
    if (note && test(*note)) return note;
  }
  return std::nullopt;
}

// The file that the title names in the root of the collection.
std::optional<ResolvedNote> noteInRoot(const std::string& title, const fs::path& collection) {
  if (title.empty() || title.front() == '.' || title.find('/') != std::string::npos) {
    return std::nullopt;
  }
  return resolvedNote(collection / (title + std::string(LKNoteFilename::noteExtension)));
}

struct PartialMatch {
  fs::path url;
  std::string title;
  Instant modified;
};

std::optional<ResolvedNote> best(std::vector<PartialMatch> matches) {
  for (PartialMatch& match : matches) {
    if (const auto info = infoOf(match.url)) match.modified = info->modified;
  }
  std::ranges::sort(matches, [](const PartialMatch& a, const PartialMatch& b) {
    if (a.modified != b.modified) return a.modified > b.modified;
    const int order = text::compareLocalized(a.title, b.title);
    return order != 0 ? order < 0 : a.url < b.url;
  });
  for (const PartialMatch& match : matches) {
    if (auto note = resolvedNote(match.url)) return note;
  }
  return std::nullopt;
}

std::optional<ResolvedNote> noteByTitle(const std::string& reference, const fs::path& collection,
                                        const std::function<void(const std::string&)>& warn) {
  const std::string key = text::caseInsensitiveKey(reference);
  std::set<std::tuple<bool, bool, fs::path>> exact;  // trashed, another case, path: the best first
  std::vector<PartialMatch> partial;
  walkNotes(collection, warn, [&](const fs::path& folder, const WalkEntry& entry) {
    const bool isTrashed = isBelowTrash(folder, entry);
    const std::string_view title = titleOf(entry.name);
    const std::string titleKey = text::caseInsensitiveKey(title);
    if (titleKey == key) {
      exact.emplace(isTrashed, title != reference, folder / entry.relativePath);
    } else if (!isTrashed && titleKey.find(key) != std::string::npos) {
      partial.push_back({folder / entry.relativePath, std::string(title), {}});
    }
  });
  for (const auto& [isTrashed, isOtherCase, url] : exact) {
    if (auto note = resolvedNote(url)) return note;
  }
  return best(std::move(partial));
}

}  // namespace

std::optional<ResolvedNote> resolve(const std::string& reference, const fs::path& collection,
                                    CacheReader& cache,
                                    const std::function<void(const std::string&)>& warn) {
  if (const auto id = UUID::parse(reference)) {
    auto note = noteAtHand(notesWithID(*id), collection, cache,
                           [&](const ResolvedNote& found) { return found.id == *id; });
    return note ? note : noteWithID(*id, collection, warn);
  }
  if (reference.empty()) return std::nullopt;
  if (auto note = noteInRoot(reference, collection)) return note;
  auto note = noteAtHand(notesTitled(reference), collection, cache,
                         [&](const ResolvedNote& found) { return found.title == reference; });
  if (note) return note;
  return noteByTitle(reference, collection, warn);
}

std::vector<fs::path> notesDirectlyIn(const fs::path& folder) {
  std::vector<fs::path> notes;
  walkFolder(folder, [&](const WalkEntry& entry) {
    if (isNoteEntry(entry) && entry.name == entry.relativePath) {
      notes.push_back(folder / entry.name);
    }
    return WalkStep::proceed;
  });
  std::ranges::sort(notes);
  return notes;
}

std::optional<UUID> identityOf(const fs::path& url) {
  try {
    const std::string start = readFileStart(url, kBlockStart);
    const auto id = readIdentity(start);
    return id || start.size() < kBlockStart ? id : readIdentity(readFile(url));
  } catch (const FileError&) {
    return std::nullopt;
  }
}

}  // namespace lk::NoteFinder
