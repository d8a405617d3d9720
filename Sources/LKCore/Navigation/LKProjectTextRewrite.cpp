#include "LKCore/Navigation/LKProjectTextRewrite.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"
#include "LKCore/Navigation/ProjectHits.h"
#include "LKCore/NoteFiles/LKForeignBlock.h"
#include "LKCore/Terminology/LKProjectName.h"

namespace lk::LKProjectTextRewrite {

namespace {

void countHit(Counts& counts, ProjectHit::Kind kind) {
  ++(kind == ProjectHit::Kind::tag ? counts.tagHits : counts.metaHits);
}

// --- Replacing -----------------------------------------------------------------------------------

// Each hit outside fences written anew with the word in use and, behind it, `name`.
Rewritten replaceHits(std::string_view text, const ProjectWords& words,
                      const ProjectNameEnd& nameEnd, bool sparesCurrentWords,
                      std::string_view name) {
  return transformOutsideCodeBlocks(text, [&](std::string_view stretch) {
    Rewritten result;
    size_t copied = 0;
    for (const ProjectHit& hit : findProjectHits(stretch, words, nameEnd)) {
      if (sparesCurrentWords && hit.isCurrentWord) continue;
      result.text.append(stretch.substr(copied, hit.range.start - copied));
      if (hit.kind == ProjectHit::Kind::tag) {
        result.text.append("#").append(words.tagPrefixes.front()).append("/");
      } else {
        result.text.append(words.keywords.front()).append(":");
      }
      result.text.append(name);
      copied = hit.range.end;
      countHit(result.counts, hit.kind);
    }
    result.text.append(stretch.substr(copied));
    return result;
  });
}

// --- Removing ------------------------------------------------------------------------------------

bool isSpaceOrTab(char c) {
  return c == ' ' || c == '\t';
}

// True when the text could be the indentation and marks at the start of a line.
bool isLineMark(std::string_view text) {
  return text.find_first_not_of(" \t-*+>#.0123456789", taskMarkLength(text)) ==
         std::string_view::npos;
}

// The text that is left over, with what stands at the start of its last line.
class Remains {
 public:
  void append(std::string_view piece) {
    text_.append(piece);
    const size_t feed = piece.rfind('\n');
    if (feed == std::string_view::npos) {
      isAtMark_ = isAtMark_ && isLineMark(piece);
    } else {
      isAtMark_ = isLineMark(piece.substr(feed + 1));
    }
  }

  // Takes out the blank that goes with a removed word: how many bytes of `rest` go for it.
  size_t dropBlank(std::string_view rest) {
    if (isAtMark_) return !rest.empty() && isSpaceOrTab(rest.front()) ? 1 : 0;
    if (isSpaceOrTab(text_.back())) text_.pop_back();
    return 0;
  }

  std::string take() { return std::move(text_); }

