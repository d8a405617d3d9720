#include "LKCore/Rendering/LKInlineImage.h"

#include <algorithm>
#include <map>
#include <utility>

#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Base/TextRange.h"
#include "LKCore/Rendering/NextPlace.h"

namespace lk {

LKInlineImage LKInlineImage::resolved(std::string toReference) const {
  LKInlineImage image = *this;
  image.reference = std::move(toReference);
  return image;
}

LKInlineImage LKInlineImage::withRequestedWidth(std::optional<double> width) const {
  LKInlineImage image = *this;
  image.requestedWidth = width;
  return image;
}

namespace LKInlineImageParser {

namespace {

struct ImageSize {
  int width = 0;
  std::optional<double> height;
};

// "400", "400x300"; a height that is not above 0 counts for nothing.
std::optional<ImageSize> sizeIn(std::string_view token) {
  static const Pattern size(R"(^([0-9]{1,5})\s*+(?:x\s*+([0-9]{1,5}))?$)");
  const auto match = size.find(token);
  if (!match) return std::nullopt;
  ImageSize found;
  if (!text::parseInteger((*match)[1]->of(token), found.width) || found.width <= 0) {
    return std::nullopt;
  }
  int height = 0;
  if ((*match)[2] && text::parseInteger((*match)[2]->of(token), height) && height > 0) {
    found.height = height;
  }
  return found;
}

// What a token behind "|" or "#" says: nothing, "hide" or a size.
template <typename Parts>
bool takeFragment(std::string_view fragment, Parts& parts) {
  const std::string token = text::lowercased(text::trimmed(fragment));
  if (token == "hide") {
    parts.isHidden = true;
    return true;
  }
  const auto size = parts.width ? std::nullopt : sizeIn(token);
  if (!size) return false;
  parts.width = size->width;
  parts.height = size->height;
  return true;
}

// "[label](target)" at a bracket.
struct BracketedReference {
  std::string_view label;
  std::string_view target;
  size_t end = 0;  // behind it
};

class ReferenceReader {
 public:
  explicit ReferenceReader(std::string_view text) : text_(text) {}

  std::optional<BracketedReference> at(size_t bracket) {
    const size_t close = closes_.from(bracket + 1);
    if (close == std::string_view::npos || close + 1 >= text_.size() || text_[close + 1] != '(') {
      return std::nullopt;
    }
    const size_t target = close + 2;
    const size_t end = targetEnds_.from(target);
    if (end == std::string_view::npos || end == target || text_[end] != ')') return std::nullopt;
    return BracketedReference{text_.substr(bracket + 1, close - bracket - 1),
                              text_.substr(target, end - target), end + 1};
  }

