#include "LarkspireCLI/Commands/BindPictures.h"

#include <chrono>
#include <functional>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/PDF/PrintEngine.h"
#include "LKCore/Pictures/CollectionPicture.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Rendering/LKInlineImage.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/Terminal.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::seconds kTimeToDraw{60};

// Visits the sources of the pictures of a body, those in code left out.
void visitPictures(std::string_view body, const std::function<void(const std::string&)>& visit) {
  if (body.find("![") == std::string_view::npos) return;
  CodeFenceWalk fences;
  for (const std::string_view line : text::split(body, '\n')) {
    if (fences.take(line) != CodeFenceWalk::Line::outside) continue;
    if (line.find("![") == std::string_view::npos) continue;
    for (const LKInlineImageParser::Match& match : LKInlineImageParser::parseAll(line)) {
      if (!match.image.isDocumentLink) visit(match.image.reference);
    }
  }
}

// Of a picture that stands neither in the text itself nor somewhere else in the network.
bool isOfCollection(std::string_view source) {
  const std::string lowered = text::lowercased(source);
  return !lowered.starts_with("data:") && !lowered.starts_with("http://") &&
         !lowered.starts_with("https://");
}

bool pictureIsThere(const std::string& source, const fs::path& collectionRoot) {
  const auto file = pictureFile(source, collectionRoot);
  if (!file) return false;
  try {
    const auto info = fileInfo(*file);
    return info && info->isRegular;
  } catch (const FileError&) {
    return false;
  }
}

}  // namespace

std::string coverSource(const std::vector<LKBindNoteInput>& notes) {
  std::string source;
  for (const LKBindNoteInput& note : notes) {
    if (note.role != LKBindNoteRole::titlePage) continue;
    visitPictures(note.body, [&](const std::string& each) {
      if (source.empty()) source = each;
    });
  }
  return source;
}

std::vector<std::string> extractMermaidSources(const std::vector<LKBindNoteInput>& notes) {
  std::vector<std::string> sources;
  for (const LKBindNoteInput& note : notes) {
    if (note.role == LKBindNoteRole::skip) continue;
    std::optional<CodeFenceOpening> fence;
    std::string content;
    for (const std::string_view line : text::split(note.body, '\n')) {
      if (!fence) {
        fence = parseCodeFenceStart(line);
        content.clear();
      } else if (!isCodeFenceClose(line, *fence)) {
        content.append(line).append("\n");
      } else {
        if (!content.empty()) content.pop_back();
        if (fence->language == "mermaid") sources.push_back(std::exchange(content, {}));
        fence.reset();
      }
    }
  }
  return sources;
}

LKBindDiagrams diagramsOf(const std::vector<LKBindNoteInput>& notes, const GlobalOptions& options,
                          Progress& progress) {
  const std::vector<std::string> sources = extractMermaidSources(notes);
  if (sources.empty()) return {};
  if (!options.json) {
    printNote(options, "Rendering mermaid (" + countOf(sources.size(), "diagram") + ").");
  }
  progress.stage("Drawing diagrams");
  const std::set<std::string> distinct(sources.begin(), sources.end());
  std::string reason;
  LKBindDiagrams drawn = drawnDiagrams({distinct.begin(), distinct.end()},
                                       std::chrono::steady_clock::now() + kTimeToDraw, &reason);
  progress.clear();
  const size_t missing = distinct.size() - drawn.size();
  if (drawn.empty()) {
    printNote(options, "Warning: A placeholder stands for each diagram." +
                           (reason.empty() ? "" : " " + reason));
  } else if (missing > 0) {
    printNote(options, "Warning: A placeholder stands for " + countOf(missing, "diagram") +
                           " that could not be drawn.");
  }
  return drawn;
}

void tellMissingPictures(const std::vector<LKBindNoteInput>& notes, const fs::path& collectionRoot,
                         const GlobalOptions& options) {
  if (options.quiet) return;
  for (const LKBindNoteInput& note : notes) {
    if (note.role == LKBindNoteRole::skip) continue;
    visitPictures(note.body, [&](const std::string& source) {
      if (!isOfCollection(source) || pictureIsThere(source, collectionRoot)) return;
      printNote(options, "Warning: The picture '" + withoutControls(source) + "' in '" +
                             note.noteTitle + "' is not there.");
    });
  }
}

}  // namespace lk
