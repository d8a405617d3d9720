#include "LKCore/Modules/PDFPages.h"

#include "LKCore/Modules/OpenPart.h"

namespace lk {

namespace {

const OpenPart& pdfPart() {
  static const OpenPart part(kPDFPart, partsFolder());
  return part;
}

void requirePDFDone(PartResult result, const std::string& error) {
  if (result != PartResult::done) throw PDFPagesError("The PDF cannot be read: " + error);
}

std::vector<PDFPage>& pagesIn(void* target) {
  return *static_cast<std::vector<PDFPage>*>(target);
}

std::string textOfPart(PartBytes bytes) {
  return {bytes.data, bytes.size};
}

PartDestination partDestination(const PDFDestination& destination) {
  return {destination.page, destination.left, destination.top};
}

}  // namespace

size_t pdfPageCount(std::string_view pdf) {
  static const auto count =
      pdfPart().function<decltype(larkspirePDFPageCount)>("larkspirePDFPageCount");
  size_t result = 0;
  std::string error;
  requirePDFDone(count(partBytes(pdf), &result, partSink(error)), error);
  return result;
}

std::vector<PDFPage> pdfPages(std::string_view pdf) {
  static const auto read = pdfPart().function<decltype(larkspirePDFPages)>("larkspirePDFPages");
  std::vector<PDFPage> pages;
  const PartPageSink sink = {
      &pages,
      [](void* target, double width, double height) noexcept {
        return cameThrough([&] { pagesIn(target).push_back({width, height, {}}); });
      },
      [](void* target, const PartWord* word) noexcept {
        return cameThrough([&] {
          pagesIn(target).back().words.push_back({textOfPart(word->text), word->left, word->top,
                                                  word->right, word->bottom, word->endsLine,
                                                  word->spaceAfter});
        });
      }};
  std::string error;
  requirePDFDone(read(partBytes(pdf), sink, partSink(error)), error);
  return pages;
}

std::map<std::string, PDFDestination, std::less<>> pdfDestinations(std::string_view pdf) {
  using Destinations = std::map<std::string, PDFDestination, std::less<>>;
  static const auto read =
      pdfPart().function<decltype(larkspirePDFDestinations)>("larkspirePDFDestinations");
  Destinations result;
  const PartDestinationSink sink = {
      &result, [](void* target, PartBytes name, PartDestination destination) noexcept {
        return cameThrough([&] {
          static_cast<Destinations*>(target)->emplace(
              textOfPart(name),
              PDFDestination{destination.page, destination.left, destination.top});
        });
      }};
  std::string error;
  requirePDFDone(read(partBytes(pdf), sink, partSink(error)), error);
  return result;
}

std::string pdfWithPages(std::string_view pdf, size_t first, std::string_view replacement) {
  static const auto splice =
      pdfPart().function<decltype(larkspirePDFWithPages)>("larkspirePDFWithPages");
  std::string result;
  std::string error;
  requirePDFDone(
      splice(partBytes(pdf), first, partBytes(replacement), partSink(result), partSink(error)),
      error);
  return result;
}

std::string finishedPDF(std::string_view pdf, const std::vector<PDFOutlineEntry>& outline,
                        const PDFProperties& properties) {
  static const auto finish =
      pdfPart().function<decltype(larkspireFinishedPDF)>("larkspireFinishedPDF");
  std::vector<PartOutlineEntry> entries;
  entries.reserve(outline.size());
  for (const PDFOutlineEntry& entry : outline) {
    entries.push_back({partBytes(entry.title), entry.level, partDestination(entry.destination)});
  }
  const PartPDFProperties passed = {partBytes(properties.title), partBytes(properties.author),
                                    partBytes(properties.language), partBytes(properties.date)};
  std::string result;
  std::string error;
  requirePDFDone(finish(partBytes(pdf), entries.data(), entries.size(), &passed, partSink(result),
                        partSink(error)),
                 error);
  return result;
}

}  // namespace lk
