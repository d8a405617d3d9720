#include "LKCore/Tags/LKTagExtractor.h"

#include <algorithm>
#include <system_error>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Text.h"
#include "LKCore/LexParse/Lexer.h"
#include "LKCore/LexParse/NoIndexMarkers.h"
#include "LKCore/LexParse/TokenText.h"
#include "LKCore/Tasks/LKTaskDue.h"
#include "LKCore/Tasks/LKTaskPriority.h"
#include "LKCore/Tasks/TaskStatus.h"

namespace lk {

namespace {

namespace fs = std::filesystem;

// --- Sets and names ------------------------------------------------------------------------------

// Fills a set of texts in which canonically equal texts are one.
class TextCollector {
 public:
  // False when the set has the text already.
  bool insert(std::string_view text) {
    const auto place = texts_.lower_bound(text);
    if (place != texts_.end() && *place == text) return false;
    // A text of ASCII alone equals none but itself.
    const bool isASCII =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    if (!isASCII && !composed_.insert(text::composed(text)).second) return false;
    texts_.emplace_hint(place, text);
    return true;
  }

  ExtractionResult::Texts take() { return std::move(texts_); }

 private:
  ExtractionResult::Texts texts_;
  std::unordered_set<std::string> composed_;  // of those beyond ASCII
};

bool isWebAddress(std::string_view reference) {
  const std::string start = text::lowercased(reference.substr(0, 8));
  return start.starts_with("http://") || start.starts_with("https://");
}

// The name of the file in the attachments folder that the reference means; may be empty.
std::string_view attachmentName(std::string_view reference) {
  constexpr std::string_view kFolder = ".attachments/";
  if (reference.starts_with(kFolder)) reference.remove_prefix(kFolder.size());
  return reference.substr(0, reference.find('#'));
}

// Never looks outside the folder, whatever the name says.
bool holdsFile(const fs::path& folder, std::string_view name) {
  if (name.find('\0') != std::string_view::npos) return false;
  const fs::path path(name);
  if (path.is_absolute() || std::ranges::find(path, "..") != path.end()) return false;
  std::error_code error;  // a name that no file can have names none
  return fs::is_regular_file(folder / path, error);
}

size_t leadingTabs(std::string_view line) {
  return std::min(line.find_first_not_of('\t'), line.size());
}

// --- The walk ------------------------------------------------------------------------------------

class TagExtraction {
 public:
  TagExtraction(std::string_view text, const std::optional<fs::path>& attachmentsDirectory,
                Instant now, std::shared_ptr<const LKProjectTermsSnapshot> projectTerms)
      : text_(text),
        attachmentsDirectory_(attachmentsDirectory),
        now_(now),
        projectTerms_(std::move(projectTerms)),
        lexer_(text, projectTerms_) {}

  ExtractionResult run() {
    while (goToNextLineOfUse()) takeLine();
    addDetails();
    result_.hasActiveTasks = result_.activeTaskCount > 0;
    result_.tags = tags_.take();
    result_.dateRefs = dateRefs_.take();
    result_.backlinks = backlinks_.take();
    return std::move(result_);
  }

 private:
  bool goToNextLineOfUse();
  void goToLineOf(size_t place);
  void takeLine();
  void passFencedLines();
  void take(const LToken& token);
  void takeTag(std::string_view tag);
  void takeImage(std::string_view reference);
  void takeMeta(std::string_view key, std::string_view value);
  void takeContexts(std::string_view list);
  void openTask(TaskStatus status, size_t start);
  void closeTask();
  void addDetails();
  std::optional<std::string> commentsBelow(size_t taskStart, size_t limit) const;

  std::string_view text_;
  const std::optional<fs::path>& attachmentsDirectory_;
  Instant now_;
  std::shared_ptr<const LKProjectTermsSnapshot> projectTerms_;
  Lexer lexer_;
  size_t lineStart_ = 0;  // of the line to be read next
  int line_ = 0;          // its number
  bool behindImage_ = false;

