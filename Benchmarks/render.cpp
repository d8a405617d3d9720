// Notes to HTML, whole and pass by pass, beside the Markdown library alone on the same notes.
//
// The notes are those of the folder LARKSPIRE_CORPUS, else of Samples in the working directory.

#include <benchmark/benchmark.h>
#include <cmark-gfm.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "LKCore/Rendering/HTMLPasses.h"
#include "LKCore/Rendering/LKMarkdownToHTML.h"
#include "LKCore/Rendering/MarkdownRenderer.h"
#include "LKCore/Rendering/SourcePasses.h"

namespace {

using Texts = std::vector<std::string>;

const Texts& notes() {
  static const Texts all = [] {
    Texts read;
    const char* folder = std::getenv("LARKSPIRE_CORPUS");
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(folder != nullptr ? folder : "Samples")) {
      if (entry.path().extension() != ".md") continue;
      std::ifstream in(entry.path(), std::ios::binary);
      read.emplace_back(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>{});
    }
    return read;
  }();
  return all;
}

// What cmark makes of them.
const Texts& fragments() {
  static const Texts all = [] {
    Texts made;
    for (const std::string& note : notes()) {
      made.push_back(lk::LKMarkdownToHTML::renderMarkdown(note, {}));
    }
    return made;
  }();
  return all;
}

template <typename Pass>
void overAll(benchmark::State& state, const Texts& texts, const Pass& pass) {
  size_t bytes = 0;
  for (const std::string& text : texts) bytes += text.size();
  for (auto _ : state) {
    for (const std::string& text : texts) benchmark::DoNotOptimize(pass(text));
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(bytes));
}

using lk::LKMarkdownToHTML::SharingOptions;

void wholeNotes(benchmark::State& state) {
  overAll(state, notes(), [](const std::string& note) {
    return lk::LKMarkdownToHTML::htmlBody(note, SharingOptions::preview(), {}, false, false);
  });
}
BENCHMARK(wholeNotes);

void cmarkAlone(benchmark::State& state) {
  overAll(state, notes(), [](const std::string& note) {
    char* const html = cmark_markdown_to_html(note.data(), note.size(), CMARK_OPT_UNSAFE);
    const std::string copy = html;
    cmark_get_default_mem_allocator()->free(html);
    return copy;
  });
}
BENCHMARK(cmarkAlone);

void cmarkWithExtensions(benchmark::State& state) {
  overAll(state, notes(),
          [](const std::string& note) { return lk::LKMarkdownToHTML::renderMarkdown(note, {}); });
}
BENCHMARK(cmarkWithExtensions);

void customSyntax(benchmark::State& state) {
  overAll(state, notes(), [](const std::string& note) {
    return lk::LKMarkdownToHTML::preprocessCustomSyntax(note, SharingOptions::preview(), {});
  });
}
BENCHMARK(customSyntax);

void renderAttachmentLinks(benchmark::State& state) {
  overAll(state, fragments(), [](const std::string& html) {
    return lk::LKMarkdownToHTML::renderAttachmentLinks(html,
                                                       SharingOptions::AttachmentHandling::chip);
  });
}
BENCHMARK(renderAttachmentLinks);

void demoteNonImageImages(benchmark::State& state) {
  overAll(state, fragments(), [](const std::string& html) {
    return lk::LKMarkdownToHTML::demoteNonImageImages(html,
                                                      lk::LKMarkdownToHTML::Attachments::known);
  });
}
BENCHMARK(demoteNonImageImages);

template <auto Pass>
void sourcePass(benchmark::State& state) {
  overAll(state, notes(), Pass);
}
BENCHMARK(sourcePass<lk::LKMarkdownToHTML::convertLeadingTabs>)->Name("convertLeadingTabs");
BENCHMARK(sourcePass<lk::LKMarkdownToHTML::ensureBlankLineSeparators>)
    ->Name("ensureBlankLineSeparators");
BENCHMARK(sourcePass<lk::LKMarkdownToHTML::neutralisePageTags>)->Name("neutralisePageTags");
BENCHMARK(sourcePass<lk::LKMarkdownToHTML::preprocessAdmonitions>)->Name("preprocessAdmonitions");
BENCHMARK(sourcePass<lk::LKMarkdownToHTML::preprocessFootnotes>)->Name("preprocessFootnotes");

template <auto Pass>
void htmlPass(benchmark::State& state) {
  overAll(state, fragments(), Pass);
}
BENCHMARK(htmlPass<lk::LKMarkdownToHTML::applySourceFragments>)->Name("applySourceFragments");
BENCHMARK(htmlPass<lk::LKMarkdownToHTML::applyTableImageSizes>)->Name("applyTableImageSizes");
BENCHMARK(htmlPass<lk::LKMarkdownToHTML::stripImageSizeQualifiers>)
    ->Name("stripImageSizeQualifiers");
BENCHMARK(htmlPass<lk::LKMarkdownToHTML::promoteCaptionedFigures>)->Name("promoteCaptionedFigures");

}  // namespace
