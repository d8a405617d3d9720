#pragma once

// A book's HTML as an EPUB 3 file, which e-readers and shops take as it is.
//
//     LKBindEPUBBuilder::buildEPUB(html, spec, subject, collection, "novel.epub");

#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"
#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"

namespace lk {

class LKBindEPUBError : public Error {
 public:
  static LKBindEPUBError zipCreationFailed(const std::string& message);
  static LKBindEPUBError xhtmlConversionFailed(const std::string& message);
  static LKBindEPUBError missingHTMLBody();

 private:
  using Error::Error;
};

namespace LKBindEPUBBuilder {

// Writes the file whole or not at all; the same inputs give the same bytes, in any time zone. Throws
// LKBindEPUBError, ModuleError. A picture that cannot be read is left out without a failure.
// `coverSource` names the picture of the cover as a note would ("attachments/cover.jpg"); empty:
// none.
void buildEPUB(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
               const std::filesystem::path& collectionRoot, std::string_view coverSource,
               const std::filesystem::path& outputURL);

// The archive's bytes, for a caller that writes them elsewhere.
std::string epub(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                 const std::filesystem::path& collectionRoot, std::string_view coverSource);

}  // namespace LKBindEPUBBuilder
}  // namespace lk
