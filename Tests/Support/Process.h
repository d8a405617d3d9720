#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Support/TempFolder.h"

namespace lk::test {

struct ProcessResult {
  std::string out;
  std::string err;
  // The exit status, or 128 plus the signal that ended the program; 127 when it didn't start.
  int status = -1;
};

struct ProcessOptions {
  std::string input = {};                               // what standard input holds
  std::map<std::string, std::string> environment = {};  // added to the sandbox's own
  std::filesystem::path folder = {};                    // the working folder; the home when empty
};

// Programs that run as on a machine of their own: a fresh home, the XDG folders inside it, UTC,
// C.UTF-8, and of the test's own environment nothing but PATH and the sanitizers' options.
//
//     Sandbox sandbox;
//     ProcessResult shown = sandbox.lk({"show", "Missing", "--json"});
//     EXPECT_EQ(shown.status, 2);
class Sandbox {
 public:
  Sandbox();

  const std::filesystem::path& home() const { return folder_.path(); }

  // "NAME=value" for each variable of a program that runs here, `added` included.
  std::vector<std::string> environment(const std::map<std::string, std::string>& added) const;

  // Runs `program` (a path, or a name found in PATH) to its end; after 60 seconds it is killed.
  ProcessResult run(const std::string& program, const std::vector<std::string>& arguments,
                    const ProcessOptions& options = {}) const;
  // The built tool.
  ProcessResult lk(const std::vector<std::string>& arguments,
                   const ProcessOptions& options = {}) const;
  // The built tool as a user without rights, whom the modes of files hinder; as the same user, if
  // that is not root.
  ProcessResult lkAsOrdinaryUser(std::vector<std::string> arguments) const;

 private:
  TempFolder folder_;
};

// The texts as the null-terminated list that exec takes; it points into them.
std::vector<char*> pointers(std::vector<std::string>& texts);

}  // namespace lk::test
