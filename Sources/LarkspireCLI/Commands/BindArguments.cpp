// What `lk bind` takes.

#include "LarkspireCLI/Commands/BindCommand.h"

namespace lk {

namespace {

// The new entry moves when the next one is added, so all of it is said at once.
template <typename Field>
void addOption(ArgumentList& arguments, std::string_view name, Field& field, std::string_view value,
               std::string_view help, Completion completion,
               std::vector<std::string_view> choices = {}) {
  Argument& argument = arguments.option(name, field, help);
  if (!value.empty()) argument.valueName = value;
  argument.completion = completion;
  argument.choices = std::move(choices);
}

template <typename Field>
void addChoice(ArgumentList& arguments, std::string_view name, Field& field, std::string_view value,
               std::string_view help, std::vector<std::string_view> choices) {
  addOption(arguments, name, field, value, help, Completion::none, std::move(choices));
}

}  // namespace

void BindCommand::declare(ArgumentList& arguments) {
  declareSourceAndOutput(arguments);
  declareStyle(arguments);
}

void BindCommand::declareSourceAndOutput(ArgumentList& arguments) {
  addOption(arguments, "--tag", tag, "",
            "Leaf tag path (e.g. 'novel'). Binds every manually-sequenced note under the tag.",
            Completion::tag);
  addOption(arguments, "--book", book, "title",
            "Title of a single book note (a note marked with the reserved `lk-book: true` "
            "property). Binds that one note as a whole manuscript.",
            Completion::noteTitle);
  addOption(arguments, "--output", output, "file",
            "Output file path (default: <source-name>.<ext>).", Completion::file);
  addChoice(arguments, "--format", format, "",
            "Output format: pdf, docx, epub, or html. Inferred from --output extension when not "
            "given.",
            {"pdf", "docx", "epub", "html"});
  addOption(arguments, "--author", author, "name", "Author name embedded in headers / title page.",
            Completion::none);
  addOption(arguments, "--spec-file", specFile, "file",
            "Path to a JSON spec file. Overrides preset options below.", Completion::file);
}

void BindCommand::declareStyle(ArgumentList& arguments) {
  addChoice(arguments, "--style", style, "",
            "Style preset: standard, paperback, plain. Default: standard.",
            {"standard", "paperback", "plain"});
  addChoice(arguments, "--page", page, "size",
            "Page size: letter, a4, a5, trade-6x9. Default: letter.",
            {"letter", "legal", "a4", "a5", "b5", "trade-6x9", "mass-market"});
  addChoice(arguments, "--margin", margin, "",
            "Margins: standard, narrow, wide, tight. Default: standard.",
            {"standard", "narrow", "wide", "tight"});
  addChoice(arguments, "--orientation", orientation, "",
            "Orientation: portrait, landscape. Default: portrait.", {"portrait", "landscape"});
  addChoice(arguments, "--chapter-heading", chapterHeading, "form",
            "Chapter heading: numbers-and-titles, numbers, titles. Default: numbers-and-titles.",
            {"numbers-and-titles", "numbers", "titles"});
  addChoice(arguments, "--paragraph-style", paragraphStyle, "style",
            "Line break style: larkspire (each line is a paragraph, matches the editor), "
            "commonmark (single \\n is a soft break). Default: larkspire.",
            {"larkspire", "commonmark"});
  addChoice(arguments, "--header-footer", headerFooter, "style",
            "Header/footer: published-book (centered page # at foot), agent-submission (Shunn "
            "Author / Title / Page top-right), none. Default: published-book.",
            {"published-book", "agent-submission", "none"});
  addChoice(arguments, "--footnotes", footnotes, "place",
            "Footnote placement (DOCX only): per-page (bottom of page, default), end-of-book "
            "(endnotes at document end), end-of-chapter (endnotes at end of each chapter).",
            {"per-page", "end-of-book", "end-of-chapter"});
  addChoice(arguments, "--paragraphs", paragraphs, "layout",
            "Paragraph layout: indented (fiction default — first-line indent, no space between), "
            "block (technical default — no indent, blank-line gap between paragraphs), inherit "
            "(use the chosen --style preset's typography).",
            {"indented", "block", "inherit"});
  addChoice(arguments, "--theme", theme, "",
            "Visual theme (HTML/PDF/EPUB): manuscript (default), github, swiss, academic.",
            {"manuscript", "github", "swiss", "academic"});
  addChoice(arguments, "--tasks", tasks, "mode",
            "Checklists (task lines): keep (default), strip (remove the lines), or metadata (keep "
            "the item, drop inline due:/priority:).",
            {"keep", "strip", "metadata"});
}

}  // namespace lk
