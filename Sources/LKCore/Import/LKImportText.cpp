#include "LKCore/Import/LKImportText.h"

#include <unicode/unistr.h>

#include <algorithm>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"

namespace lk::LKImportEngine {

namespace {

constexpr std::string_view kImportFence = "```";

bool hasForeignMark(std::string_view bytes) {
  return bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
}

std::string withLineFeedsAlone(std::string_view text) {
  if (text.find('\r') == std::string_view::npos) return std::string(text);
  return text::replacingAll(text::replacingAll(text, "\r\n", "\n"), "\r", "\n");
}

bool mayStandInTag(char32_t scalar) {
  return text::isLetter(scalar) || text::isDecimalDigit(scalar) || scalar == '-' || scalar == '/';
}

std::string_view withoutTrailingNewlines(std::string_view text) {
  while (!text.empty()) {
    const text::Decoded last = text::decodeBefore(text, text.size());
    if (!text::isNewline(last.scalar)) break;
    text.remove_suffix(last.length);
  }
  return text;
}

}  // namespace

std::optional<std::string> decoded(std::string_view bytes) {
  static constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text::isValidUTF8(bytes)) {
    if (bytes.starts_with(kByteOrderMark)) bytes.remove_prefix(kByteOrderMark.size());
    return withLineFeedsAlone(bytes);
  }
  if (hasForeignMark(bytes) || bytes.find('\0') != std::string_view::npos) return std::nullopt;
  std::string text;
  icu::UnicodeString(bytes.data(), static_cast<int32_t>(bytes.size()), "macintosh")
      .toUTF8String(text);
  return withLineFeedsAlone(text);
}

void requireUsableText(std::string_view text) {
  if (text::trimmed(text).empty()) throw ImportRefusal("Text file is empty");
  if (text.size() <= maxTextCharacters) return;
  const size_t count = text::scalarCount(text);
  if (count > maxTextCharacters) {
    throw ImportRefusal("Text too large (" + std::to_string(count) + " characters, max 5,000,000)");
  }
}

std::string collapseMarkdownParagraphs(std::string_view body) {
  static const Pattern feeds("\n{2,}");
  return std::string(text::trimmed(feeds.replacingAll(body, "\n")));
}

std::string readableTag(std::string_view tag) {
  std::string readable;
  for (size_t at = 0; at < tag.size();) {
    const text::Decoded next = text::decode(tag, at);
    const bool isIdleSlash = next.scalar == '/' && (readable.empty() || readable.back() == '/');
    if (!mayStandInTag(next.scalar)) {
      readable += '-';
    } else if (!isIdleSlash) {
      readable += tag.substr(at, next.length);
    }
    at += next.length;
  }
  if (readable.ends_with('/')) readable.pop_back();
  return readable;
}

std::string appendTagToBody(std::string_view body, std::string_view tag) {
  return appendTagsToBody(body, {std::string(tag)});
}

std::string appendTagsToBody(std::string_view body, const std::vector<std::string>& tags) {
  std::string line;
  for (const std::string& tag : tags) {
    const std::string readable = readableTag(tag);
    if (!readable.empty()) line += (line.empty() ? "#" : " #") + readable;
  }
  if (line.empty()) return std::string(body);
  return std::string(withoutTrailingNewlines(body)) + "\n\n" + line + "\n";
}

std::string appendTagLinesToBody(std::string_view body, const std::vector<std::string>& tags) {
  std::string lines;
  for (const std::string& tag : tags) {
    const std::string readable = readableTag(tag);
    if (!readable.empty()) lines.append("\n\n#").append(readable);
  }
  if (lines.empty()) return std::string(body);
  return std::string(withoutTrailingNewlines(body)) + lines + "\n";
}

std::string prefixInlineTags(std::string_view body, std::string_view prefix) {
  static const Pattern tag(
      R"((?<=^|[\s*~:\[(!=@])#((?=[\p{L}\p{M}\p{N}_/-]*\p{L})[\p{L}\p{M}\p{N}_/-]++))"
      R"((?=$|[\s`~*:\[#(!=@]))");
  return rewriteOutsideFences(body, [&](std::string_view line, std::string& result) {
    size_t copied = 0;
    if (line.find('#') != std::string_view::npos) {
      for (const Pattern::Match& match : tag.findAll(line)) {
        const TextRange name = match[1].value();
        result.append(line.substr(copied, name.start - copied)).append(prefix);
        result.append(readableTag(name.of(line)));
        copied = name.end;
      }
    }
    result.append(line.substr(copied));
  });
}

std::string_view stripYAMLQuotes(std::string_view value) {
  const bool isQuoted = value.size() >= 2 && value.front() == value.back() &&
                        (value.front() == '"' || value.front() == '\'');
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

std::string percentDecoded(std::string_view text) {
  std::string decoded = lk::percentDecoded(text);
  return text::isValidUTF8(decoded) ? decoded : std::string(text);
}

std::string rewriteOutsideFences(std::string_view text, const LineRewrite& rewrite) {
  std::string result;
  result.reserve(text.size());
  bool isFenced = false;
  for (size_t start = 0;;) {
    const size_t end = std::min(text.find('\n', start), text.size());
    const std::string_view line = text.substr(start, end - start);
    const bool isFence = text::trimmed(line).starts_with(kImportFence);
    if (isFence) isFenced = !isFenced;
    if (isFence || isFenced) {
      result.append(line);
    } else {
      rewrite(line, result);
    }
    if (end == text.size()) return result;
    result.push_back('\n');
    start = end + 1;
  }
}

}  // namespace lk::LKImportEngine
