#include "LarkspireCLI/Support/StandardInput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk {

std::optional<std::string> pipedInput() {
  struct stat info {};
  if (fstat(STDIN_FILENO, &info) != 0) return std::nullopt;
  if (!S_ISFIFO(info.st_mode) && !S_ISREG(info.st_mode) && !S_ISSOCK(info.st_mode)) {
    return std::nullopt;
  }
  std::string input;
  std::array<char, size_t{64} * 1024> buffer{};
  while (true) {
    const ssize_t got = read(STDIN_FILENO, buffer.data(), buffer.size());
    if (got == 0) break;
    if (got > 0) {
      input.append(buffer.data(), static_cast<size_t>(got));
    } else if (errno != EINTR) {
      throw CLIError::general("Could not read standard input: " +
                              std::string(std::strerror(errno)));
    }
  }
  // Nobody typed it, and it would hide a heading or a task in the first line.
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (input.starts_with(kByteOrderMark)) input.erase(0, kByteOrderMark.size());
  if (input.empty()) return std::nullopt;
  if (!text::isValidUTF8(input)) {
    throw CLIError::general("Standard input is not valid UTF-8 text. Nothing was changed.");
  }
  return input;
}

}  // namespace lk
