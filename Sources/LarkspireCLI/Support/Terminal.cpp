#include "LarkspireCLI/Support/Terminal.h"

#include <sys/ioctl.h>
#include <unicode/uchar.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdlib>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

size_t scalarWidth(char32_t scalar) {
  if (scalar >= 0x20 && scalar < 0x7F) return 1;
  const auto point = static_cast<UChar32>(scalar);
  switch (u_charType(point)) {
    case U_NON_SPACING_MARK:
    case U_ENCLOSING_MARK:
    case U_FORMAT_CHAR:
    case U_CONTROL_CHAR:
      return 0;
    default:
      break;
  }
  const int32_t eastAsian = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
  return eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

}  // namespace

Terminal Terminal::ofStandardOutput() {
  Terminal terminal;
  if (isatty(STDOUT_FILENO) == 0) return terminal;
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    terminal.width = std::clamp<size_t>(size.ws_col, 40, 100);
    terminal.columns = size.ws_col;
  }
  const char* kind = std::getenv("TERM");
  const bool dumb = kind == nullptr || std::string_view(kind) == "dumb";
  terminal.styled = !dumb && !isSet("NO_COLOR");
  return terminal;
}

std::string Terminal::in(TextStyle style, std::string_view text) const {
  static constexpr std::array<const char*, 5> kSequences = {"", "\x1b[1m", "\x1b[2m", "\x1b[36m",
                                                            "\x1b[1;31m"};
  if (!styled || style == TextStyle::plain || text.empty()) return std::string(text);
  return kSequences[static_cast<size_t>(style)] + std::string(text) + "\x1b[0m";
}

size_t displayWidth(std::string_view text) {
  size_t width = 0;
  for (size_t offset = 0; offset < text.size();) {
    const text::Decoded next = text::decode(text, offset);
    width += scalarWidth(next.scalar);
    offset += next.length;
  }
  return width;
}

std::string withoutControls(std::string_view text) {
  std::string result;
  for (size_t offset = 0; offset < text.size();) {
    const text::Decoded next = text::decode(text, offset);
    if (u_charType(static_cast<UChar32>(next.scalar)) != U_CONTROL_CHAR) {
      result.append(text.substr(offset, next.length));
    }
    offset += next.length;
  }
  return result;
}

std::string fitted(std::string_view text, size_t width) {
  std::string line = withoutControls(text);
  if (displayWidth(line) <= width) return line;
  size_t used = 1;  // the mark of the cut
  size_t end = 0;
  while (end < line.size()) {
    const text::Decoded next = text::decode(line, end);
    used += scalarWidth(next.scalar);
    if (used > width) break;
    end += next.length;
  }
  return line.substr(0, end) + (width > 0 ? "…" : "");
}

std::vector<std::string> wrapped(std::string_view text, size_t width) {
  std::vector<std::string> lines;
  for (const std::string_view paragraph : text::split(text, '\n')) {
    std::string line;
    size_t used = 0;
    for (const std::string_view word : text::split(paragraph, ' ')) {
      const size_t wide = displayWidth(word);
      if (!line.empty() && used + 1 + wide > width) {
        lines.push_back(std::move(line));
        line.clear();
        used = 0;
      }
      if (!line.empty()) {
        line += ' ';
        ++used;
      }
      line += word;
      used += wide;
    }
    lines.push_back(std::move(line));
  }
  return lines;
}

}  // namespace lk
