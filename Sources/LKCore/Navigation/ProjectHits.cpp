#include "LKCore/Navigation/ProjectHits.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/CharacterSets.h"
#include "LKCore/Terminology/LKProjectName.h"

namespace lk {

namespace {

constexpr std::string_view kCodeFence = "```";

bool isASCII(char c) {
  return static_cast<unsigned char>(c) < 0x80;
}

// --- Spelling ------------------------------------------------------------------------------------

// A run of letters and marks, or else one scalar. A run is compared as a whole, since accents may
// be composed or not and a letter's lower case may depend on its neighbours.
std::string_view pieceAt(std::string_view text, size_t at) {
  size_t end = at;
  while (end < text.size()) {
    const text::Decoded d = text::decode(text, end);
    if (!text::isLetter(d.scalar)) break;
    end += d.length;
  }
  if (end == at) end += text::decode(text, at).length;
  return text.substr(at, end - at);
}

char lowercasedASCII(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool isSamePiece(std::string_view a, std::string_view b) {
  // Most words differ at their start, and that costs nothing.
  const bool beginASCII = isASCII(a.front()) && isASCII(b.front());
  if (beginASCII && lowercasedASCII(a.front()) != lowercasedASCII(b.front())) return false;
  return text::equalIgnoringCase(a, b);
}

// --- Searching -----------------------------------------------------------------------------------

class HitSearch {
 public:
  HitSearch(std::string_view text, const ProjectWords& words, const ProjectNameEnd& nameEnd)
      : text_(text), words_(words), nameEnd_(nameEnd) {}

  std::vector<ProjectHit> run() {
    for (size_t start = 0; start < text_.size();) {
      const size_t end = lexing::lineEnd(text_, start);
      searchLine(start, end);
      start = end + std::max<size_t>(lexing::terminatorLength(text_, end), 1);
    }
    return std::move(hits_);
  }

 private:
  void searchLine(size_t start, size_t end) {
    const std::string_view line = text_.substr(0, end);
    const size_t mark = taskMarkLength(line.substr(start));
    for (size_t at = start;;) {
      at = mark == 0 ? line.find('#', at) : line.find_first_of("# ", at);
      if (at == std::string_view::npos) return;
      auto hit = line[at] == '#' ? tagAt(line, at) : std::nullopt;
      if (line[at] == ' ' && at + 1 >= start + mark) hit = tokenAt(line, at + 1);
      if (hit) {
        hit->isOnTaskLine = mark > 0;
        hits_.push_back(*hit);
      }
      at = hit ? hit->range.end : at + 1;
    }
  }

  std::optional<ProjectHit> tagAt(std::string_view line, size_t hash) const {
    return hitAt(line, {hash, hash + 1}, words_.tagPrefixes, '/', ProjectHit::Kind::tag);
  }

  std::optional<ProjectHit> tokenAt(std::string_view line, size_t start) const {
    return hitAt(line, {start, start}, words_.keywords, ':', ProjectHit::Kind::token);
  }

  // `opening` is what stands before the word. The first word that fits decides, as it does when
  // the text is read.
  std::optional<ProjectHit> hitAt(std::string_view line, TextRange opening,
                                  const std::vector<std::string_view>& words, char separator,
                                  ProjectHit::Kind kind) const {
    for (const std::string_view& word : words) {
      const auto wordEnd = spelledEnd(line, opening.end, word);
      if (!wordEnd || *wordEnd == line.size() || line[*wordEnd] != separator) continue;
      const auto end = nameEnd_(line, *wordEnd + 1, kind);
      if (!end) return std::nullopt;
      return ProjectHit{kind, {opening.start, *end}, &word == &words.front(), false};
    }
    return std::nullopt;
  }

  std::string_view text_;
  const ProjectWords& words_;
  const ProjectNameEnd& nameEnd_;
  std::vector<ProjectHit> hits_;
};

}  // namespace

ProjectWords::ProjectWords(const LKProjectTermsSnapshot& terms) {
  for (const std::string& prefix : terms.tagPrefixes) {
    if (LKProjectName::canStandInNote(prefix)) tagPrefixes.push_back(prefix);
  }
  for (const std::string& keyword : terms.metadataKeywords) {
    if (LKProjectName::canStandInNote(keyword)) keywords.push_back(keyword);
  }
}

std::vector<ProjectHit> findProjectHits(std::string_view text, const ProjectWords& words,
                                        const ProjectNameEnd& nameEnd) {
  return HitSearch(text, words, nameEnd).run();
}

std::optional<size_t> spelledEnd(std::string_view text, size_t at, std::string_view wanted) {
  for (size_t w = 0; w < wanted.size();) {
    if (at >= text.size()) return std::nullopt;
    const std::string_view found = pieceAt(text, at);
    const std::string_view piece = pieceAt(wanted, w);
    if (!isSamePiece(found, piece)) return std::nullopt;
    at += found.size();
    w += piece.size();
  }
  return at;
}

size_t taskMarkLength(std::string_view line) {
  size_t at = 0;
  while (at < line.size()) {
    const text::Decoded d = text::decode(line, at);
    if (!text::isBlank(d.scalar)) break;
    at += d.length;
  }
  const std::string_view mark = line.substr(at);
  if (mark.size() < 5 || !mark.starts_with("- [") || mark[4] != ']') return 0;
  if (std::string_view(" xX/-").find(mark[3]) == std::string_view::npos) return 0;
  if (mark.size() == 5) return at + 5;
  return mark[5] == ' ' ? at + 6 : 0;
}

std::vector<TextRange> stretchesOutsideFences(std::string_view text) {
  std::vector<TextRange> result;
  size_t from = 0;  // where the stretch under way begins
  std::optional<size_t> opening;
  for (size_t start = 0; start <= text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    if (text::trimmedBlanks(text.substr(start, end - start)).starts_with(kCodeFence)) {
      if (!opening) {
        opening = start;
      } else {
        if (*opening > from) result.push_back({from, *opening - 1});
        from = end + 1;
        opening.reset();
      }
    }
    start = end + 1;
  }
  if (from <= text.size()) result.push_back({from, text.size()});
  return result;
}

}  // namespace lk
