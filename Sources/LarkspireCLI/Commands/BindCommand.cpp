#include "LarkspireCLI/Commands/BindCommand.h"

#include <filesystem>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CodeFence.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindThemes.h"
#include "LKCore/Platform/Files.h"
#include "LarkspireCLI/Commands/BindSpecOptions.h"
#include "LarkspireCLI/Commands/BindTitlePage.h"
#include "LarkspireCLI/Support/BindNotes.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TagArgument.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kStandardOutput = "-";

// What is bound: a tag, or else the title of a book note.
struct BindSource {
  std::string name;
  bool isBook = false;
};

BindSource bindSource(const BindCommand& command) {
  if (command.tag && command.book) {
    throw CLIError::general("--tag and --book are mutually exclusive. Pick one.");
  }
  if (!command.tag && !command.book) {
    throw CLIError::general("Must specify either --tag <path> or --book \"<note title>\".");
  }
  BindSource source = {
      command.book ? *command.book : std::string(TagArgument::withoutHash(*command.tag)),
      command.book.has_value()};
  if (text::trimmed(source.name).empty()) throw CLIError::general("No source specified.");
  return source;
}

std::optional<BindCommand::Format> bindFormat(const std::string& word) {
  const std::string name = text::lowercased(word);
  if (name == "pdf") return BindCommand::Format::pdf;
  if (name == "docx") return BindCommand::Format::docx;
  if (name == "epub") return BindCommand::Format::epub;
  if (name == "html") return BindCommand::Format::html;
  return std::nullopt;
}

std::string_view rawValue(BindCommand::Format format) {
  switch (format) {
    case BindCommand::Format::pdf:
      return "pdf";
    case BindCommand::Format::docx:
      return "docx";
    case BindCommand::Format::epub:
      return "epub";
    case BindCommand::Format::html:
      break;
  }
  return "html";
}

// An output whose extension names no format is HTML on purpose.
BindCommand::Format resolveFormat(const BindCommand& command) {
  if (command.format) {
    if (const auto format = bindFormat(*command.format)) return *format;
    throw CLIError::general("Unknown format '" + *command.format +
                            "'. Use pdf, docx, epub, or html.");
  }
  const std::string extension = fs::path(command.output.value_or("")).extension().string();
  return bindFormat(extension.empty() ? "" : extension.substr(1))
      .value_or(BindCommand::Format::html);
}

void requireHTML(BindCommand::Format format) {
  if (format == BindCommand::Format::html) return;
  throw CLIError::general("This version of lk makes HTML only, not " +
                          text::uppercased(rawValue(format)) +
                          ". Use --format html, or an --output that ends in .html.");
}

// Absolute; nothing for standard output. A tag's "/" cannot stand in a file name.
std::optional<fs::path> resolveOutput(const BindCommand& command, const BindSource& source,
                                      BindCommand::Format format, const BindNotes& notes) {
  if (command.output == kStandardOutput) return std::nullopt;
  if (command.output == "") throw CLIError::general("--output names no file.");
  const std::string name =
      text::replacingAll(source.name, "/", "-") + "." + std::string(rawValue(format));
  fs::path path = fs::absolute(command.output.value_or(name)).lexically_normal();
  if (notes.holds(path)) {
    throw CLIError::general("The output " + path.string() +
                            " is a note of this collection. Choose another --output.");
  }
  return path;
}

