// What the dialect adds within a line, and its admonitions.

#include <algorithm>
#include <array>
#include <utility>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace lk::LKMarkdownToHTML {

namespace {

constexpr std::string_view kMarker = "<!--lkid:";

bool holds(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

// --- Links ---------------------------------------------------------------------------------------

// A title within the HTML of a link, so that neither its characters nor the passes to come make
// anything else of it. What the neutralising of page tags wrote stays as it is.
std::string titleText(std::string_view title) {
  std::string result;
  unsigned char before = 'x';
  for (size_t i = 0; i < title.size(); ++i) {
    const char c = title[i];
    const bool beginsWord = before <= ' ' || before >= 0x80;
    const bool meansLater = std::string_view("=:*~`[\r").find(c) != std::string_view::npos ||
                            (beginsWord && (c == '#' || c == '@'));
    if (meansLater) {
      result.append("&#").append(std::to_string(static_cast<int>(c))).append(";");
    } else if (title.substr(i).starts_with("&lt;")) {
      result.push_back(c);
    } else {
      result.append(html::escaped(title.substr(i, 1)));
    }
    before = static_cast<unsigned char>(c);
  }
  return result;
}

std::string linkHTML(std::string_view title, const SharingOptions& options) {
  const std::string text = titleText(title);
  std::string target;
  if (options.backlinkResolver) {
    const std::optional<std::string> id = options.backlinkResolver(title);
    if (!id) return std::string(title);
    target = "id=" + titleText(*id);
  } else if (options.backlinkClickable) {
    target = "title=" + text;
  } else {
    return "<span class=\"backlink\">" + text + "</span>";
  }
  return "<a class=\"backlink\" href=\"larkspire://open?" + target + "\">" + text + "</a>";
}

std::string withLinks(std::string line, const SharingOptions& options) {
  std::string result;
  size_t copied = 0;
  for (auto link = nextWikiLink(line, 0); link; link = nextWikiLink(line, copied)) {
    result.append(line, copied, link->range.start - copied);
    result.append(options.flattenBacklinks ? std::string(link->title)
                                           : linkHTML(link->title, options));
    copied = link->range.end;
  }
  if (copied == 0) return line;
  // A bare title can complete a page's tag: "<[[script]]>".
  return neutralisePageTags(std::move(result.append(line, copied)));
}

// --- Tasks ---------------------------------------------------------------------------------------

struct TaskMark {
  size_t bracket = 0;  // of "[x] "
  size_t end = 0;      // behind the blank
  char status = ' ';
};

std::optional<TaskMark> taskMark(std::string_view line) {
  static const Pattern pattern(R"(^\s*-\s+(\[[ xX/\-]\])\s)");
  if (!text::trimmedLeading(line).starts_with('-') || !holds(line, "[")) return std::nullopt;
  const auto match = pattern.find(line);
  if (!match) return std::nullopt;
  const size_t bracket = (*match)[1]->start;
  return TaskMark{bracket, (*match)[0]->end, line[bracket + 1]};
}

// The box of a state that GitHub's Markdown does not know.
std::string_view rawBox(char status) {
  if (status == '/') return R"(<input type="checkbox" class="lk-inprogress" disabled> )";
  if (status == '-') return R"(<input type="checkbox" checked class="lk-cancelled" disabled> )";
  return {};
}

// The line with its box, and then where the task's text begins.
std::pair<std::string, size_t> withBox(std::string_view line, const TaskMark& task) {
  const std::string_view box = rawBox(task.status);
  if (box.empty()) return {std::string(line), task.end};
  std::string result(line.substr(0, task.bracket));
  result.append(box);
  const size_t head = result.size();
  return {result.append(line.substr(task.end)), head};
}

// --- Admonitions ---------------------------------------------------------------------------------

struct AdmonitionKind {
  std::string_view keyword;  // in lower case
  std::string_view title;
};

constexpr std::array<AdmonitionKind, 5> kAdmonitions = {{{"note", "Note"},
                                                         {"tip", "Tip"},
                                                         {"important", "Important"},
                                                         {"warning", "Warning"},
                                                         {"caution", "Caution"}}};

struct AdmonitionHeader {
  const AdmonitionKind* kind = nullptr;
  std::string_view text;  // behind the keyword, trimmed
};

std::optional<AdmonitionHeader> admonitionHeader(std::string_view line) {
  static const Pattern pattern(R"(^>\s*\[!(NOTE|TIP|IMPORTANT|WARNING|CAUTION)\]\s*(.*?)$)",
                               Pattern::Case::insensitive);
  if (!line.starts_with('>') || !holds(line, "[!")) return std::nullopt;
  const auto match = pattern.find(line);
  if (!match) return std::nullopt;
  const std::string keyword = text::lowercased((*match)[1]->of(line));
  const auto* kind = std::ranges::find(kAdmonitions, keyword, &AdmonitionKind::keyword);
  if (kind == kAdmonitions.end()) return std::nullopt;
  return AdmonitionHeader{kind, text::trimmed((*match)[2]->of(line))};
}

// What a line of the body says; nothing for a line that ends the admonition.
std::optional<std::string_view> admonitionBody(std::string_view line) {
  if (line == ">") return std::string_view{};
  if (!line.starts_with("> ") || admonitionHeader(line)) return std::nullopt;
  return line.substr(2);
}

std::vector<std::string> paragraphsOf(const std::vector<std::string_view>& lines) {
  std::vector<std::string> paragraphs;
  bool isOpen = false;
  for (const std::string_view line : lines) {
    const bool isBlank = text::trimmed(line).empty();
    if (!isBlank) {
      if (!isOpen) paragraphs.emplace_back("<p>");
      if (isOpen) paragraphs.back().append("<br>");
      paragraphs.back().append(
          replaceInlineMarkdown(preprocessLine(std::string(line), SharingOptions::preview())));
    } else if (isOpen) {
      paragraphs.back().append("</p>");
    }
    isOpen = !isBlank;
  }
  if (isOpen) paragraphs.back().append("</p>");
  return paragraphs;
}

// With an empty line above and below.
void appendAdmonition(std::string& result, const AdmonitionKind& kind,
                      const std::vector<std::string_view>& lines) {
  result.append("\n<div class=\"lk-admonition lk-admonition-").append(kind.keyword);
  result.append("\">\n<div class=\"lk-admonition-title\">").append(kind.title).append("</div>\n");
  const std::vector<std::string> paragraphs = paragraphsOf(lines);
  if (!paragraphs.empty()) {
    result.append("<div class=\"lk-admonition-body\">\n");
    for (const std::string& paragraph : paragraphs) result.append(paragraph).append("\n");
    result.append("</div>\n");
  }
  result.append("</div>\n\n");
}

}  // namespace

std::optional<WikiLink> nextWikiLink(std::string_view line, size_t from) {
  for (size_t open = line.find("[[", from); open != std::string_view::npos;) {
    const size_t close = line.find(']', open + 2);
    if (close == std::string_view::npos) return std::nullopt;
    if (close > open + 2 && line.substr(close).starts_with("]]")) {
      return WikiLink{{open, close + 2}, line.substr(open + 2, close - open - 2)};
    }
    open = line.find("[[", close);  // this bracket ends every title that begins before it
  }
  return std::nullopt;
}

std::string preprocessAdmonitions(std::string text) {
  if (!holds(text, "[!")) return text;
  const std::vector<std::string_view> lines = text::split(text, '\n');
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    const auto header = admonitionHeader(lines[i]);
    if (!header) {
      result.append(lines[i]).append("\n");
      continue;
    }
    std::vector<std::string_view> body;
    if (!header->text.empty()) body.push_back(header->text);
    for (; i + 1 < lines.size(); ++i) {
      const auto line = admonitionBody(lines[i + 1]);
      if (!line) break;
      body.push_back(*line);
    }
    appendAdmonition(result, *header->kind, body);
  }
  result.pop_back();  // the last line's end was not there
  return result;
}

