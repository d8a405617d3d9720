#include "LarkspireCLI/Commands/SearchCommand.h"

#include <algorithm>
#include <memory>

#include "LKCore/Base/JsonWriter.h"
#include "LKCore/Base/Text.h"
#include "LKCore/NoteFiles/LKNoteFilename.h"
#include "LKCore/NoteRepository/LKNoteFilters.h"
#include "LKCore/Platform/FolderReader.h"
#include "LKCore/Platform/FolderWalk.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/CountArgument.h"
#include "LarkspireCLI/Support/NoteSearch.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

struct SearchResult {
  std::string noteTitle;
  std::string filePath;
  NoteSearch::Found found;
};

bool carriesTag(const LKNote& note, const SearchCommand& command) {
  return LKNoteFilters::hasTag(
      note, TagArgument::withoutHash(*command.tag),
      command.includeSubtags ? LKNoteFilters::TagMatch::subtree : LKNoteFilters::TagMatch::exact);
}

// The note files outside hidden folders, relative to the collection.
std::vector<std::string> visibleFiles(const fs::path& collection) {
  std::vector<std::string> files;
  walkFolder(collection, [&](const WalkEntry& entry) {
    const bool isFile =
        entry.kind == WalkEntry::Kind::file || entry.kind == WalkEntry::Kind::symbolicLink;
    if (isFile && LKNoteFilename::hasNoteExtension(entry.name))
      files.emplace_back(entry.relativePath);
    return WalkStep::proceed;
  });
  return files;
}

// The files, with their whole paths, of the notes outside the trash that carry the tag.
std::vector<std::string> filesWithTag(const SearchCommand& command) {
  CacheReader cache(LKParts::tags);
  std::vector<std::string> files;
  for (const LKNote* note : cache.fetchNotes()) {
    if (note->isTrashed || !note->fileURL || !carriesTag(*note, command)) continue;
    files.push_back(note->fileURL->string());
  }
  return files;
}

// How results are printed, one by one as they come.
class ResultPrinter {
 public:
  virtual ~ResultPrinter() = default;
  virtual void print(const SearchResult& result) = 0;
  virtual void finish(size_t count) = 0;
};

class JsonResults final : public ResultPrinter {
 public:
  JsonResults() { json_.beginArray(); }

  void print(const SearchResult& result) override {
    json_.beginObject();
    json_.key("filePath").string(result.filePath);
    json_.key("matches").beginArray();
    for (const MatchLine& match : result.found.matches) write(match);
    json_.endArray();
    json_.key("noteTitle").string(result.noteTitle);
    json_.endObject();
    printText(out_);
    out_.clear();
  }

  void finish(size_t /*count*/) override {
    json_.endArray();
    printLine(out_);
  }

 private:
  void write(const MatchLine& match) {
    json_.beginObject();
    json_.key("context").beginArray();
    for (const std::string& line : match.context) json_.string(line);
    json_.endArray();
    json_.key("lineNumber").integer(match.lineNumber);
    json_.key("text").string(match.text);
    json_.endObject();
  }

  std::string out_;
  JsonWriter json_{out_};
};

class ResultLines final : public ResultPrinter {
 public:
  ResultLines(const std::string& query, NoteSearch& search) : query_(query), search_(search) {}

  void print(const SearchResult& result) override {
    const auto& day = result.found.dailyDate;
    printLine(terminal_.in(TextStyle::bold, shown(day ? spelledOut(*day) : result.noteTitle)));
    const std::vector<MatchLine>& matches = result.found.matches;
    int printed = 0;  // the last line's number: lines that two matches share appear once
    for (size_t i = 0; i < matches.size(); ++i) {
      const int next = i + 1 < matches.size() ? matches[i + 1].lineNumber : 0;
      printMatch(matches[i], next, printed);
    }
  }

  void finish(size_t count) override {
    printLine(count == 0 ? "No matches found for \"" + query_ + "\"."
                         : std::to_string(count) + " notes with matches.");
  }

 private:
  // The match and its context between the line printed last and the next match.
  void printMatch(const MatchLine& match, int next, int& printed) {
    int number = match.lineNumber - match.contextBefore;
    for (int i = 0; i <= static_cast<int>(match.context.size()); ++i, ++number) {
      if (number <= printed || (next != 0 && number >= next)) continue;
      printed = number;
      line_.assign("  line ").append(std::to_string(number));
      if (number == match.lineNumber) {
        appendHighlighted(match.text);
        printLine(line_);
        continue;
      }
      const int at = number < match.lineNumber ? i : i - 1;
      line_.append("- ").append(shown(match.context[static_cast<size_t>(at)]));
      printLine(terminal_.in(TextStyle::dim, line_));
    }
  }

