#include "LarkspireCLI/Support/TaskArguments.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/CacheSync/StoreIndexFacts.h"
#include "LKCore/Navigation/LKProjectStore.h"
#include "LKCore/Navigation/LKTaskContextStore.h"
#include "LKCore/Terminology/LKProjectName.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/DateParser.h"
#include "LarkspireCLI/Support/GlobalOptions.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TaskLineEdits.h"

namespace lk {

namespace {

constexpr size_t kNearDistance = 2;

constexpr std::array<std::pair<std::string_view, TaskStatus>, 10> kStatusNames = {{
    {"not-started", TaskStatus::notStarted},
    {"notstarted", TaskStatus::notStarted},
    {"todo", TaskStatus::notStarted},
    {"in-progress", TaskStatus::inProgress},
    {"inprogress", TaskStatus::inProgress},
    {"done", TaskStatus::done},
    {"complete", TaskStatus::done},
    {"completed", TaskStatus::done},
    {"cancelled", TaskStatus::cancelled},
    {"canceled", TaskStatus::cancelled},
}};

void warnOfNearName(const GlobalOptions& options, const char* kind, const std::string& name,
                    std::span<const std::string> known) {
  const bool isKnown = std::ranges::any_of(
      known, [&](const std::string& each) { return text::equalIgnoringCase(each, name); });
  if (isKnown) return;
  const std::vector<std::string> near = LKTaskContextStore::nearMatches(name, known, kNearDistance);
  if (near.empty()) return;
  std::string question;
  for (const std::string& each : near) question += (question.empty() ? "“" : " or “") + each + "”";
  printNote(options, std::string("Note: the ") + kind + " “" + name + "” is new. Did you mean " +
                         question + "?");
}

}  // namespace

TaskStatus parseStatus(const std::string& value) {
  const std::string wanted = text::lowercased(value);
  const auto* const found =
      std::ranges::find(kStatusNames, wanted, &std::pair<std::string_view, TaskStatus>::first);
  if (found != kStatusNames.end()) return found->second;
  throw CLIError::general("\"" + value +
                          "\" is no status. Use not-started, in-progress, done or cancelled.");
}

std::string priorityArgument(const std::string& value) {
  std::string word = text::lowercased(value);
  if (word == "high" || word == "medium" || word == "low") return word;
  throw CLIError::general("\"" + value + "\" is no priority. Use high, medium or low.");
}

Day dueArgument(const std::string& value) {
  if (const auto day = DateParser::parse(value)) return *day;
  throw CLIError::general("\"" + value + "\" is no date. Use e.g. 2026-04-15 or \"next monday\".");
}

std::string projectArgument(const std::string& value) {
  std::string name(text::trimmed(value));
  if (LKProjectName::canStandInNote(name)) return name;
  throw CLIError::general("\"" + value +
                          "\" can't name a project: a name is one word, e.g. acme/site.");
}

std::vector<std::string> contextArguments(const std::vector<std::string>& values) {
  std::vector<std::string> contexts = TaskLineEdits::normalizeContexts(values);
  if (contexts.empty()) throw CLIError::general("Context names cannot be empty.");
  for (const std::string& context : contexts) {
    if (LKProjectName::holdsWhitespace(context)) {
      throw CLIError::general("\"" + context + "\" can't be a context: it holds a line break.");
    }
  }
  return contexts;
}

void warnOfNearNames(const GlobalOptions& options, CacheReader& cache,
                     const std::vector<std::string>& contexts,
                     const std::optional<std::string>& project) {
  if (options.quiet || (contexts.empty() && !project)) return;
  LKContext* const index = cache.container();
  if (index == nullptr) return;
  try {
    const StoreIndexFacts facts(*index);
    const auto known = LKTaskContextStore::allKnownContexts(facts.facts());
    for (const std::string& context : contexts) warnOfNearName(options, "context", context, known);
    if (!project) return;
    const auto projects = LKProjectStore::shared().allKnownNames(facts.facts());
    warnOfNearName(options, "project", *project, projects);
  } catch (const LKStoreError&) {
    return;  // nothing to compare with
  }
}

}  // namespace lk
