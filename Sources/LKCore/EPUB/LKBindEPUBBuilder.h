#pragma once

// A book's HTML as an EPUB 3 file, which e-readers and shops take as it is.
//
//     LKBindEPUBBuilder::buildEPUB(html, spec, subject, collection, "", "novel.epub");
//
// In the archive are the book as one XHTML document, its style sheet, a navigation document and the
// pictures. What a note says in raw HTML cannot make it invalid (XHTML.h), nor bring in what a reader
// would fetch from elsewhere.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/TextRange.h"
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

// The archive's bytes, for a caller that writes them elsewhere. Throws the same.
std::string epub(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                 const std::filesystem::path& collectionRoot, std::string_view coverSource);

// --- The document --------------------------------------------------------------------------------

struct StyleAndBody {
  std::string css;
  std::string body;
};

// What stands in the head's `style` and in the `body`. Throws `missingHTMLBody`.
StyleAndBody extractStyleAndBody(std::string_view html);

// 32 hexadecimal digits in the groups of a UUID, always the same for the same text.
std::string stableUUID(std::string_view text);

// Tags whose name HTML has not as text; elements without an end tag closed. Names inside of drawings
// and formulas stay. Linear.
std::string escapeUnknownTags(std::string_view html);

// For text and values in quotes; what XML cannot hold goes.
std::string xmlEscape(std::string_view text);

// --- Pictures ------------------------------------------------------------------------------------

struct BundledImage {
  std::string id;    // "img1"
  std::string path;  // below the package document: "images/img1.png"
  std::string mediaType;
  std::string bytes;

  bool operator==(const BundledImage&) const = default;
};

struct BundledImages {
  std::string body;  // with the new paths
  std::vector<BundledImage> images;
};

// The pictures of the body, each once; from the web ("http:", "https:") and what cannot be read stays
// as it is.
BundledImages bundleImages(std::string_view body, const std::filesystem::path& collectionRoot);

struct ResolvedImage {
  std::string data;
  std::string ext;  // "png"
  std::string mediaType;
};

// A picture of the collection or a "data:" one. A drawing that not every e-reader draws is given as
// points, where the part that does so is installed. Nothing for any other source.
std::optional<ResolvedImage> resolveImage(std::string_view source,
                                          const std::filesystem::path& collectionRoot);

// "image/png" for "png", in any case; empty for an extension that is no picture's.
std::string_view mediaType(std::string_view ext);
// "png" for "image/png"; empty for any other type.
std::string_view ext(std::string_view mediaType);

// --- Structure -----------------------------------------------------------------------------------

enum class StructuralH1Kind { chapter, part };

struct StructuralH1Opening {
  StructuralH1Kind kind = StructuralH1Kind::chapter;
  TextRange range;  // of the opening tag in the body
  std::optional<std::string> existingID;

  bool operator==(const StructuralH1Opening&) const = default;
};

struct StructuralTOCEntry {
  StructuralH1Kind kind = StructuralH1Kind::chapter;
  std::string title;  // plain text
  std::string id;     // empty: the book's start

  bool operator==(const StructuralTOCEntry&) const = default;
};

// Headings with exactly `class="bind-chapter"` or `class="bind-part"`.
std::vector<StructuralH1Opening> findStructuralH1Openings(std::string_view body);

// The same headings with their titles, and with identifiers by position where they have none.
std::vector<StructuralTOCEntry> extractStructuralTOC(std::string_view body);

// The body with those identifiers in the headings.
std::string addChapterAnchors(std::string_view body);

// Each heading with what follows up to the next as a section. Footnotes at the end stay outside.
std::string wrapStructuralSections(std::string_view body);

// --- Navigation ----------------------------------------------------------------------------------

// A list with chapters within their parts.
std::string buildNestedNavList(const std::vector<StructuralTOCEntry>& structure);

// The whole navigation document; without entries one link to the book.
std::string makeNavXHTML(std::string_view bookTitle,
                         const std::vector<StructuralTOCEntry>& structure, bool tocVisible,
                         std::string_view language = "en");

}  // namespace LKBindEPUBBuilder
}  // namespace lk
