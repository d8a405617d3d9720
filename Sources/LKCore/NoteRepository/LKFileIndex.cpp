#include "LKCore/NoteRepository/LKFileIndex.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "LKCore/Backlinks/LKLinkRows.h"
#include "LKCore/Backlinks/LKTagLookup.h"
#include "LKCore/Backlinks/LKTitleIndex.h"
#include "LKCore/Base/Log.h"
#include "LKCore/Base/Text.h"
#include "LKCore/CacheSync/LKTaskCacheSync.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/DataModel/NoteRow.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKIndentation.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteFiles/LKTaskEntries.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LKCore/Tags/LKTagExtractor.h"
#include "LKCore/Tags/LKTagIconStore.h"

namespace lk::LKFileIndex {

namespace fs = std::filesystem;

namespace {

// --- Files ---------------------------------------------------------------------------------------

// Of what may be note files, relative to the folder and in order.
std::vector<std::string> notePaths(const fs::path& folder) {
  std::vector<std::string> paths;
  const WalkOptions options{.hiddenFolders = {".daily", ".trash", ".templates"},
                            .onProblem = nullptr};
  walkFolder(
      folder,
      [&](const WalkEntry& entry) {
        const bool mayBeFile =
            entry.kind == WalkEntry::Kind::file || entry.kind == WalkEntry::Kind::symbolicLink;
        if (mayBeFile && LKNoteFilename::hasNoteExtension(entry.name))
          paths.emplace_back(entry.relativePath);
        return WalkStep::proceed;
      },
      options);
  std::ranges::sort(paths);
  return paths;
}

std::string_view nameOf(std::string_view relativePath) {
  return relativePath.substr(relativePath.rfind('/') + 1);
}

bool isBelowTrash(std::string_view relativePath) {
  return relativePath.starts_with(".trash/") ||
         relativePath.find("/.trash/") != std::string_view::npos;
}

// What a file says, with or without a block.
struct NoteSource {
  LKFileFrontMatter frontMatter;
  std::string body;
  bool hasBlock = false;
};

NoteSource sourceOf(std::string_view bytes, UUIDBatch& ids) {
  if (auto document = parseDocumentIfValid(bytes)) {
    return {std::move(document->frontMatter), std::move(document->body), true};
  }
  NoteSource plain;
  plain.frontMatter.id = ids.next();
  plain.body = spacesToTabs(bytes);
  return plain;
}

Instant creationDateOf(const fs::path& file, Instant otherwise) {
  try {
    const auto info = fileInfo(file);
    return info ? info->created.value_or(info->modified) : otherwise;
  } catch (const FileError&) {
    return otherwise;
  }
}

// --- Tags ----------------------------------------------------------------------------------------

// The one row of each tag. A tag in two Unicode forms is one.
class TagTable {
 public:
  TagTable(const fs::path& collection, LKContext& context, UUIDBatch& ids)
      : icons_(LKTagIconStore(collection).icons()), context_(context), ids_(ids) {}

  LKTag& tagNamed(std::string_view text) {
    const auto found = rows_.find(text);
    if (found != rows_.end()) return *found->second;
    const auto [same, isNew] = rows_.try_emplace(text::composed(text), nullptr);
    if (isNew) same->second = &newRow(text);
    LKTag& row = *same->second;
    rows_.try_emplace(std::string(text), &row);
    return row;
  }

 private:
  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view text) const noexcept {
      return std::hash<std::string_view>{}(text);
    }
  };

  LKTag& newRow(std::string_view text) {
    const auto icon = icons_.find(std::string(text));
    return context_.tags().insert(
        LKTagLookup::newTag(text, icon == icons_.end() ? std::nullopt : std::optional(icon->second),
                            ids_.next(), now_));
  }

  std::map<std::string, LKTagIcon> icons_;
  LKContext& context_;
  UUIDBatch& ids_;
  Instant now_ = Instant::now();
  std::unordered_map<std::string, LKTag*, TextHash, std::equal_to<>> rows_;
};

// --- The build -----------------------------------------------------------------------------------

