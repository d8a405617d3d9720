#pragma once

// A book's HTML as a PDF with running heads, page numbers in its contents and an outline.
//
//     const std::string pdf = LKBindPDFRenderer::renderPDF(html, spec, subject, collection);

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

class LKBindPDFError : public Error {
 public:
  enum class Kind { webViewLoadFailed, pdfGenerationFailed, timeout, noEngine };

  static LKBindPDFError webViewLoadFailed(const std::string& message);
  static LKBindPDFError pdfGenerationFailed(const std::string& message);
  static LKBindPDFError timeout();
  // Neither a browser nor a typesetter is installed; names the packages.
  static LKBindPDFError noEngine();

  Kind kind() const noexcept { return kind_; }

 private:
  LKBindPDFError(Kind kind, std::string description);

  Kind kind_;
};

namespace LKBindPDFRenderer {

// Told the stage in words ("Laying out pages") when one begins.
using Stage = std::function<void(std::string_view)>;

// The PDF's bytes, within 60 seconds. Throws LKBindPDFError and ModuleError.
std::string renderPDF(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                      const std::filesystem::path& collectionRoot, const Stage& stage = {});

}  // namespace LKBindPDFRenderer
}  // namespace lk
