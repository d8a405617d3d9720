#pragma once

// A change of many notes goes on after a file that cannot be changed; this remembers those, and
// tells of them when the rest is done.
//
//     KeptNotes kept;
//     try { change(url); } catch (const Error& error) { kept.add(url, error); }
//     kept.refuse("#work", "Re-run with --merge to rename the rest.");

#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LarkspireCLI/Support/GlobalOptions.h"

namespace lk {

class KeptNotes {
 public:
  void add(const std::filesystem::path& url, const Error& error);
  bool empty() const { return failures_.empty(); }

  // Throws CLIError::writeFailed, which names the first of them, what they keep and what to do
  // about it. Does nothing when there are none.
  void refuse(const std::string& what, const std::string& advice) const;

 private:
  std::vector<std::string> failures_;  // "/notes/Plan.md: No space left on device"
};

// Tells on standard error of files that the change passes over, by the first of them, and why.
// Does nothing when there are none.
void tellLeftFiles(const GlobalOptions& options, const std::vector<std::filesystem::path>& files,
                   const std::string& reason);

}  // namespace lk
