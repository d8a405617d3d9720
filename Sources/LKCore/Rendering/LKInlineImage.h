#pragma once

// A picture or a document that a paragraph refers to, as both the editor and the renderer read it:
//
//     ![alt|400](a.png)   ![alt|400x300](a.png)   ![alt|hide](a.png)
//     ![alt](a.png#400x300)   ![alt](a.png#hide)   [name](file.pdf#200)

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"
#include "LKCore/Base/UTF16Text.h"

namespace lk {

struct LKInlineImage {
  std::string reference;                  // without the size
  std::string alt;                        // without the qualifiers
  std::optional<double> requestedWidth;   // points, above 0
  std::optional<double> requestedHeight;  // likewise
  bool isDocumentLink = false;
  bool isHidden = false;

  LKInlineImage resolved(std::string toReference) const;
  LKInlineImage withRequestedWidth(std::optional<double> width) const;

  bool operator==(const LKInlineImage&) const = default;
};

namespace LKInlineImageParser {

struct Match {
  LKInlineImage image;
  UTF16Range range;  // in the paragraph's text

  bool operator==(const Match&) const = default;
};

struct Qualifiers {
  std::string alt;
  std::optional<double> width;
  std::optional<double> height;
  bool isHidden = false;

  bool operator==(const Qualifiers&) const = default;
};

struct SizedReference {
  std::string reference;
  std::optional<double> width;
  std::optional<double> height;
  bool isHidden = false;

  bool operator==(const SizedReference&) const = default;
};

// All pictures and links to documents outside of code, in the order of the text. Time is linear.
std::vector<Match> parseAll(std::string_view paragraphText);

// The stretches of code in a text, in UTF-8 bytes: from a run of backticks to the next run of as
// many.
std::vector<TextRange> codeSpans(std::string_view text);

// The picture of a paragraph that is nothing else; white space around it does not count.
std::optional<LKInlineImage> parse(std::string_view paragraphText);

// "Plan|hide|400x300" as its parts, read from the right: "hide", and one size. What is neither
// belongs to the alt, with all before it.
Qualifiers splitQualifiers(std::string_view alt);

// "a.png#400" as its parts. A fragment that is neither a size nor "hide" belongs to the reference.
SizedReference splitSizeFragment(std::string_view reference);

// The same for a link: nothing unless it leads to an attachment in the collection; any fragment is
// cut off.
std::optional<SizedReference> documentLinkReference(std::string_view reference);

}  // namespace LKInlineImageParser

}  // namespace lk
