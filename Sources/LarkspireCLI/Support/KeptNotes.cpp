#include "LarkspireCLI/Support/KeptNotes.h"

#include <algorithm>

#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

void KeptNotes::add(const std::filesystem::path& url, const Error& error) {
  const bool namesFile = error.description().find(url.string()) != std::string::npos;
  failures_.push_back(namesFile ? error.description() : url.string() + ": " + error.description());
}

void KeptNotes::refuse(const std::string& what, const std::string& advice) const {
  constexpr size_t kNamed = 10;
  if (failures_.empty()) return;
  std::string report = countOf(failures_.size(), "note") +
                       (failures_.size() == 1 ? " keeps " : " keep ") + what + ":";
  for (size_t i = 0; i < std::min(kNamed, failures_.size()); ++i) report += "\n  " + failures_[i];
  if (failures_.size() > kNamed) {
    report += "\n  and " + std::to_string(failures_.size() - kNamed) + " more";
  }
  throw CLIError::writeFailed(report + "\n  " + advice);
}

void tellLeftFiles(const GlobalOptions& options, const std::vector<std::filesystem::path>& files,
                   const std::string& reason) {
  if (files.empty()) return;
  const size_t more = files.size() - 1;
  printNote(options, "Note: " + files.front().string() +
                         (more > 0 ? " and " + countOf(more, "other file") + " stay as they are"
                                   : " stays as it is") +
                         ": " + reason + ".");
}

}  // namespace lk