 private:
  std::string text_;
  bool isAtMark_ = true;  // only indentation and marks on the last line so far
};

// The line of the text with this index, line feeds apart; nothing when there are fewer.
std::optional<TextRange> lineNumbered(std::string_view text, size_t index) {
  size_t start = 0;
  for (; index > 0; --index) {
    const size_t feed = text.find('\n', start);
    if (feed == std::string_view::npos) return std::nullopt;
    start = feed + 1;
  }
  return TextRange{start, std::min(text.find('\n', start), text.size())};
}

// Where the body begins: behind a front matter and, as in an open note, the blank lines after it.
size_t bodyStart(std::string_view text) {
  const size_t rest = stripForeignFrontMatter(text).body.size();
  if (rest == text.size()) return 0;
  return text.size() - text::trimmedLeading(text.substr(text.size() - rest)).size();
}

bool isInScope(const ProjectHit& hit, const StripScope& scope) {
  if (std::holds_alternative<StripAll>(scope)) return true;
  if (std::holds_alternative<StripBodyTags>(scope)) {
    return hit.kind == ProjectHit::Kind::tag && !hit.isOnTaskLine;
  }
  return hit.kind == ProjectHit::Kind::token;
}

// The end of the longest of the names that stands there, and ends there.
std::optional<size_t> nameEndAmong(std::span<const std::string> names, std::string_view line,
                                   size_t start) {
  std::optional<size_t> longest;
  for (const std::string& name : names) {
    if (name.empty()) continue;
    const auto end = spelledEnd(line, start, name);
    if (end && end > longest && isBoundary(line, *end, kPathContinuation)) longest = end;
  }
  return longest;
}

}  // namespace

// --- The interface -------------------------------------------------------------------------------

Rewritten reterm(std::string_view text, const LKProjectTermsSnapshot& terms) {
  // The name is kept by ending the hit before it; a word without a name is no project.
  const auto nameEnd = [](std::string_view line, size_t start,
                          ProjectHit::Kind kind) -> std::optional<size_t> {
    if (start == line.size()) return std::nullopt;
    const char32_t first = text::decode(line, start).scalar;
    const bool opensName = kind == ProjectHit::Kind::tag ? lexing::isTagCharacter(first)
                                                         : !text::isWhitespaceOrNewline(first);
    return opensName ? std::optional(start) : std::nullopt;
  };
  return replaceHits(text, ProjectWords(terms), nameEnd, true, "");
}

Rewritten rename(std::string_view text, std::string_view oldName, std::string_view newName,
                 bool includeSubtree, const LKProjectTermsSnapshot& terms) {
  if (!LKProjectName::canStandInNote(oldName) || !LKProjectName::canStandInNote(newName)) {
    return {std::string(text), {}};
  }
  const std::string_view continuation = includeSubtree ? kNameContinuation : kPathContinuation;
  const auto nameEnd = [&](std::string_view line, size_t start, ProjectHit::Kind) {
    const auto end = spelledEnd(line, start, oldName);
    return end && isBoundary(line, *end, continuation) ? end : std::nullopt;
  };
  return replaceHits(text, ProjectWords(terms), nameEnd, false, newName);
}

Rewritten strip(std::string_view text, std::span<const std::string> names, const StripScope& scope,
                const LKProjectTermsSnapshot& terms) {
  const size_t start = bodyStart(text);
  const std::string_view body = text.substr(start);
  std::optional<TextRange> lines = TextRange{0, body.size()};
  const auto* const meta = std::get_if<StripTaskMeta>(&scope);
  if (meta != nullptr && meta->paragraphIndex) lines = lineNumbered(body, *meta->paragraphIndex);
  if (!lines) return {std::string(text), {}};

  const ProjectWords words(terms);
  const auto nameEnd = [&](std::string_view line, size_t nameStart, ProjectHit::Kind) {
    return nameEndAmong(names, line, nameStart);
  };
  Rewritten result = transformOutsideCodeBlocks(body, [&](std::string_view stretch) {
    const auto offset = static_cast<size_t>(stretch.data() - body.data());
    Counts counts;
    const auto find = [&](std::string_view searched) {
      std::vector<TextRange> ranges;
      for (const ProjectHit& hit : findProjectHits(searched, words, nameEnd)) {
        const size_t at = offset + hit.range.start;
        if (!isInScope(hit, scope) || at < lines->start || at >= lines->end) continue;
        ranges.push_back(hit.range);
        countHit(counts, hit.kind);
      }
      return ranges;
    };
    return Rewritten{boundaryRemove(stretch, find).text, counts};
  });
  result.text.insert(0, text.substr(0, start));
  return result;
}

std::optional<std::string> renameProjectName(std::string_view name, std::string_view from,
                                             std::string_view to, bool includeSubtree) {
  if (text::equalIgnoringCase(name, from)) return std::string(to);
  if (!includeSubtree) return std::nullopt;
  const auto below = LKProjectName::offsetBelow(name, from);
  if (!below) return std::nullopt;
  return std::string(to).append("/").append(name.substr(*below));
}

std::optional<std::string> renameProjectTagText(std::string_view tagText, std::string_view from,
                                                std::string_view to, bool includeSubtree,
                                                const LKProjectTermsSnapshot& terms) {
  const auto offset = terms.projectNameOffset(tagText);
  if (!offset) return std::nullopt;
  auto renamed = renameProjectName(tagText.substr(*offset), from, to, includeSubtree);
  if (renamed) renamed->insert(0, tagText.substr(0, *offset));
  return renamed;
}

Rewritten transformOutsideCodeBlocks(std::string_view text,
                                     const std::function<Rewritten(std::string_view)>& transform) {
  Rewritten result;
  size_t copied = 0;
  for (const TextRange& stretch : stretchesOutsideFences(text)) {
    const Rewritten part = transform(stretch.of(text));
    result.text.append(text.substr(copied, stretch.start - copied)).append(part.text);
    result.counts.tagHits += part.counts.tagHits;
    result.counts.metaHits += part.counts.metaHits;
    copied = stretch.end;
  }
  result.text.append(text.substr(copied));
  return result;
}

bool isBoundary(std::string_view text, size_t at, std::string_view continuationSet) {
  if (at >= text.size()) return true;
  const char32_t next = text::decode(text, at).scalar;
  if (next >= 0x80) return !text::isLetter(next) && !text::isDecimalDigit(next);
  return continuationSet.find(static_cast<char>(next)) == std::string_view::npos;
}

Removal boundaryRemove(std::string_view text,
                       const std::function<std::vector<TextRange>(std::string_view)>& find) {
  std::vector<TextRange> ranges = find(text);
  std::ranges::sort(ranges, {}, &TextRange::start);
  Remains remains;
  size_t copied = 0;
  for (const TextRange& range : ranges) {
    if (range.start > copied) remains.append(text.substr(copied, range.start - copied));
    copied = std::max(copied, range.end);
    copied += remains.dropBlank(text.substr(copied));
  }
  remains.append(text.substr(copied));
  return {remains.take(), ranges.size()};
}

}  // namespace lk::LKProjectTextRewrite
