// Extraction on any text: it ends, tasks name lines that are task lines, counts agree with tasks,
// masking keeps lines and lengths, and task texts are made of what stands in the text.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Tags/LKTagExtractor.h"

namespace {

std::shared_ptr<const lk::LKProjectTermsSnapshot> fuzzTerms() {
  auto made = std::make_shared<lk::LKProjectTermsSnapshot>();
  made->metadataKeywords = {"client", "\u00E9t\u00E9", "project"};
  made->setKeywordTables();
  return made;
}

void require(bool holds) {
  if (!holds) std::abort();
}

void checkTasks(const lk::ExtractionResult& found, std::string_view text) {
  static const lk::Pattern taskLine(R"(^[\t\p{Zs}]*- \[[ xX/-]\](?: |$))");
  const std::vector<std::string_view> lines = lk::text::splitLines(text);
  int active = 0;
  int last = -1;
  size_t detailBytes = 0;
  for (const lk::TaskInfo& task : found.tasks) {
    require(task.paragraphIndex > last);
    last = task.paragraphIndex;
    require(static_cast<size_t>(last) < lines.size());
    const std::string_view line = lines[static_cast<size_t>(last)];
    require(taskLine.matches(line));
    require(task.text.size() + 5 <= line.size());
    require(task.statusRaw >= 0 && task.statusRaw <= 3);
    require(task.isComplete == (task.statusRaw >= 2));
    active += task.isComplete ? 0 : 1;
    detailBytes += task.detail.value_or("").size();
  }
  require(found.activeTaskCount == active && found.hasActiveTasks == (active > 0));
  require(found.doneTaskCount == static_cast<int>(found.tasks.size()) - active);
  // A task counts once for each late date on its line, and each takes room.
  require(found.overdueTaskCount <= static_cast<int>(text.size() / 14));
  require(detailBytes <= text.size());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const auto words = fuzzTerms();
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (!lk::text::isValidUTF8(text)) return 0;
  const std::string masked = lk::LKTagExtractor::maskNoindexRegions(text);
  require(lk::text::scalarCount(masked) == lk::text::scalarCount(text));
  require(std::ranges::count(masked, '\n') == std::ranges::count(text, '\n'));
  const lk::Instant now{1'800'000'000, 0};
  const lk::ExtractionResult found = lk::LKTagExtractor::extract(text, std::nullopt, now, words);
  require(found == lk::LKTagExtractor::extract(masked, std::nullopt, now, words));
  checkTasks(found, masked);
  const std::string form = describe(found);
  const auto items = found.tags.size() + found.dateRefs.size() + found.tasks.size() +
                     found.imageAttachments.size() + found.backlinks.size();
  require(static_cast<size_t>(std::ranges::count(form, '\n')) == items + 1);
  return 0;
}
