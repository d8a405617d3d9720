#pragma once

// A book in the format that was asked for, as bytes.
//
//     const std::string book = boundBook(format, {notes, spec, subject, collection, diagrams},
//                                        options, progress);

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"
#include "LarkspireCLI/Commands/BindCommand.h"
#include "LarkspireCLI/Support/Progress.h"

namespace lk {

// The format that the command's --format names, or else the extension of its --output; HTML where
// neither does. Throws CLIError, general, for a --format that nobody knows.
BindCommand::Format resolveFormat(const BindCommand& command);

// "pdf", "docx", "epub", "html"; the extension of such a file too.
std::string_view rawValue(BindCommand::Format format);

struct BindJob {
  std::vector<LKBindNoteInput> notes;  // as chosen, without a title page of the command's own
  LKBindSpec spec;
  LKBindSubject subject;
  std::filesystem::path collectionRoot;
  LKBindDiagrams diagrams;
};

// Tells the stages, and on standard error the pictures that are not there. Throws CLIError, general,
// with the words of whatever could not make the book.
std::string boundBook(BindCommand::Format format, const BindJob& job, const GlobalOptions& options,
                      Progress& progress);

}  // namespace lk
