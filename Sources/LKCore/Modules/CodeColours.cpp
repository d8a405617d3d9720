#include "LKCore/Modules/CodeColours.h"

#include "LKCore/Modules/OpenPart.h"

namespace lk {

namespace {

CodeColour codeColour(PartColour colour) {
  switch (colour) {
    case PartColour::keyword:
      return CodeColour::keyword;
    case PartColour::string:
      return CodeColour::string;
    case PartColour::comment:
      return CodeColour::comment;
    case PartColour::number:
      break;
  }
  return CodeColour::number;
}

PartColourSink colourSink(std::vector<ColouredCode>& list) {
  return {&list, [](void* target, size_t start, size_t end, PartColour colour) noexcept {
            return cameThrough([&] {
              static_cast<std::vector<ColouredCode>*>(target)->push_back(
                  {{start, end}, codeColour(colour)});
            });
          }};
}

// Nothing where it is not installed; it is looked for once.
const OpenPart* highlightingPart() {
  static const std::optional<OpenPart> part = []() -> std::optional<OpenPart> {
    try {
      return OpenPart(kHighlightingPart, partsFolder());
    } catch (const ModuleError&) {
      return std::nullopt;
    }
  }();
  return part ? &*part : nullptr;
}

}  // namespace

std::optional<std::vector<ColouredCode>> colouredCode(std::string_view code,
                                                      std::string_view language) {
  const OpenPart* const part = highlightingPart();
  if (part == nullptr) return std::nullopt;
  static const auto colour =
      part->function<decltype(larkspireColouredCode)>("larkspireColouredCode");
  std::vector<ColouredCode> result;
  std::string error;
  const PartResult outcome =
      colour(partBytes(code), partBytes(language), colourSink(result), partSink(error));
  if (outcome != PartResult::done) return std::nullopt;
  return result;
}

}  // namespace lk
