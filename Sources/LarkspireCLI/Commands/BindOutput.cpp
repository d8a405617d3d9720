#include "LarkspireCLI/Commands/BindOutput.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kStandardOutputName = "-";

// What replacing the file would find wrong, before anybody has waited for the book.
void requireWritableFile(const fs::path& file) {
  const fs::path target = resolved(file);
  const fs::path folder = target.parent_path();
  const auto folderInfo = fileInfo(folder);
  if (!folderInfo) {
    throw CLIError::general("The output folder " + folder.string() + " does not exist.");
  }
  if (!folderInfo->isDirectory) {
    throw CLIError::general("The output folder " + folder.string() + " is not a folder.");
  }
  const auto info = fileInfo(target);
  if (info && !info->isRegular) throw FileError(file, info->isDirectory ? EISDIR : EINVAL);
  if ((info && access(target.c_str(), W_OK) != 0) || access(folder.c_str(), W_OK | X_OK) != 0) {
    throw FileError(file, errno);
  }
}

[[noreturn]] void throwUnwritable(const FileError& error) {
  throw CLIError::general("Could not write " + error.description());
}

}  // namespace

BindOutput BindOutput::to(const std::optional<std::string>& name, const std::string& defaultName) {
  if (name == kStandardOutputName) return BindOutput(std::nullopt);
  if (name == "") throw CLIError::general("--output names no file.");
  const fs::path file = fs::absolute(name.value_or(defaultName)).lexically_normal();
  try {
    requireWritableFile(file);
  } catch (const FileError& error) {
    throwUnwritable(error);
  }
  return BindOutput(file);
}

void BindOutput::requireTaker(std::string_view format) const {
  if (file_ || isatty(STDOUT_FILENO) == 0) return;
  throw CLIError::general("A book as " + std::string(format) +
                          " is nothing to show on a terminal. Name a file with --output, or send "
                          "it to a file or a program.");
}

void BindOutput::write(const std::string& book) const {
  if (!file_) {
    printText(book);
    return;
  }
  try {
    replaceFile(*file_, book);
  } catch (const FileError& error) {
    throwUnwritable(error);
  }
}

}  // namespace lk
