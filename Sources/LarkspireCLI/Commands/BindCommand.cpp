#include "LarkspireCLI/Commands/BindCommand.h"

namespace lk {

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
  throwComesLater("bind");
}

}  // namespace lk