std::string countWithNoun(size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

// The bodies of the "mermaid" fences that are closed.
std::vector<std::string> extractMermaidSources(const std::vector<LKBindNoteInput>& inputs) {
  std::vector<std::string> sources;
  for (const LKBindNoteInput& input : inputs) {
    std::optional<CodeFenceOpening> fence;
    std::string content;
    for (const std::string_view line : text::split(input.body, '\n')) {
      if (!fence) {
        fence = parseCodeFenceStart(line);
        content.clear();
      } else if (!isCodeFenceClose(line, *fence)) {
        content.append(line).append("\n");
      } else {
        if (fence->language == "mermaid") sources.push_back(std::move(content));
        fence.reset();
      }
    }
  }
  return sources;
}

// Nothing here can draw: what stands in a diagram's place is the engine's affair.
void tellDiagrams(const GlobalOptions& options, const std::vector<LKBindNoteInput>& inputs) {
  const size_t count = extractMermaidSources(inputs).size();
  if (count == 0) return;
  printNote(options, "Rendering mermaid (" + countWithNoun(count, "diagram") +
                         ") is not possible in this version: a placeholder stands for each.");
}

void tellUnknownTheme(const GlobalOptions& options, const std::string& theme) {
  std::string names;
  for (const LKBindThemes::Descriptor& each : LKBindThemes::all) {
    if (each.id == theme) return;
    names.append(names.empty() ? "" : ", ").append(each.id);
  }
  printNote(options, "Warning: There is no theme '" + theme +
                         "', so the book has none. Themes: " + names + ".");
}

std::vector<LKBindNoteInput> gatherInputs(const BindSource& source, BindNotes& notes,
                                          const LKBindSpec& spec) {
  std::vector<LKBindNoteInput> inputs;
  if (source.isBook) {
    inputs.push_back(notes.bookTitled(source.name));
  } else {
    inputs = notes.withTag(source.name);
  }
  try {
    return LKBindNoteChoice::notesOfBook(std::move(inputs), spec, notes.source());
  } catch (const LKBindError& error) {
    throw CLIError::general(error.description());
  }
}

void writeBook(const fs::path& path, const std::string& document) {
  try {
    replaceFile(path, document);
  } catch (const FileError& error) {
    throw CLIError::general("Could not write " + error.description());
  }
}

}  // namespace

