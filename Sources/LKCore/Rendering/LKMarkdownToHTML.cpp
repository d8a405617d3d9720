#include "LKCore/Rendering/LKMarkdownToHTML.h"

#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLPasses.h"
#include "LKCore/Rendering/MarkdownRenderer.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

// The text as far as every reader of the dialect takes it, page tags not yet changed.
std::string preparedSource(std::string_view text, const SharingOptions& options) {
  std::string source(stripFrontMatter(text));
  if (options.stripComments) source = stripComments(std::move(source));
  return ensureBlankLineSeparators(convertLeadingTabs(source));
}

}  // namespace

const SharingOptions& SharingOptions::preview() {
  static const SharingOptions options;
  return options;
}

const SharingOptions& SharingOptions::sharing() {
  static const SharingOptions options = {
      .stripTags = true, .flattenBacklinks = true, .taskMode = TaskExportMode::stripMetadata};
  return options;
}

std::string htmlBody(std::string_view text, const SharingOptions& options,
                     const std::vector<UUID>& taskIDs, bool interactiveCheckboxes,
                     bool hardBreaks) {
  std::string source = preparedSource(text, options);
  const size_t size = source.size();
  source = neutralisePageTags(std::move(source));
  const RenderMarkdownOptions rendering{.hardBreaks = hardBreaks,
                                        .restoresPageTags = source.size() != size};
  source = preprocessCustomSyntax(std::move(source), options, taskIDs);
  source = preprocessFootnotes(std::move(source));
  std::string html = renderMarkdown(source, rendering);
  if (!taskIDs.empty()) {
    html = bindTaskIDs(std::move(html),
                       interactiveCheckboxes ? Checkboxes::interactive : Checkboxes::still);
  }
  html = applySourceFragments(std::move(html));
  html = applyTableImageSizes(std::move(html));
  html = stripImageSizeQualifiers(std::move(html));
  html = demoteNonImageImages(
      std::move(html), options.attachmentsMayBeAnyType ? Attachments::any : Attachments::known);
  html = renderAttachmentLinks(std::move(html), options.attachmentHandling);
  return promoteCaptionedFigures(std::move(html));
}

std::set<std::string> wikiLinkTargets(std::string_view text, const SharingOptions& options) {
  const std::string source = neutralisePageTags(preparedSource(text, options));
  std::set<std::string> targets;
  for (const std::string_view line : text::split(source, '\n')) {
    for (auto link = nextWikiLink(line, 0); link; link = nextWikiLink(line, link->range.end)) {
      targets.emplace(link->title);
    }
  }
  return targets;
}

}  // namespace lk::LKMarkdownToHTML
