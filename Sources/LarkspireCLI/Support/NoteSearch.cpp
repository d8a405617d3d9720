#include "LarkspireCLI/Support/NoteSearch.h"

#include <algorithm>
#include <cstring>

#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKSyncError.h"

namespace lk {

namespace {

// The line without its line feed that holds byte `at`.
TextRange lineAround(std::string_view text, size_t at) {
  const void* before = at == 0 ? nullptr : memrchr(text.data(), '\n', at);
  const auto start = before == nullptr ? text.data() : static_cast<const char*>(before) + 1;
  return {static_cast<size_t>(start - text.data()), std::min(text.find('\n', at), text.size())};
}

int countOfLineFeeds(std::string_view text) {
  int count = 0;
  for (size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n', at + 1)) {
    ++count;
  }
  return count;
}

std::string_view withoutCarriageReturn(std::string_view line) {
  return line.ends_with('\r') ? line.substr(0, line.size() - 1) : line;
}

// The line after, or before, this one; nothing at the text's end or start.
std::optional<TextRange> nextLine(std::string_view text, TextRange line) {
  if (line.end >= text.size()) return std::nullopt;
  return lineAround(text, line.end + 1);
}
std::optional<TextRange> previousLine(std::string_view text, TextRange line) {
  if (line.start == 0) return std::nullopt;
  return lineAround(text, line.start - 1);
}

// Reading turns blanks at a line's start into tabs and all line ends into line feeds. Words with
// neither stand in a body only where they stand in the file.
bool staysAsWritten(std::string_view query) {
  for (size_t i = 0; i < query.size();) {
    const text::Decoded next = text::decode(query, i);
    if (next.scalar == '\t' || text::isNewline(next.scalar)) return false;
    i += next.length;
  }
  return true;
}

}  // namespace

NoteSearch::NoteSearch(const std::string& query, Kind kind, size_t contextLines)
    : kind_(kind),
      contextLines_(contextLines),
      isVisibleInFile_(kind == Kind::words && staysAsWritten(query)),
      pattern_(kind == Kind::words ? Pattern::escaped(query) : query, Pattern::Case::insensitive),
      searcher_(pattern_) {}

std::optional<NoteSearch::Found> NoteSearch::in(std::string_view file) {
  // Nearly every file is done here, before anything is made of it.
  if (isVisibleInFile_ && !searcher_.first(file)) return std::nullopt;
  if (!text::isValidUTF8(file)) return std::nullopt;
  LKParsedDocument document;
  std::string_view body = file;
  try {
    document = parseDocument(file);
    body = document.body;
  } catch (const LKSyncError&) {
    body = file;
  }
  const std::vector<TextRange> lines = kind_ == Kind::words ? wordLines(body) : patternLines(body);
  if (lines.empty()) return std::nullopt;
  return Found{matchLines(body, lines), document.frontMatter.dailyDate};
}

std::vector<TextRange> NoteSearch::rangesIn(std::string_view line) {
  std::vector<TextRange> ranges;
  for (size_t from = 0; from <= line.size();) {
    const auto match = searcher_.first(line, from);
    if (!match || match->end < from) break;
    if (match->length() > 0) ranges.push_back(*match);
    from = match->end;
    if (match->length() == 0) from += from < line.size() ? text::decode(line, from).length : 1;
  }
  return ranges;
}

// From match to match over the whole body.
std::vector<TextRange> NoteSearch::wordLines(std::string_view body) {
  std::vector<TextRange> lines;
  for (size_t from = 0; from <= body.size();) {
    const auto match = searcher_.first(body, from);
    if (!match) break;
    const TextRange line = lineAround(body, match->start);
    // Words with a line feed in them are on no line.
    if (match->end > line.end) {
      from = line.end + 1;
      continue;
    }
    lines.push_back(line);
    from = line.end + 1;
  }
  return lines;
}

// A pattern's "^", "$", "\s" and lookarounds mean one line, so each is looked at alone.
std::vector<TextRange> NoteSearch::patternLines(std::string_view body) {
  std::vector<TextRange> lines;
  std::optional<TextRange> line = lineAround(body, 0);
  for (; line; line = nextLine(body, *line)) {
    if (searcher_.first(withoutCarriageReturn(line->of(body)))) lines.push_back(*line);
  }
  return lines;
}

std::vector<MatchLine> NoteSearch::matchLines(std::string_view body,
                                              const std::vector<TextRange>& lines) const {
  std::vector<MatchLine> matches;
  int number = 1;
  size_t counted = 0;
  for (const TextRange& line : lines) {
    number += countOfLineFeeds(body.substr(counted, line.start - counted));
    counted = line.start;
    MatchLine match;
    match.lineNumber = number;
    match.text = withoutCarriageReturn(line.of(body));
    auto around = previousLine(body, line);
    for (size_t i = 0; i < contextLines_ && around; ++i, around = previousLine(body, *around)) {
      match.context.emplace_back(withoutCarriageReturn(around->of(body)));
    }
    std::ranges::reverse(match.context);
    match.contextBefore = static_cast<int>(match.context.size());
    around = nextLine(body, line);
    for (size_t i = 0; i < contextLines_ && around; ++i, around = nextLine(body, *around)) {
      match.context.emplace_back(withoutCarriageReturn(around->of(body)));
    }
    matches.push_back(std::move(match));
  }
  return matches;
}

}  // namespace lk
