#include "Support/BrowserTraces.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "LKCore/PDF/BrowserConnection.h"
#include "LKCore/Platform/Files.h"
#include "Support/Process.h"

namespace lk::test {

namespace fs = std::filesystem;

namespace {

// A file of the kernel; empty when its process has gone.
std::string processFile(const fs::path& file) {
  try {
    return readFile(file);
  } catch (const FileError&) {
    return {};
  }
}

}  // namespace

BrowserTraces::BrowserTraces() : scratch_("TMPDIR", folder_.path().string()) {}

std::vector<std::string> BrowserTraces::processes() const {
  const std::string home = "HOME=" + folder_.path().string();
  std::vector<std::string> found;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    if (!std::isdigit(static_cast<unsigned char>(entry.path().filename().string()[0]))) continue;
    if (processFile(entry.path() / "environ").find(home) == std::string::npos) continue;
    std::string command = processFile(entry.path() / "cmdline");
    std::replace(command.begin(), command.end(), '\0', ' ');
    if (!command.empty()) found.push_back(command);
  }
  return found;
}

std::string BrowserTraces::left() const {
  std::string lines;
  for (const std::string& process : processes()) lines += process + "\n";
  for (const auto& entry : fs::directory_iterator(folder_.path())) {
    lines += entry.path().string() + "\n";
  }
  return lines;
}

fs::path browser() {
  return browserProgram();
}

std::string textOf(const std::string& pdf) {
  const Sandbox sandbox;
  writeWhole(sandbox.home() / "book.pdf", pdf);
  const ProcessResult read = sandbox.run("pdftotext", {"-layout", "book.pdf", "-"});
  if (read.status != 0) throw std::runtime_error("pdftotext: " + read.err);
  return read.out;
}

}  // namespace lk::test
