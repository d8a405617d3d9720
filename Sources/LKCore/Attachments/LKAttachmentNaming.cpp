#include "LKCore/Attachments/LKAttachmentNaming.h"

#include "LKCore/Base/Text.h"

namespace lk::LKAttachmentNaming {

namespace {

bool isReplaced(char32_t scalar) {
  static constexpr std::u32string_view kReplaced = U":/\\()_";
  return kReplaced.find(scalar) != std::u32string_view::npos || text::isWhitespaceOrNewline(scalar);
}

}  // namespace

std::string sanitizeFilename(std::string_view text) {
  std::string result;
  bool isOwed = false;  // a "_" before the next character, if there is one
  for (size_t at = 0; at < text.size();) {
    const text::Decoded decoded = text::decode(text, at);
    if (isReplaced(decoded.scalar)) {
      isOwed = !result.empty();
    } else {
      if (isOwed) result.push_back('_');
      isOwed = false;
      result.append(text, at, decoded.length);
    }
    at += decoded.length;
  }
  return result;
}

std::string pastedImageName(std::string_view noteName, std::string_view ext,
                            const std::function<bool(const std::string& name)>& isTaken) {
  const std::string_view title = text::trimmed(noteName);
  std::string base = title == "Untitled" ? "" : sanitizeFilename(title);
  if (base.empty()) base = sanitizeFilename("Pasted image");
  const std::string ending = "." + text::lowercased(ext);
  std::string name = base + ending;
  for (int number = 2; isTaken(name); ++number) {
    name = base + "-";
    name += std::to_string(number) + ending;
  }
  return name;
}

}  // namespace lk::LKAttachmentNaming
