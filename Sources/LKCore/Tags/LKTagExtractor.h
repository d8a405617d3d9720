#pragma once

// What a note's body holds besides its words: tags, dates, links, pictures and tasks.
//
//     ExtractionResult found = LKTagExtractor::extract("- [ ] Order seeds due:2026-03-20 #garden");
//     found.tags                // {"garden"}
//     found.tasks[0].text       // "Order seeds  #garden"
//     found.activeTaskCount     // 1
//
// One pass over the lexer's tokens; time and memory are linear in the text, whatever it is. Nothing
// is found in fenced code whose fence is closed, nor between the lines "<!--lk:noindex-->" and
// "<!--/lk:noindex-->". The text is valid UTF-8, as a note's body is in memory.

#include <filesystem>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Time.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk {

// One task line.
struct TaskInfo {
  // The line behind its checkbox, without `key:value` metadata, without blanks at its ends.
  std::string text;
  bool isComplete = false;  // done or cancelled
  int statusRaw = 0;        // a TaskStatus
  std::optional<Day> dueDate;
  std::optional<Day> doneDate;
  int priority = 0;  // see LKTaskPriority
  std::optional<std::string> project;
  std::vector<std::string> contexts;  // lower-cased, no repeats
  int paragraphIndex = 0;             // the line's number in the body, from 0
  // The lines "> ..." below the task, without the mark, with the tabs that they have beyond the
  // task's. Line feeds stand between them.
  std::optional<std::string> detail;

  bool operator==(const TaskInfo&) const = default;
};

struct ExtractionResult {
  using Texts = std::set<std::string, std::less<>>;

  Texts tags;  // without "#", as written; of two canonically equal ones the first
  bool hasActiveTasks = false;
  int activeTaskCount = 0;                    // not started or in progress
  int doneTaskCount = 0;                      // done or cancelled
  int overdueTaskCount = 0;                   // due dates of active tasks that have passed
  Texts dateRefs;                             // eight digits
  std::vector<TaskInfo> tasks;                // in the order of their lines
  std::vector<std::string> imageAttachments;  // file names as written, with repeats
  Texts backlinks;                            // what stands between "[[" and "]]"; as for `tags`
  std::vector<std::string> projectTags;       // those of `tags` that name a project, as they come

  bool operator==(const ExtractionResult&) const = default;
};

// One line an item, for people and tests, in the order of the fields:
//   counts active 1 done 0 overdue 0
//   tag "garden"
//   task 0 status 0 "Order seeds  #garden" due 2026-03-20
std::string describe(const ExtractionResult& result);

namespace LKTagExtractor {

// With a directory, a picture counts only when the file is there, inside the directory; without
// one each reference counts. `now` says what is overdue.
ExtractionResult extract(
    std::string_view text,
    const std::optional<std::filesystem::path>& attachmentsDirectory = std::nullopt,
    Instant now = Instant::now(),
    std::shared_ptr<const LKProjectTermsSnapshot> projectTerms = LKProjectTerms::snapshot());

// The tags alone.
ExtractionResult::Texts extractTags(std::string_view text);

// The text with one space for each scalar of a noindex region's lines, its marker lines included,
// so that line numbers and lengths in scalars stay. A region that is not closed reaches to the
// text's end. Lines end at line feeds.
std::string maskNoindexRegions(std::string_view text);

}  // namespace LKTagExtractor

}  // namespace lk
