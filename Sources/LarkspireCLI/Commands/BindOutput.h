#pragma once

// Where a book goes: a file that is written whole or not at all, or standard output.
//
//     const BindOutput output = BindOutput::to(command.output, "novel.epub");
//     ...                                                 // the work
//     output.write(book);

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace lk {

class BindOutput {
 public:
  // The file of that name, or else `defaultName` in the current folder; "-" is standard output.
  // Touches nothing. Throws CLIError, general, for what could not be written in the end: no name, a
  // folder that is not there, a file or folder that may not be written.
  static BindOutput to(const std::optional<std::string>& name, const std::string& defaultName);

  // Absolute; nothing for standard output.
  const std::optional<std::filesystem::path>& file() const { return file_; }

  // Refuses to send what is no text to a terminal; `format` is for the message. Throws CLIError.
  void requireTaker(std::string_view format) const;

  // Throws CLIError, general, with the file and the cause.
  void write(const std::string& book) const;

 private:
  explicit BindOutput(std::optional<std::filesystem::path> file) : file_(std::move(file)) {}

  std::optional<std::filesystem::path> file_;
};

}  // namespace lk