class IndexBuild {
 public:
  IndexBuild(const fs::path& collection, LKParts parts, LKContext& context)
      : collection_(collection), parts_(parts), context_(context) {
    if (wants(LKParts::tags)) {
      tags_.emplace(collection, context, ids_);
      attachments_ = collection / ".attachments";
    }
    isWholeInTrash_ = std::ranges::find(collection, ".trash") != collection.end();
  }

  void run() {
    const std::vector<std::string> paths = notePaths(collection_);
    winners_.reserve(paths.size());
    FolderReader reader(collection_);
    for (const std::string& path : paths) {
      const auto file = reader.read(path);
      if (file && text::isValidUTF8(file->bytes)) addFile(path, *file);
    }
    if (wants(LKParts::links)) resolveLinks();
    context_.save();
  }

 private:
  struct Winner {
    LKNote* note = nullptr;
    std::string_view name;  // of its file
  };

  bool wants(LKParts part) const { return hasParts(parts_, part); }

  void addFile(const std::string& path, const FolderReader::File& file);
  bool isTrashed(std::string_view path) const { return isWholeInTrash_ || isBelowTrash(path); }
  bool takePlace(const UUID& id, std::string_view path);
  LKNote rowOf(const std::string& path, const FolderReader::File& file, NoteSource& source) const;
  void addExtracted(LKNote& note, const NoteSource& source);
  void addTags(LKNote& note, ExtractionResult& found);
  void addTasks(LKNote& note, const NoteSource& source, const ExtractionResult& found);
  void addLinks(LKNote& note, std::string_view body, const ExtractionResult& found);
  void resolveLinks();

  const fs::path& collection_;
  LKParts parts_;
  LKContext& context_;
  std::string prefix_ = (collection_ / "").string();
  bool isWholeInTrash_ = false;
  UUIDBatch ids_;
  Instant now_ = Instant::now();
  std::shared_ptr<const LKProjectTermsSnapshot> terms_ = LKProjectTerms::snapshot();
  std::optional<fs::path> attachments_;  // when pictures are asked for
  std::optional<TagTable> tags_;
  std::unordered_map<UUID, Winner> winners_;  // by id; the names are those of the paths in `run`
};

void IndexBuild::addFile(const std::string& path, const FolderReader::File& file) {
  NoteSource source = sourceOf(file.bytes, ids_);
  const UUID id = source.frontMatter.id;
  if (source.hasBlock && !takePlace(id, path)) return;
  LKNote& note = context_.notes().insert(rowOf(path, file, source));
  if (source.hasBlock) winners_[id] = {&note, nameOf(path)};
  if (wants(LKParts::words)) updateBodyDerivedCounters(note, source.body);
  const bool isExtracted =
      wants(LKParts::tags) || wants(LKParts::taskLines) || wants(LKParts::links);
  if (isExtracted) addExtracted(note, source);
  if (wants(LKParts::text)) note.text = std::move(source.body);
}

// False when the note of this id is there already and stays.
bool IndexBuild::takePlace(const UUID& id, std::string_view path) {
  const auto earlier = winners_.find(id);
  if (earlier == winners_.end()) return true;
  const auto& [note, name] = earlier->second;
  const bool wins = note->isTrashed == isTrashed(path) ? nameOf(path) < name : note->isTrashed;
  if (wins) context_.notes().remove(*note);
  return wins;
}

LKNote IndexBuild::rowOf(const std::string& path, const FolderReader::File& file,
                         NoteSource& source) const {
  LKFileFrontMatter& frontMatter = source.frontMatter;
  const std::string_view name = nameOf(path);
  LKNote note;
  note.id = frontMatter.id;
  note.title = LKNoteFilename::displayNameOfBasename(
      name.substr(0, name.size() - LKNoteFilename::noteExtension.size()));
  note.fileURL.emplace(prefix_ + path);  // joined as text, so that a path is taken apart once
  note.setModifiedDate(file.modified);
  note.creationDate =
      source.hasBlock ? frontMatter.created : creationDateOf(*note.fileURL, file.modified);
  note.isFavourite = frontMatter.isFavourite;
  note.isTrashed = isTrashed(path);
  note.isBook = frontMatter.isBook;
  note.status = blockStatus(frontMatter);
  note.dailyDate = frontMatter.dailyDate;
  note.size = static_cast<int64_t>(source.body.size());
  note.userProperties = std::move(frontMatter.userProperties);
  note.tagRanks = std::move(frontMatter.tagRanks);
  if (wants(LKParts::hashes)) {
    note.contentHash = computeContentHash(source.body);
    note.fileDigest = computeRawDigest(file.bytes);
  }
  return note;
}

