#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Terminology/LKProjectTerms.h"
#include "LarkspireCLI/Commands/CollectionCommands.h"
#include "LarkspireCLI/Support/AppContainerRegistry.h"
#include "LarkspireCLI/Support/CacheReader.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/DocumentationPage.h"
#include "LarkspireCLI/Support/LaunchingApp.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

// One line of the report, and its key in JSON.
struct Finding {
  const char* label;  // 17 characters wide at most
  const char* key;
  std::string value;
};
using Findings = std::vector<Finding>;

struct PolicyWords {
  std::string operator()(const StorePolicy& policy) const { return policy.url.string(); }
  std::string operator()(const UnavailablePolicy& /*policy*/) const {
    return "unavailable (no app cache for this folder)";
  }
  std::string operator()(const AutoPolicy& /*policy*/) const {
    return "auto (most-recent store; no collection resolved)";
  }
};

struct ReadingWords {
  const char* operator()(const CacheReader::None& /*none*/) const { return "nothing"; }
  const char* operator()(const CacheReader::AppIndex& /*app*/) const { return "the app's index"; }
  const char* operator()(const CacheReader::Files& /*files*/) const {
    return "an index built from the note files (slower)";
  }
};

bool isThere(const fs::path& path) {
  std::error_code ignored;
  return fs::exists(path, ignored);
}

std::string terminologyFile(const fs::path& collection) {
  const fs::path file = collection / ".config" / "terminology.json";
  if (!isThere(file)) return "absent (using defaults)";
  const auto terms = LKProjectTerms::snapshot();
  if (terms->previousSingulars.empty()) return file.string();
  return file.string() + " (previously \"" + terms->previousSingulars.front() + "\")";
}

Findings findingsOf(const GlobalOptions& options, const fs::path& collection, CacheReader& cache) {
  const auto terms = LKProjectTerms::snapshot();
  const CacheReader::Source source = cache.source();
  const bool isAvailable = !std::holds_alternative<CacheReader::None>(source);
  return {
      {"--collection arg", "collectionArgument",
       options.collection.value_or("(none — auto-detected)")},
      {"Documents dir", "documentsDir", collection.string()},
      {"Config dir", "configDir", (collection / ".config").string()},
      {"terminology.json", "terminologyFile", terminologyFile(collection)},
      {"Terminology", "terminology", terms->singular + " / " + terms->plural},
      {"Policy", "policy", std::visit(PolicyWords{}, collectionRun().cachePolicy)},
      {"Store", "store", cache.resolvedCachePath().value_or("(none)")},
      {"Available", "available", isAvailable ? "yes" : "no"},
      {"Reading", "reading", std::visit(ReadingWords{}, source)},
      {"Launched from", "launchedFrom",
       LaunchingApp::name().value_or("(no app — ssh, launchd or cron)")},
  };
}

std::string appIndexAccess() {
  switch (AppIndexAccess::check()) {
    case AppIndexAccess::Access::denied:
      return "refused by macOS (Files & Folders)";
    case AppIndexAccess::Access::readable:
      if (std::holds_alternative<StorePolicy>(collectionRun().cachePolicy)) return "readable";
      break;
    case AppIndexAccess::Access::missing:
      break;
  }
  return "no index for this collection";
}

// What is to be said of the application's registry, below its folder.
std::string registryRemark(const fs::path& collection) {
  if (AppIndexAccess::check() == AppIndexAccess::Access::missing) {
    return "  (not found — the Larkspire app has never run on this Mac;\n"
           "   commands read the note files instead.)";
  }
  if (!AppContainerRegistry::read()) {
    return "  (not readable — macOS doesn't allow this app to open Larkspire' data;\n"
           "   collection names can't be looked up, so pass --collection with a folder path.\n"
           "   " +
           documentationPage(kPermissionsPage) + ")";
  }
  if (!AppContainerRegistry::collectionForDocumentsPath(collection)) {
    return "  ⚠ The resolved folder matches no registered collection —\n"
           "    cache is scoped 'unavailable' (file-based commands still work).";
  }
  return "";
}

std::string labelledLine(const Finding& finding) {
  constexpr size_t kLabelWidth = 17;
  std::string label(finding.label);
  label.resize(kLabelWidth, ' ');
  return "  " + label + ": " + finding.value;
}

}  // namespace

void CollectionDoctorCommand::declare(ArgumentList& /*arguments*/) {}

void CollectionDoctorCommand::run() {
  const fs::path collection = resolvedCollectionAsItStands(options.collection, options.quiet);
  CacheReader cache(LKParts::none);
  const Findings run = findingsOf(options, collection, cache);
  const auto count = cache.noteCount();
  const Finding supportDir = {"Support dir", "supportDir",
                              AppContainerRegistry::supportDir().string()};
  const Findings index = {
      {"Notes in index", "notesInIndex", count ? std::to_string(*count) : "(none)"},
      {"App index access", "appIndexAccess", appIndexAccess()},
  };
  if (options.json) {
    Json report = {{supportDir.key, supportDir.value}};
    for (const Findings* findings : {&run, &index}) {
      for (const Finding& each : *findings) report[each.key] = each.value;
    }
    printLine(printJson(report));
    return;
  }
  printLine("Larkspire CLI — collection doctor\n");
  for (const Finding& each : run) printLine(labelledLine(each));
  printLine("\nApp container registry (com.larkspire.Larkspire-Mac):");
  printLine(labelledLine(supportDir));
  const std::string remark = registryRemark(collection);
  if (!remark.empty()) printLine(remark);
  for (const Finding& each : index) printLine(labelledLine(each));
}

}  // namespace lk