  std::string shown(const std::string& text) const {
    return terminal_.styled ? withoutControls(text) : text;
  }

  void appendHighlighted(const std::string& line) {
    line_.append(": ");
    size_t end = 0;
    if (terminal_.styled) {
      for (const TextRange& range : search_.rangesIn(line)) {
        line_ += withoutControls(line.substr(end, range.start - end));
        line_ += terminal_.in(TextStyle::alert, withoutControls(range.of(line)));
        end = range.end;
      }
    }
    line_ += shown(line.substr(end));
  }

  const std::string& query_;
  NoteSearch& search_;
  Terminal terminal_ = Terminal::ofStandardOutput();
  std::string line_;  // as it is put together
};

// Searches the files in path order; how many have matches. Throws PatternError.
size_t printResults(const fs::path& collection, std::vector<std::string> files,
                    std::optional<size_t> most, NoteSearch& search, ResultPrinter& printer) {
  std::ranges::sort(files);
  FolderReader reader(collection);
  size_t count = 0;
  for (const std::string& file : files) {
    if ((most && count >= *most) || outputIsClosed()) break;
    const auto read = reader.read(file);
    if (!read) continue;
    auto found = search.in(read->bytes);
    if (!found) continue;
    const fs::path path = collection / file;
    printer.print({LKNoteFilename::displayName(path), path.string(), *std::move(found)});
    ++count;
  }
  return count;
}

}  // namespace

void SearchCommand::declare(ArgumentList& arguments) {
  arguments.positional("query", query, "Search query.");
  arguments.option("--context", context, "Number of context lines to show around matches.")
      .valueName = "lines";
  arguments.flag("--titles-only", titlesOnly, "Search titles only.");
  arguments.flag("--regex", regex, "Use regex pattern.");
  arguments.option("--tag", tag, "Filter by tag.").completion = Completion::tag;
  arguments.flag("--include-subtags", includeSubtags,
                 "Also match sub-tags (e.g. 'projects' matches 'projects/marketing').");
  arguments.option("--limit", limit, "Maximum number of results.").valueName = "count";
}

void SearchCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  if (titlesOnly) {
    searchTitles();
  } else {
    searchText(collection);
  }
}

void SearchCommand::searchTitles() const {
  const auto most = countArgument("--limit", limit);
  CacheReader cache(LKParts::tags);
  if (cache.container() == nullptr) {
    throw CLIError::general(
        "Title searches need an index, and lk couldn't build one from the note files.");
  }
  const std::string part = text::caseInsensitiveKey(query);
  std::vector<LKNote*> notes = cache.fetchNotes();
  std::erase_if(notes, [&](const LKNote* note) {
    return note->isTrashed ||
           text::caseInsensitiveKey(note->title).find(part) == std::string::npos ||
           (tag && !carriesTag(*note, *this));
  });
  std::ranges::stable_sort(notes, {}, [](const LKNote* note) {
    return note->fileURL ? note->fileURL->native() : std::string();
  });
  if (most && *most < notes.size()) notes.resize(*most);
  printLine(OutputFormatter::formatNoteList(notes, options.json, Terminal::ofStandardOutput()));
}

void SearchCommand::searchText(const fs::path& collection) const {
  const auto most = countArgument("--limit", limit);
  const size_t lines = countArgument("--context", context);
  std::optional<NoteSearch> search;
  try {
    search.emplace(query, regex ? NoteSearch::Kind::pattern : NoteSearch::Kind::words, lines);
  } catch (const PatternError& error) {
    throw CLIError::general("Invalid search pattern: " + error.description());
  }
  std::unique_ptr<ResultPrinter> printer;
  if (options.json) {
    printer = std::make_unique<JsonResults>();
  } else {
    printer = std::make_unique<ResultLines>(query, *search);
  }
  try {
    printer->finish(printResults(collection, tag ? filesWithTag(*this) : visibleFiles(collection),
                                 most, *search, *printer));
  } catch (const PatternError& error) {
    throw CLIError::general("The search pattern takes too long: " + error.description());
  }
}

}  // namespace lk
