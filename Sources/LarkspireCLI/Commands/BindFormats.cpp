#include "LarkspireCLI/Commands/BindFormats.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Text.h"
#include "LKCore/DOCX/LKBindDOCXBuilder.h"
#include "LKCore/EPUB/LKBindEPUBBuilder.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LarkspireCLI/Commands/BindPictures.h"
#include "LarkspireCLI/Commands/BindTitlePage.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/Output.h"

namespace lk {

namespace {

constexpr std::array<std::pair<std::string_view, BindCommand::Format>, 4> kBookFormats = {
    {{"pdf", BindCommand::Format::pdf},
     {"docx", BindCommand::Format::docx},
     {"epub", BindCommand::Format::epub},
     {"html", BindCommand::Format::html}}};

std::optional<BindCommand::Format> formatNamed(std::string_view word) {
  const std::string name = text::lowercased(word);
  for (const auto& [known, format] : kBookFormats) {
    if (known == name) return format;
  }
  return std::nullopt;
}

// The engine's document, what the command adds to it included.
std::string htmlOf(const BindJob& job) {
  std::vector<LKBindNoteInput> notes = job.notes;
  if (auto titlePage = titlePageOf(job.spec, job.subject, notes)) {
    notes.insert(notes.begin(), std::move(*titlePage));
  }
  return LKBindEngine::bind(notes, job.spec, job.subject, job.diagrams);
}

// Makes its own title page, and tells itself which pictures are missing.
std::string docxOf(const BindJob& job, const GlobalOptions& options, Progress& progress) {
  const auto warn = [&](const std::string& warning) {
    progress.clear();
    printNote(options, "Warning: " + warning);
  };
  return LKBindDOCXBuilder::docx(job.notes, job.spec, job.subject, job.collectionRoot, job.diagrams,
                                 warn);
}

std::string madeBook(BindCommand::Format format, const BindJob& job, const GlobalOptions& options,
                     Progress& progress) {
  const bool isDOCX = format == BindCommand::Format::docx;
  if (!isDOCX) tellMissingPictures(job.notes, job.collectionRoot, options);
  progress.stage("Setting the text");
  if (isDOCX) return docxOf(job, options, progress);
  std::string html = htmlOf(job);
  if (format == BindCommand::Format::epub) {
    progress.stage("Making the archive");
    return LKBindEPUBBuilder::epub(html, job.spec, job.subject, job.collectionRoot,
                                   coverSource(job.notes));
  }
  if (format == BindCommand::Format::pdf) {
    return LKBindPDFRenderer::renderPDF(html, job.spec, job.subject, job.collectionRoot,
                                        [&](std::string_view words) { progress.stage(words); });
  }
  return html;
}

}  // namespace

BindCommand::Format resolveFormat(const BindCommand& command) {
  if (command.format) {
    if (const auto format = formatNamed(*command.format)) return *format;
    throw CLIError::general("Unknown format '" + *command.format +
                            "'. Use pdf, docx, epub, or html.");
  }
  // An output whose extension names no format is HTML on purpose.
  const std::string extension =
      std::filesystem::path(command.output.value_or("")).extension().string();
  return formatNamed(extension.empty() ? "" : extension.substr(1))
      .value_or(BindCommand::Format::html);
}

std::string_view rawValue(BindCommand::Format format) {
  return std::ranges::find(kBookFormats, format, &decltype(kBookFormats)::value_type::second)
      ->first;
}

std::string boundBook(BindCommand::Format format, const BindJob& job, const GlobalOptions& options,
                      Progress& progress) {
  try {
    std::string book = madeBook(format, job, options, progress);
    progress.clear();
    return book;
  } catch (const Error& error) {
    throw CLIError::general(error.description());
  }
}

}  // namespace lk
