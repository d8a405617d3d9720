#include "LKCore/PDF/LKBindPDFRenderer.h"

#include <chrono>
#include <memory>
#include <utility>

#include "LKCore/PDF/BookPrinting.h"
#include "LKCore/PDF/PrintEngine.h"

namespace lk {

namespace {

constexpr auto kPrintBudget = std::chrono::seconds(60);

}  // namespace

LKBindPDFError::LKBindPDFError(Kind kind, std::string description)
    : Error(std::move(description)), kind_(kind) {}

LKBindPDFError LKBindPDFError::webViewLoadFailed(const std::string& message) {
  return {Kind::webViewLoadFailed, "Bind PDF: WebKit failed to load the HTML — " + message};
}

LKBindPDFError LKBindPDFError::pdfGenerationFailed(const std::string& message) {
  return {Kind::pdfGenerationFailed, "Bind PDF: WebKit could not produce the PDF — " + message};
}

LKBindPDFError LKBindPDFError::timeout() {
  return {Kind::timeout,
          "Bind PDF: WebKit took longer than the 60-second budget to render. The manuscript may be "
          "very large or the CSS may have a layout loop."};
}

LKBindPDFError LKBindPDFError::noEngine() {
  return {Kind::noEngine,
          "Bind PDF: Neither a browser nor a typesetter is installed to lay out the pages. Install "
          "the package chromium, or weasyprint."};
}

std::string LKBindPDFRenderer::renderPDF(std::string_view html, const LKBindSpec& spec,
                                         const LKBindSubject& subject,
                                         const std::filesystem::path& collectionRoot,
                                         const Stage& stage) {
  const auto deadline = std::chrono::steady_clock::now() + kPrintBudget;
  std::unique_ptr<PrintEngine> engine = browserPrintEngine();
  if (!engine) engine = typesetterPrintEngine();
  if (!engine) throw LKBindPDFError::noEngine();
  return printedBook(html, spec, subject, collectionRoot, *engine, deadline, stage);
}

}  // namespace lk