std::string replaceInlineMarkdown(std::string text) {
  static const Pattern strong(R"(\*\*(.+?)\*\*)");
  static const Pattern emphasis(R"(\*(.+?)\*)");
  static const Pattern deletion("~~(.+?)~~");
  static const Pattern code("`([^`]+)`");
  if (holds(text, "**")) text = strong.replacingAllByTemplate(text, "<strong>$1</strong>");
  if (holds(text, "*")) text = emphasis.replacingAllByTemplate(text, "<em>$1</em>");
  if (holds(text, "~~")) text = deletion.replacingAllByTemplate(text, "<del>$1</del>");
  if (holds(text, "`")) text = code.replacingAllByTemplate(text, "<code>$1</code>");
  return text;
}

std::string preprocessLine(std::string line, const SharingOptions& options) {
  // Word characters with their marks, as in names of tags in any script.
  static const Pattern tag(
      R"((?<=\s|^)#([a-zA-Z][\p{L}\p{M}\p{Nd}\p{Nl}\p{Pc}\x{200C}\x{200D}/\-]*))");
  static const Pattern date(R"((?<=\s|^)@(\d{8}))");
  static const Pattern metadata(R"((?<=\s)(due|done|priority|id):(\S+))");
  static const Pattern equalSigns("={2}([^=]+)={2}");
  static const Pattern colons(":{2}([^:]+):{2}");
  if (holds(line, "[[")) line = withLinks(std::move(line), options);
  if (holds(line, "#")) {
    line = tag.replacingAllByTemplate(
        line, options.stripTags ? "" : R"(<span class="lk-tag">#$1</span>)");
  }
  if (holds(line, "@")) {
    line = date.replacingAllByTemplate(line, R"(<span class="lk-dateref">@$1</span>)");
  }
  if (holds(line, ":")) {
    line = metadata.replacingAllByTemplate(line, options.taskMode == TaskExportMode::stripMetadata
                                                     ? ""
                                                     : R"(<span class="lk-taskmeta">$1:$2</span>)");
  }
  if (holds(line, "==")) line = equalSigns.replacingAllByTemplate(line, "<mark>$1</mark>");
  if (holds(line, "::")) line = colons.replacingAllByTemplate(line, "<mark>$1</mark>");
  return line;
}

