#pragma once

// Finds and opens the files of the parts. The other headers of this folder are its only users.
//
//     static const OpenPart part(kArchivePart, partsFolder());
//     static const auto make = part.function<decltype(larkspireArchive)>("larkspireArchive");

#include <filesystem>
#include <string>
#include <string_view>

#include "LKCore/Modules/Module.h"
#include "LKCore/Modules/ModuleInterface.h"

namespace lk {

struct PartFile {
  const char* name;      // "archive", of the file archive.so
  const char* work;      // "write archives": what cannot be done without it
  const char* packages;  // "libzip4": the Debian packages with the libraries it stands on
};

inline constexpr PartFile kArchivePart = {"archive", "write archives", "libzip4"};
inline constexpr PartFile kPicturesPart = {"pictures", "draw SVG pictures",
                                           "librsvg2-2, libcairo2"};
inline constexpr PartFile kNetworkPart = {"network", "download pictures", "libcurl4"};
inline constexpr PartFile kPDFPart = {"pdf", "finish PDF files", "libpoppler-cpp0v5, libqpdf29"};
inline constexpr PartFile kHighlightingPart = {"highlighting", "colour code",
                                               "libkf5syntaxhighlighting5"};

// A part that is open, and stays so to the end of the process.
class OpenPart {
 public:
  // Opens it. Throws ModuleError when the file is missing, cannot be opened, or belongs to another
  // version of Larkspire.
  OpenPart(const PartFile& part, const std::filesystem::path& folder);

  template <typename Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(symbol(name));
  }

 private:
  void* symbol(const char* name) const;

  const PartFile& part_;
  void* handle_ = nullptr;
};

// "../lib/larkspire" as seen from the running program, in an installation as in a build. Throws
// ModuleError when /proc does not tell where that is.
std::filesystem::path partsFolder();

// A sink that adds to the text. Out of memory ends the work of the part.
PartSink partSink(std::string& text);

// Runs a function for a sink, where nothing may be thrown: whether it came through.
template <typename Work>
bool cameThrough(const Work& work) noexcept {
  try {
    work();
    return true;
  } catch (...) {
    return false;
  }
}

inline PartBytes partBytes(std::string_view bytes) {
  return {bytes.data(), bytes.size()};
}

}  // namespace lk
