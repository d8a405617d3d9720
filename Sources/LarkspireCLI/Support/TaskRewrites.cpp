#include "LarkspireCLI/Support/TaskRewrites.h"

#include <cerrno>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Navigation/ProjectHits.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/Progress.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// What the reading of all files finds.
struct RewritePlan {
  std::vector<fs::path> files;       // notes that change
  std::vector<fs::path> plainFiles;  // would, if they were notes
  std::vector<fs::path> otherFiles;  // nobody can tell
  KeptNotes unreadable;
};

void planFile(RewritePlan& plan, const fs::path& file,
              const ProjectsRewrite::Transform& transform) {
  try {
    const std::string bytes = readFile(file);
    if (!text::isValidUTF8(bytes)) {
      plan.otherFiles.push_back(file);
      return;
    }
    const auto document = parseDocumentIfValid(bytes);
    const std::string& body = document ? document->body : bytes;
    if (transform(body).text == body) return;
    (document ? plan.files : plan.plainFiles).push_back(file);
  } catch (const FileError& error) {
    if (error.code() != ENOENT) plan.unreadable.add(file, error);
  }
}

RewritePlan planOf(const fs::path& collection, const GlobalOptions& options,
                   const ProjectsRewrite::Transform& transform) {
  RewritePlan plan;
  const std::vector<fs::path> files = LKFileIndex::noteFiles(collection);
  Progress progress("Reading notes:", options.quiet);
  size_t done = 0;
  for (const fs::path& file : files) {
    planFile(plan, file, transform);
    progress.show(++done, files.size());
  }
  return plan;
}

LKProjectTextRewrite::Counts rewriteNote(const fs::path& file,
                                         const ProjectsRewrite::Transform& transform) {
  LKProjectTextRewrite::Counts counts;
  NoteChange change;
  change.documentTransform = [&](std::string& body, LKFileFrontMatter& block) {
    LKProjectTextRewrite::Rewritten rewritten = transform(body);
    block.taskEntries = entriesByLine(body, block.taskEntries);
    body = std::move(rewritten.text);
    counts = rewritten.counts;
  };
  LKNoteFileService::updateNote(file, change);
  return counts;
}

}  // namespace

RewrittenNotes ProjectsRewrite::run(const fs::path& collection, const GlobalOptions& options,
                                    const Transform& transform) {
  const RewritePlan plan = planOf(collection, options, transform);
  tellLeftFiles(options, plan.plainFiles, "no front matter of a note that can be read");
  tellLeftFiles(options, plan.otherFiles, "no UTF-8 text");
  RewrittenNotes result;
  result.kept = plan.unreadable;
  Progress progress("Changing notes:", options.quiet);
  size_t done = 0;
  for (const fs::path& file : plan.files) {
    try {
      const auto [tagHits, metaHits] = rewriteNote(file, transform);
      ++result.files;
      result.counts.tagHits += tagHits;
      result.counts.metaHits += metaHits;
    } catch (const Error& error) {
      result.kept.add(file, error);
    }
    progress.show(++done, plan.files.size());
  }
  return result;
}

LKProjectTextRewrite::Rewritten ContextsRewrite::rewritten(std::string_view body,
                                                           const LineTransform& lineTransform) {
  return LKProjectTextRewrite::transformOutsideCodeBlocks(body, [&](std::string_view stretch) {
    LKProjectTextRewrite::Rewritten result;
    for (const std::string_view line : text::split(stretch, '\n')) {
      if (line.data() != stretch.data()) result.text += '\n';
      const size_t start = result.text.size();
      result.text += taskMarkLength(line) > 0 ? lineTransform(line) : std::string(line);
      if (result.text.compare(start, std::string::npos, line) != 0) ++result.counts.metaHits;
    }
    return result;
  });
}

RewrittenNotes ContextsRewrite::run(const fs::path& collection, const GlobalOptions& options,
                                    const LineTransform& lineTransform) {
  return ProjectsRewrite::run(
      collection, options, [&](std::string_view body) { return rewritten(body, lineTransform); });
}

}  // namespace lk
