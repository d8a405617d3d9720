// Renaming on any text with any names: the first line is the old name, the second the new one, the
// rest the text, or a whole note file. The result is compared with a reading without patterns.

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKContentHash.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKNoteEdit.h"
#include "LKCore/Tags/LKTagRewriter.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

// \p{L}, \p{N}, "-" and "/".
bool isOfTag(std::string_view text, size_t at) {
  if (at == text.size()) return false;
  const char32_t c = lk::text::decode(text, at).scalar;
  constexpr uint32_t kLettersAndNumbers = U_GC_L_MASK | U_GC_N_MASK;
  return c == '-' || c == '/' || (U_GET_GC_MASK(static_cast<UChar32>(c)) & kLettersAndNumbers) != 0;
}

std::string plainlyRenamed(std::string_view text, std::string_view from, std::string_view to,
                           bool isPrefix) {
  std::string result;
  for (size_t at = 0; at < text.size();) {
    const size_t end = at + 1 + from.size();
    bool isHit = text[at] == '#' && text.substr(at + 1).starts_with(from) && !from.empty();
    if (isHit) isHit = !isOfTag(text, end) || (isPrefix && text[end] == '/');
    if (isHit) {
      result.append("#").append(to);
      at = end;
    } else {
      result.push_back(text[at++]);
    }
  }
  return result;
}

void checkFile(std::string_view file, const lk::Pattern& pattern, std::string_view replacement,
               std::string_view from, std::string_view to) {
  const auto keys = lk::LKTagRewriter::rankKeyTransform(std::string(from), std::string(to));
  const auto after = lk::LKTagRewriter::rewritten(file, "Note.md", pattern, replacement, keys);
  if (!after) return;
  const auto before = lk::LKNoteEdit::read(file);
  const auto note = lk::LKNoteEdit::read(*after);
  require(before && note);
  const std::string body = lk::LKNoteEdit::bodyInMemory(note->rawBody);
  require(note->rawBody == pattern.replacingAllByTemplate(before->rawBody, replacement));
  require(note->frontMatter.contentHash == lk::computeContentHash(body));
  lk::LKFileFrontMatter expected = before->frontMatter;
  expected.contentHash = note->frontMatter.contentHash;
  expected.taskEntries = note->frontMatter.taskEntries;
  expected.tagRanks = note->frontMatter.tagRanks;
  require(expected == note->frontMatter);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) return 0;
  const auto takeLine = [&] {
    const size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
  };
  const std::string_view from = takeLine();
  const std::string_view to = takeLine();
  if (from.empty() || from.size() > 1000) return 0;
  for (const bool isPrefix : {false, true}) {
    const auto names = lk::LKTagRewriter::renamePattern(from, to, isPrefix);
    const lk::Pattern pattern(names.pattern);
    const std::string renamed = pattern.replacingAllByTemplate(text, names.replacement);
    require(renamed == plainlyRenamed(text, from, to, isPrefix));
    const bool isUnrelated = !from.starts_with(to) && !to.starts_with(from) &&
                             to.find('#') == std::string_view::npos &&
                             from.find('#') == std::string_view::npos;
    require(!isUnrelated || !pattern.matches(renamed));
    checkFile(text, pattern, names.replacement, from, to);
  }
  return 0;
}
