#pragma once

// A book on the pages of one print engine: LKBindPDFRenderer without the choice of the engine.

#include <string>
#include <string_view>

#include "LKCore/PDF/LKBindPDFRenderer.h"
#include "LKCore/PDF/PrintEngine.h"

namespace lk {

// The PDF with the printed page numbers in its contents, an outline and properties. Throws
// LKBindPDFError and ModuleError.
std::string printedBook(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                        const std::filesystem::path& collectionRoot, PrintEngine& engine,
                        PrintEngine::Deadline deadline, const LKBindPDFRenderer::Stage& stage = {});

}  // namespace lk
