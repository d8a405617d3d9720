#pragma once

// A book as a Word document, straight from its notes (ISO/IEC 29500, WordprocessingML).
//
//     LKBindDOCXBuilder::buildDOCX(notes, spec, subject, collection, diagrams, "novel.docx");

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/Bind/LKBindNoteInput.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

class LKBindDOCXError : public Error {
 public:
  static LKBindDOCXError zipCreationFailed(const std::string& message);
  static LKBindDOCXError writeFailed(const std::string& message);

 private:
  using Error::Error;
};

namespace LKBindDOCXBuilder {

// Told what does not stop the book: a picture that is missing, and why.
using Warning = std::function<void(const std::string&)>;

// Writes the file whole or not at all; the same inputs give the same bytes, in any time zone. Throws
// LKBindDOCXError, ModuleError.
void buildDOCX(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
               const LKBindSubject& subject, const std::filesystem::path& collectionRoot,
               const LKBindDiagrams& mermaidRenders, const std::filesystem::path& outputURL,
               const Warning& warning = {});

// The document's bytes, for a caller that writes them elsewhere. Throws the same.
std::string docx(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                 const LKBindSubject& subject, const std::filesystem::path& collectionRoot,
                 const LKBindDiagrams& mermaidRenders, const Warning& warning = {});

}  // namespace LKBindDOCXBuilder
}  // namespace lk