void IndexBuild::addExtracted(LKNote& note, const NoteSource& source) {
  ExtractionResult found = LKTagExtractor::extract(source.body, attachments_, now_, terms_);
  if (wants(LKParts::taskLines)) addTasks(note, source, found);
  if (wants(LKParts::links)) addLinks(note, source.body, found);
  if (wants(LKParts::tags)) addTags(note, found);
}

void IndexBuild::addTags(LKNote& note, ExtractionResult& found) {
  note.hasActiveTasks = found.hasActiveTasks;
  note.activeTaskCount = found.activeTaskCount;
  note.doneTaskCount = found.doneTaskCount;
  note.overdueTaskCount = found.overdueTaskCount;
  note.imageAttachments = std::move(found.imageAttachments);
  for (const std::string& tag : found.tags) addTag(note, tags_->tagNamed(tag));
}

void IndexBuild::addTasks(LKNote& note, const NoteSource& source, const ExtractionResult& found) {
  if (found.tasks.empty()) return;
  const bool haveIDs = wants(LKParts::tasks);
  const std::vector<TaskEntry> entries =
      haveIDs ? deriveTaskEntries(source.body, source.frontMatter.taskEntries)
              : std::vector<TaskEntry>();
  const std::vector<std::string_view> tags(found.projectTags.begin(), found.projectTags.end());
  const auto inherited = LKTaskCacheSync::inheritableProject(tags, *terms_);
  auto entry = entries.begin();  // both lists are in the order of the lines
  for (const TaskInfo& info : found.tasks) {
    while (entry != entries.end() && entry->paragraphIndex < info.paragraphIndex) ++entry;
    const bool isKnown = entry != entries.end() && entry->paragraphIndex == info.paragraphIndex;
    LKTask task;
    if (haveIDs) task.id = isKnown ? entry->id : ids_.next();
    LKTaskCacheSync::populate(task, info, inherited);
    setNote(context_.tasks().insert(std::move(task)), &note);
  }
}

void IndexBuild::addLinks(LKNote& note, std::string_view body, const ExtractionResult& found) {
  if (found.backlinks.empty()) return;
  const auto lines = LKLinkRows::contextLines(found.backlinks, body);
  for (const std::string& reference : found.backlinks) {
    LKBackLink link;
    link.id = ids_.next();
    link.targetNoteReference = reference;
    if (const auto line = lines.find(reference); line != lines.end()) {
      link.sourceParagraph = line->second.text;
      link.sourceParagraphIndex = line->second.index;
    }
    setNote(context_.backLinks().insert(std::move(link)), &note);
  }
}

void IndexBuild::resolveLinks() {
  LKTitleIndex titles(context_);
  for (LKBackLink* link : context_.backLinks().fetch({.parts = LKParts::none})) {
    const LKNote* const target = titles.noteForTitle(link->targetNoteReference);
    if (target != nullptr) link->targetNoteID = target->id;
  }
}

}  // namespace

std::vector<fs::path> noteFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const std::string& path : notePaths(folder)) {
    std::error_code error;
    if (fs::is_regular_file(folder / path, error)) files.push_back(folder / path);
  }
  return files;
}

std::unique_ptr<LKContext> build(const fs::path& collection, LKParts parts) {
  try {
    std::unique_ptr<LKContext> context = makeMemoryStore();
    IndexBuild(collection, parts, *context).run();
    return context;
  } catch (const LKStoreError& error) {
    log::error("no index of " + collection.string() + ": " + error.description());
    return nullptr;
  }
}

}  // namespace lk::LKFileIndex