 private:
  std::string_view text_;
  NextPlace closes_{text_, "]"};
  NextPlace targetEnds_{text_, ") \t\n\v\f\r"};
};

LKInlineImage imageOf(const BracketedReference& source) {
  Qualifiers qualifiers = splitQualifiers(source.label);
  SizedReference sized = splitSizeFragment(source.target);
  LKInlineImage image;
  image.reference = std::move(sized.reference);
  image.alt = std::move(qualifiers.alt);
  image.requestedWidth = qualifiers.width ? qualifiers.width : sized.width;
  image.requestedHeight = qualifiers.height ? qualifiers.height : sized.height;
  image.isHidden = qualifiers.isHidden || sized.isHidden;
  return image;
}

std::optional<LKInlineImage> documentOf(const BracketedReference& source) {
  std::optional<SizedReference> sized = documentLinkReference(source.target);
  if (!sized) return std::nullopt;
  LKInlineImage document;
  document.reference = std::move(sized->reference);
  document.alt = source.label;
  document.requestedWidth = sized->width;
  document.requestedHeight = sized->height;
  document.isDocumentLink = true;
  document.isHidden = sized->isHidden;
  return document;
}

}  // namespace

std::vector<TextRange> codeSpans(std::string_view text) {
  std::vector<TextRange> runs;
  for (size_t start = text.find('`'); start != std::string_view::npos;) {
    const size_t end = std::min(text.find_first_not_of('`', start), text.size());
    runs.push_back({start, end});
    start = text.find('`', end);
  }
  std::vector<size_t> partner(runs.size());  // the next run of as many, 0 for none
  std::map<size_t, size_t> nextOfLength;
  for (size_t i = runs.size(); i-- > 0;) {
    size_t& next = nextOfLength[runs[i].length()];
    partner[i] = std::exchange(next, i);
  }
  std::vector<TextRange> spans;
  for (size_t i = 0; i < runs.size(); ++i) {
    if (partner[i] == 0) continue;
    spans.push_back({runs[i].start, runs[partner[i]].end});
    i = partner[i];
  }
  return spans;
}

std::vector<Match> parseAll(std::string_view paragraphText) {
  std::vector<Match> matches;
  size_t bracket = paragraphText.find('[');
  if (bracket == std::string_view::npos) return matches;
  const UTF16Text places(paragraphText);
  const std::vector<TextRange> spans = codeSpans(paragraphText);
  auto span = spans.begin();
  ReferenceReader reader(paragraphText);
  size_t imagesFrom = 0;  // behind the last reference of its kind
  size_t documentsFrom = 0;
  for (; bracket != std::string_view::npos; bracket = paragraphText.find('[', bracket + 1)) {
    const bool isImage = bracket > 0 && paragraphText[bracket - 1] == '!';
    const size_t start = isImage ? bracket - 1 : bracket;
    size_t& from = isImage ? imagesFrom : documentsFrom;
    if (start < from) continue;
    const auto source = reader.at(bracket);
    if (!source) continue;
    from = source->end;
    while (span != spans.end() && span->end <= start) ++span;
    if (span != spans.end() && span->start < source->end) continue;
    std::optional<LKInlineImage> image = isImage ? imageOf(*source) : documentOf(*source);
    if (!image) continue;
    const size_t location = places.utf16Offset(start);
    matches.push_back({*std::move(image), {location, places.utf16Offset(source->end) - location}});
  }
  return matches;
}

std::optional<LKInlineImage> parse(std::string_view paragraphText) {
  const std::string_view text = text::trimmed(paragraphText);
  if (!text.starts_with("![") || !text.ends_with(')')) return std::nullopt;
  std::vector<Match> matches = parseAll(text);
  if (matches.empty() || matches.front().range != UTF16Range{0, text::utf16Count(text)}) {
    return std::nullopt;
  }
  return std::move(matches.front().image);
}

Qualifiers splitQualifiers(std::string_view alt) {
  Qualifiers qualifiers;
  for (size_t bar = alt.rfind('|'); bar != std::string_view::npos; bar = alt.rfind('|')) {
    if (!takeFragment(alt.substr(bar + 1), qualifiers)) break;
    alt = alt.substr(0, bar);
  }
  qualifiers.alt = text::trimmed(alt);
  return qualifiers;
}

SizedReference splitSizeFragment(std::string_view reference) {
  SizedReference sized;
  const size_t hash = reference.rfind('#');
  const bool hasPath = hash != std::string_view::npos && hash > 0;
  const bool isSized = hasPath && takeFragment(reference.substr(hash + 1), sized);
  sized.reference = reference.substr(0, isSized ? hash : reference.size());
  return sized;
}

std::optional<SizedReference> documentLinkReference(std::string_view reference) {
  if (reference.find(':') != std::string_view::npos) return std::nullopt;
  SizedReference sized;
  const size_t hash = reference.rfind('#');
  if (hash != std::string_view::npos) takeFragment(reference.substr(hash + 1), sized);
  sized.reference = reference.substr(0, hash);
  if (sized.reference.empty() ||
      !LKAttachmentTypes::contains(LKAttachmentTypes::all,
                                   LKAttachmentTypes::pathExtension(sized.reference))) {
    return std::nullopt;
  }
  return sized;
}

}  // namespace LKInlineImageParser

}  // namespace lk
