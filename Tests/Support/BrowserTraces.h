#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Support/ChangedVariable.h"
#include "Support/TempFolder.h"

namespace lk::test {

// A scratch folder for the browsers of one test, and what they leave.
class BrowserTraces {
 public:
  BrowserTraces();

  // The command lines of running processes that have their home in the folder.
  std::vector<std::string> processes() const;
  // Those and the files in the folder, a line each; empty when nothing is left.
  std::string left() const;

 private:
  TempFolder folder_;
  ChangedVariable scratch_;
};

// The installed browser; empty when there is none.
std::filesystem::path browser();

// The text of a PDF, each page with a form feed at its end. Throws when it cannot be read.
std::string textOf(const std::string& pdf);

}  // namespace lk::test