std::string preprocessCustomSyntax(std::string text, const SharingOptions& options,
                                   const std::vector<UUID>& taskIDs) {
  text = preprocessAdmonitions(std::move(text));
  std::string result;
  result.reserve(text.size() + text.size() / 4);
  bool inFence = false;
  size_t tasks = 0;
  // A marker that the note brings along is none of ours, also where cmark sees no fence.
  const auto append = [&](std::string line, size_t head, const UUID* id) {
    if (!taskIDs.empty() && holds(line, kMarker)) {
      line = text::replacingAll(line, kMarker, "<!-- lkid:");
    }
    if (id != nullptr) line.insert(head, std::string(kMarker) + id->text() + "-->");
    result.append(line).append("\n");
  };
  for (const std::string_view line : text::split(text, '\n')) {
    if (isFenceMark(line)) inFence = !inFence;
    if (inFence || isFenceMark(line)) {
      append(std::string(line), 0, nullptr);
      continue;
    }
    const auto task = taskMark(line);
    if (!task) {
      append(preprocessLine(std::string(line), options), 0, nullptr);
      continue;
    }
    const UUID* const id = tasks < taskIDs.size() ? &taskIDs[tasks] : nullptr;
    ++tasks;
    if (options.taskMode == TaskExportMode::stripLines) continue;
    // The marker comes last: a tag that begins the task stands behind a blank, as it does in the note.
    auto [boxed, head] = withBox(line, *task);
    append(preprocessLine(std::move(boxed), options), head, id);
  }
  if (!result.empty()) result.pop_back();  // the last line's end was not there
  return result;
}

}  // namespace lk::LKMarkdownToHTML