  ExtractionResult result_;
  TextCollector tags_;
  TextCollector dateRefs_;
  TextCollector backlinks_;

  bool inTask_ = false;
  TaskInfo task_;
  std::string taskText_;
  std::unordered_set<std::string> taskContexts_;  // composed
  std::vector<size_t> taskStarts_;                // bytes; one for each task
};

// Where a tag, a date, a link, a checkbox, a picture or a fence may begin, at or after `from`; the
// text's size when none does. Most lines have no such place and need no lexer.
size_t nextPlaceOfUse(std::string_view text, size_t from) {
  const auto mayHit = [](lexing::ByteBlock block) {
    return static_cast<lexing::ByteBlock>(block == '#') |
           static_cast<lexing::ByteBlock>(block == '[') |
           static_cast<lexing::ByteBlock>(block == ']') |
           static_cast<lexing::ByteBlock>((block & 0xDF) == '@');  // and "`"
  };
  const auto mayName = [](char c) { return !lexing::hasTrait(c, lexing::kNoNameByte); };
  for (size_t at = from;; ++at) {
    at = lexing::skipTo(text, at, lexing::kUseByte, mayHit);
    if (at + 1 >= text.size()) return text.size();
    const char next = text[at + 1];
    switch (text[at]) {
      case '[':
        return at;
      case ']':
        if (next == '(') return at;
        break;
      case '`':
        if (text.substr(at).starts_with("```")) return at;
        break;
      default:
        if (mayName(next)) return at;
    }
  }
}

bool TagExtraction::goToNextLineOfUse() {
  const size_t place = nextPlaceOfUse(text_, lineStart_);
  if (place == text_.size()) return false;
  goToLineOf(place);
  return true;
}

void TagExtraction::goToLineOf(size_t place) {
  for (;;) {
    const size_t end = lexing::lineEnd(text_, lineStart_);
    if (end >= place) return;
    lineStart_ = end + lexing::terminatorLength(text_, end);
    ++line_;
  }
}

void TagExtraction::takeLine() {
  lexer_.goOnAt(lineStart_);
  for (;;) {
    const LToken token = lexer_.nextToken();
    if (token.kind == LTokenKind::codeBlockFence) return passFencedLines();
    take(token);
    if (token.kind != LTokenKind::eol && token.kind != LTokenKind::end) continue;
    lineStart_ = token.range.end;
    ++line_;
    return;
  }
}

// From an opening fence to its partner nothing but lines counts. When there is no partner the
// fence hides nothing, and the text is read on from the line below it, where no more fences can be.
void TagExtraction::passFencedLines() {
  const auto goBelow = [&] {
    lineStart_ = lexer_.nextToken().range.end;  // the line's end, or the text's
    ++line_;
  };
  goBelow();
  const std::pair below{lineStart_, line_};
  for (;;) {
    const size_t marks = text_.find("```", lineStart_);
    if (marks == std::string_view::npos) break;
    goToLineOf(marks);
    lexer_.goOnAt(lineStart_);
    lexer_.nextToken();  // the tabs
    if (lexer_.nextToken().kind == LTokenKind::codeBlockFence) return goBelow();
    lineStart_ = lexing::lineEnd(text_, marks);
  }
  std::tie(lineStart_, line_) = below;
}

void TagExtraction::take(const LToken& token) {
  const bool behindImage = std::exchange(behindImage_, token.kind == LTokenKind::image);
  switch (token.kind) {
    case LTokenKind::task:
      return openTask(TaskStatus::notStarted, token.range.start);
    case LTokenKind::inProgressTask:
      return openTask(TaskStatus::inProgress, token.range.start);
    case LTokenKind::doneTask:
      return openTask(TaskStatus::done, token.range.start);
    case LTokenKind::cancelledTask:
      return openTask(TaskStatus::cancelled, token.range.start);
    case LTokenKind::eol:
    case LTokenKind::end:
      return closeTask();
    case LTokenKind::tabLevel:
      return;
    case LTokenKind::taskMeta:
      return takeMeta(token.key, token.text);
    case LTokenKind::tag:
      takeTag(token.text.substr(1));
      break;
    case LTokenKind::dateRef:
      dateRefs_.insert(token.text.substr(1));
      break;
    case LTokenKind::backLink:
      backlinks_.insert(token.text);
      break;
    case LTokenKind::url:
      if (behindImage || LKAttachmentTypes::isImage(token.text)) takeImage(token.text);
      break;
    default:
      break;
  }
  // Behind a checkbox every token's source form is what stands in the text.
  if (inTask_) taskText_.append(token.range.of(text_));
}

void TagExtraction::takeTag(std::string_view tag) {
  const bool isNew = tags_.insert(tag);
  if (isNew && projectTerms_->projectNameOffset(tag)) result_.projectTags.emplace_back(tag);
}

void TagExtraction::takeImage(std::string_view reference) {
  if (isWebAddress(reference)) return;
  const std::string_view name = attachmentName(reference);
  if (name.empty()) return;
  if (attachmentsDirectory_ && !holdsFile(*attachmentsDirectory_, name)) return;
  result_.imageAttachments.emplace_back(name);
}

// --- Tasks ---------------------------------------------------------------------------------------

void TagExtraction::openTask(TaskStatus status, size_t start) {
  inTask_ = true;
  task_ = {};
  task_.isComplete = isComplete(status);
  task_.statusRaw = static_cast<int>(status);
  task_.paragraphIndex = line_;
  taskText_.clear();
  taskContexts_.clear();
  taskStarts_.push_back(start);
}

void TagExtraction::closeTask() {
  if (!inTask_) return;
  inTask_ = false;
  ++(task_.isComplete ? result_.doneTaskCount : result_.activeTaskCount);
  task_.text = text::trimmedBlanks(taskText_);
  result_.tasks.push_back(std::move(task_));
}

void TagExtraction::takeMeta(std::string_view key, std::string_view value) {
  if (key == "due") {
    if (const auto day = LKDateOnly::parse(value)) {
      task_.dueDate = day;
      // Counted where it is written: a line with two late dates counts twice.
      if (!task_.isComplete && LKTaskDue::isOverdue(*day, now_)) ++result_.overdueTaskCount;
    }
  } else if (key == "done") {
    if (const auto day = LKDateOnly::parse(value)) task_.doneDate = day;
  } else if (key == "priority") {
    task_.priority = LKTaskPriority::rawValue(value);
  } else if (key == "context" || key == "contexts") {
    takeContexts(value);
  } else {
    task_.project = value;  // every other key of the lexer's is a word for projects
  }
}

void TagExtraction::takeContexts(std::string_view list) {
  for (const std::string_view piece : text::split(list, ',')) {
    std::string context = text::lowercased(text::trimmedBlanks(piece));
    if (context.empty() || !taskContexts_.insert(text::composed(context)).second) continue;
    task_.contexts.push_back(std::move(context));
  }
}

// --- Details -------------------------------------------------------------------------------------

// Each task's comments end before the next task, so no line is looked at twice. The masked text
// serves as well as the raw one, since a region's marker line is no comment.
void TagExtraction::addDetails() {
  for (size_t i = 0; i < taskStarts_.size(); ++i) {
    const bool isLast = i + 1 == taskStarts_.size();
    const size_t limit = isLast ? text_.size() : taskStarts_[i + 1];
    result_.tasks[i].detail = commentsBelow(taskStarts_[i], limit);
  }
}

// `limit` is the end of the text, or where in a line the next task begins.
std::optional<std::string> TagExtraction::commentsBelow(size_t taskStart, size_t limit) const {
  const std::string_view all = text_.substr(0, limit);
  std::optional<std::string> detail;
  size_t taskTabs = 0;
  size_t at = all.find('\n', taskStart);
  while (at < all.size()) {
    const size_t start = at + 1;
    at = all.find('\n', start);
    if (at == std::string_view::npos && limit < text_.size()) break;
    const std::string_view line = all.substr(start, at - start);
    const std::string_view trimmed = text::trimmedBlanks(line);
    if (trimmed != ">" && !trimmed.starts_with("> ")) break;
    if (!detail) {
      detail.emplace();
      taskTabs = leadingTabs(text_.substr(text_.rfind('\n', taskStart) + 1));
    } else {
      detail->push_back('\n');
    }
    const size_t tabs = leadingTabs(line);
    detail->append(tabs > taskTabs ? tabs - taskTabs : 0, '\t');
    detail->append(trimmed.substr(std::min<size_t>(2, trimmed.size())));
  }
  return detail;
}

// --- The printable form --------------------------------------------------------------------------

std::string describeTask(const TaskInfo& task) {
  std::string line = "task " + std::to_string(task.paragraphIndex) + " status " +
                     std::to_string(task.statusRaw) + " " + lexing::quoted(task.text);
  if (task.dueDate) line.append(" due ").append(LKDateOnly::text(*task.dueDate));
  if (task.doneDate) line.append(" done ").append(LKDateOnly::text(*task.doneDate));
  if (task.priority != 0) line.append(" priority ").append(std::to_string(task.priority));
  if (task.project) line.append(" project ").append(lexing::quoted(*task.project));
  for (const std::string& context : task.contexts) {
    line.append(" context ").append(lexing::quoted(context));
  }
  if (task.detail) line.append(" detail ").append(lexing::quoted(*task.detail));
  return line;
}

}  // namespace

std::string describe(const ExtractionResult& result) {
  std::string lines = "counts active " + std::to_string(result.activeTaskCount) + " done " +
                      std::to_string(result.doneTaskCount) + " overdue " +
                      std::to_string(result.overdueTaskCount) + "\n";
  const auto add = [&](std::string_view name, const auto& texts) {
    for (const std::string& text : texts) {
      lines.append(name).append(" ").append(lexing::quoted(text)).append("\n");
    }
  };
  add("tag", result.tags);
  add("dateRef", result.dateRefs);
  for (const TaskInfo& task : result.tasks) lines.append(describeTask(task)).append("\n");
  add("image", result.imageAttachments);
  add("backlink", result.backlinks);
  return lines;
}

namespace LKTagExtractor {

ExtractionResult extract(std::string_view text,
                         const std::optional<std::filesystem::path>& attachmentsDirectory,
                         Instant now, std::shared_ptr<const LKProjectTermsSnapshot> projectTerms) {
  const bool isMasked = text.find(kNoIndexOpening) != std::string_view::npos;
  const std::string masked = isMasked ? maskNoindexRegions(text) : std::string();
  return TagExtraction(isMasked ? masked : text, attachmentsDirectory, now, std::move(projectTerms))
      .run();
}

ExtractionResult::Texts extractTags(std::string_view text) {
  return extract(text).tags;
}

std::string maskNoindexRegions(std::string_view text) {
  std::string masked;
  if (text.find(kNoIndexOpening) == std::string_view::npos) return masked.append(text);
  masked.reserve(text.size());
  bool isInRegion = false;
  for (size_t start = 0; start <= text.size();) {
    const size_t end = std::min(text.find('\n', start), text.size());
    const std::string_view line = text.substr(start, end - start);
    const bool isEnd = closesNoIndexRegion(line);
    isInRegion = (isInRegion && !isEnd) || opensNoIndexRegion(line);
    if (isInRegion || isEnd) {
      masked.append(text::scalarCount(line), ' ');
    } else {
      masked.append(line);
    }
    if (end < text.size()) masked.push_back('\n');
    start = end + 1;
  }
  return masked;
}

}  // namespace LKTagExtractor

}  // namespace lk