void BindCommand::declare(ArgumentList& arguments) {
  arguments
      .option("--tag", tag,
              "Leaf tag path (e.g. 'novel'). Binds every manually-sequenced note under the tag.")
      .completion = Completion::tag;
  Argument& bookArgument =
      arguments.option("--book", book,
                       "Title of a single book note (a note marked with the reserved `lk-book: "
                       "true` property). Binds that one note as a whole manuscript.");
  bookArgument.valueName = "title";
  bookArgument.completion = Completion::noteTitle;
  Argument& outputArgument =
      arguments.option("--output", output, "Output file path (default: <source-name>.<ext>).");
  outputArgument.valueName = "file";
  outputArgument.completion = Completion::file;
  arguments
      .option("--format", format,
              "Output format: pdf, docx, epub, or html. Inferred from --output extension when not "
              "given.")
      .choices = {"pdf", "docx", "epub", "html"};
  arguments.option("--author", author, "Author name embedded in headers / title page.").valueName =
      "name";
  Argument& specFileArgument = arguments.option(
      "--spec-file", specFile, "Path to a JSON spec file. Overrides preset options below.");
  specFileArgument.valueName = "file";
  specFileArgument.completion = Completion::file;
  arguments.option("--style", style, "Style preset: standard, paperback, plain. Default: standard.")
      .choices = {"standard", "paperback", "plain"};
  Argument& pageArgument =
      arguments.option("--page", page, "Page size: letter, a4, a5, trade-6x9. Default: letter.");
  pageArgument.valueName = "size";
  pageArgument.choices = {"letter", "legal", "a4", "a5", "b5", "trade-6x9", "mass-market"};
  arguments.option("--margin", margin, "Margins: standard, narrow, wide, tight. Default: standard.")
      .choices = {"standard", "narrow", "wide", "tight"};
  arguments
      .option("--orientation", orientation, "Orientation: portrait, landscape. Default: portrait.")
      .choices = {"portrait", "landscape"};
  Argument& chapterHeadingArgument = arguments.option(
      "--chapter-heading", chapterHeading,
      "Chapter heading: numbers-and-titles, numbers, titles. Default: numbers-and-titles.");
  chapterHeadingArgument.valueName = "form";
  chapterHeadingArgument.choices = {"numbers-and-titles", "numbers", "titles"};
  Argument& paragraphStyleArgument =
      arguments.option("--paragraph-style", paragraphStyle,
                       "Line break style: larkspire (each line is a paragraph, matches the "
                       "editor), commonmark (single \\n is a soft break). Default: larkspire.");
  paragraphStyleArgument.valueName = "style";
  paragraphStyleArgument.choices = {"larkspire", "commonmark"};
  Argument& headerFooterArgument =
      arguments.option("--header-footer", headerFooter,
                       "Header/footer: published-book (centered page # at foot), agent-submission "
                       "(Shunn Author / Title / Page top-right), none. Default: published-book.");
  headerFooterArgument.valueName = "style";
  headerFooterArgument.choices = {"published-book", "agent-submission", "none"};
  Argument& footnotesArgument = arguments.option(
      "--footnotes", footnotes,
      "Footnote placement (DOCX only): per-page (bottom of page, default), end-of-book (endnotes "
      "at document end), end-of-chapter (endnotes at end of each chapter).");
  footnotesArgument.valueName = "place";
  footnotesArgument.choices = {"per-page", "end-of-book", "end-of-chapter"};
  Argument& paragraphsArgument =
      arguments.option("--paragraphs", paragraphs,
                       "Paragraph layout: indented (fiction default — first-line indent, no space "
                       "between), block (technical default — no indent, blank-line gap between "
                       "paragraphs), inherit (use the chosen --style preset's typography).");
  paragraphsArgument.valueName = "layout";
  paragraphsArgument.choices = {"indented", "block", "inherit"};
  arguments
      .option("--theme", theme,
              "Visual theme (HTML/PDF/EPUB): manuscript (default), github, swiss, academic.")
      .choices = {"manuscript", "github", "swiss", "academic"};
  Argument& tasksArgument =
      arguments.option("--tasks", tasks,
                       "Checklists (task lines): keep (default), strip (remove the lines), or "
                       "metadata (keep the item, drop inline due:/priority:).");
  tasksArgument.valueName = "mode";
  tasksArgument.choices = {"keep", "strip", "metadata"};
}

void BindCommand::run() {
  const BindSource source = bindSource(*this);
  resolvedCollection(options.collection, options.quiet);
  const LKBindSpec spec = buildSpec(*this);
  BindNotes notes(options);
  std::vector<LKBindNoteInput> inputs = gatherInputs(source, notes, spec);
  const BindCommand::Format resolvedFormat = resolveFormat(*this);
  requireHTML(resolvedFormat);
  const size_t noteCount = inputs.size();
  const auto path = resolveOutput(*this, source, resolvedFormat, notes);
  if (!options.json) {
    printNote(options, "Binding " + countWithNoun(noteCount, "note") + " from " +
                           (source.isBook ? "book \"" + source.name + "\"" : source.name) + " as " +
                           std::string(rawValue(resolvedFormat)) + ".");
  }
  tellUnknownTheme(options, spec.theme);
  if (spec.filters.renderMermaid) tellDiagrams(options, inputs);

  const LKBindSubject subject = {.tagName = source.name,
                                 .author = std::string(text::trimmed(author)),
                                 .date = Instant::now(),
                                 .locale = ""};
  if (auto titlePage = titlePageOf(spec, subject, inputs)) {
    inputs.insert(inputs.begin(), std::move(*titlePage));
  }
  const std::string document = LKBindEngine::bind(inputs, spec, subject);
  if (!path) {
    printText(document);
    return;
  }
  writeBook(*path, document);
  if (options.json) {
    printLine(printJson({{"format", rawValue(resolvedFormat)},
                         {"noteCount", noteCount},
                         {"path", path->string()}}));
  } else {
    printLine("✓ Wrote " + path->string());
  }
}

}  // namespace lk
