#pragma once

// The pictures of a book that the command itself looks after: the cover, diagrams, and those that
// are not there.

#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindNoteInput.h"
#include "LarkspireCLI/Support/GlobalOptions.h"
#include "LarkspireCLI/Support/Progress.h"

namespace lk {

// The first picture of the title page, as the note names it; empty when there is none.
std::string coverSource(const std::vector<LKBindNoteInput>& notes);

// The bodies of the closed "mermaid" fences of all notes that the book shows, in their order.
std::vector<std::string> extractMermaidSources(const std::vector<LKBindNoteInput>& notes);

// The diagrams of the notes as pictures, in at most a minute. What cannot be drawn is missing, which
// is said on standard error with the reason.
LKBindDiagrams diagramsOf(const std::vector<LKBindNoteInput>& notes, const GlobalOptions& options,
                          Progress& progress);

// Says on standard error which pictures of the collection that notes name are not there.
void tellMissingPictures(const std::vector<LKBindNoteInput>& notes,
                         const std::filesystem::path& collectionRoot, const GlobalOptions& options);

}  // namespace lk
