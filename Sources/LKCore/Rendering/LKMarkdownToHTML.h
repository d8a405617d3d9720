#pragma once

// The text of a note as an HTML fragment: what the note dialect adds to GitHub's Markdown (tags,
// links in brackets, date references, task states and their words, highlights, admonitions,
// footnotes, sizes of pictures, attachments, captions) is written as HTML by passes before and
// behind cmark-gfm, which does the rest.
//
//     htmlBody("Ask [[Ann]] #plan", SharingOptions::preview(), {}, false, false)
//     // <p>Ask <a class="backlink" href="larkspire://open?title=Ann">Ann</a>
//     //    <span class="lk-tag">#plan</span></p>
//
// Raw HTML of a note stays live, but for the tags of a page (script, style, iframe, head ...), which
// show as text. What the passes write cannot be forged: titles and labels are escaped wherever they
// stand, and a task's identifier comes from the caller alone.
//
// Pure functions of valid UTF-8, for any thread; nothing throws but a resolver, and what it throws
// passes through. Time is linear in the text.

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/UUID.h"

namespace lk::LKMarkdownToHTML {

// What becomes of tasks: all stays; "due:", "done:", "priority:" and "id:" go, the task stays; or
// the whole line goes.
enum class TaskExportMode { keepAll = 0, stripMetadata = 1, stripLines = 2 };

struct SharingOptions {
  // A link to an attachment: a badge with a name; only its label, or nothing where it stands alone
  // in its paragraph; or a plain link.
  enum class AttachmentHandling { chip, strip, keepLinks };

  // The identifier of the note with the title, or nothing. Called on the caller's thread.
  using BacklinkResolver = std::function<std::optional<std::string>(std::string_view title)>;

  bool stripTags = false;
  bool flattenBacklinks = false;  // "[[title]]" is just its title
  bool backlinkClickable = true;  // without a resolver: a link, else a span
  TaskExportMode taskMode = TaskExportMode::keepAll;
  bool stripComments = false;  // of HTML, from the source
  AttachmentHandling attachmentHandling = AttachmentHandling::strip;
  bool attachmentsMayBeAnyType = false;  // not only those of LKAttachmentTypes
  BacklinkResolver backlinkResolver = nullptr;

  // Everything shows.
  static const SharingOptions& preview();
  // For readers without the collection: no tags, no links between notes, no words of tasks.
  static const SharingOptions& sharing();
};

// `taskIDs` are those of the note's task lines in the order of the text, as many as there are: the
// boxes of the first lines carry them, and can be clicked when `interactiveCheckboxes`. With
// `hardBreaks` a line's end is a line break. When cmark fails the fragment says so.
std::string htmlBody(std::string_view text, const SharingOptions& options,
                     const std::vector<UUID>& taskIDs, bool interactiveCheckboxes, bool hardBreaks);

// What stands behind the block at the start; a text without a whole block is unchanged.
std::string_view stripFrontMatter(std::string_view text);

// Leading tabs as Markdown understands them: four spaces for each level of a list below its first
// item and in fences, none before prose, one before a line that continues a footnote.
std::string convertLeadingTabs(std::string_view text);

// With an empty line wherever Markdown needs one that people leave out: before a thematic break, a
// table, a first heading, a list, and behind a quote.
std::string ensureBlankLineSeparators(std::string_view text);

// The titles between double brackets that `htmlBody` meets in the same source.
std::set<std::string> wikiLinkTargets(std::string_view text, const SharingOptions& options);

// Where the placeholder of a picture from the web leads.
inline constexpr std::string_view blockedImageURL = "larkspire-blocked:image";

// `htmlBody`'s fragment with a placeholder link for every picture from the web.
std::string blockWebImages(std::string html);

}  // namespace lk::LKMarkdownToHTML
