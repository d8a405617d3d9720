#include <exception>
#include <memory>
#include <utility>

#include "LKCore/Base/Base64.h"
#include "LKCore/PDF/BrowserPage.h"
#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/PDF/PrintEngine.h"

namespace lk {

namespace {

constexpr int kStreamPart = 1 << 20;  // bytes

// The work; what goes wrong in it is an error of this kind.
template <typename Work>
auto inStage(LKBindPDFError (*failure)(const std::string&), const Work& work) {
  try {
    return work();
  } catch (const LKBindPDFError&) {
    throw;
  } catch (const std::exception& error) {
    throw failure(error.what());
  }
}

class BrowserPrintEngine : public PrintEngine {
 public:
  explicit BrowserPrintEngine(std::filesystem::path program) : program_(std::move(program)) {}

  std::string print(const PrintJob& job, const std::string& pages, Deadline deadline) override {
    try {
      inStage(LKBindPDFError::webViewLoadFailed, [&] {
        if (!page_) page_ = std::make_unique<BrowserPage>(program_, deadline);
        page_->load({.html = job.html, .runsScripts = false, .pictures = job.collectionRoot},
                    deadline);
      });
      return inStage(LKBindPDFError::pdfGenerationFailed,
                     [&] { return printed(job, pages, deadline); });
    } catch (const LKBindPDFError&) {
      page_.reset();  // nobody knows what state it is in
      throw;
    }
  }

  // It knows `target-counter` by name alone.
  bool fillsPageNumbers() const override { return false; }

 private:
  std::string printed(const PrintJob& job, const std::string& pages, Deadline deadline) {
    Json parameters = {{"preferCSSPageSize", true},
                       {"printBackground", true},
                       {"paperWidth", job.widthIn},
                       {"paperHeight", job.heightIn},
                       {"marginTop", 0},
                       {"marginBottom", 0},
                       {"marginLeft", 0},
                       {"marginRight", 0},
                       {"generateDocumentOutline", false},
                       {"transferMode", "ReturnAsStream"}};
    if (!pages.empty()) parameters["pageRanges"] = pages;
    const Json result = page_->call("Page.printToPDF", std::move(parameters), deadline);
    std::string pdf = stream(result.at("stream"), deadline);
    if (!pdf.starts_with("%PDF-")) throw BrowserError("the browser printed nothing");
    return pdf;
  }

  std::string stream(const Json& handle, Deadline deadline) {
    std::string bytes;
    for (bool isWhole = false; !isWhole;) {
      const Json part =
          page_->call("IO.read", {{"handle", handle}, {"size", kStreamPart}}, deadline);
      const auto data = part.at("data").get<std::string>();
      if (part.value("base64Encoded", false)) {
        const std::optional<std::string> decoded = base64Bytes(data);
        if (!decoded) throw BrowserError("the browser's answer is no base64");
        bytes += *decoded;
      } else {
        bytes += data;
      }
      isWhole = part.at("eof").get<bool>();
    }
    page_->call("IO.close", {{"handle", handle}}, deadline);
    return bytes;
  }

  std::filesystem::path program_;
  std::unique_ptr<BrowserPage> page_;
};

}  // namespace

std::unique_ptr<PrintEngine> browserPrintEngine() {
  std::filesystem::path program = browserProgram();
  if (program.empty()) return nullptr;
  return std::make_unique<BrowserPrintEngine>(std::move(program));
}

}  // namespace lk
