#include "LKCore/Modules/VectorPicture.h"

#include "LKCore/Modules/OpenPart.h"

namespace lk {

std::optional<std::string> pngOfSVG(std::string_view svg, int width, int height) {
  static const OpenPart part(kPicturesPart, partsFolder());
  static const auto draw = part.function<decltype(larkspirePNGOfSVG)>("larkspirePNGOfSVG");
  std::string png;
  std::string error;
  const PartResult result = draw(partBytes(svg), width, height, partSink(png), partSink(error));
  if (result == PartResult::failed) throw ModuleError("The picture cannot be drawn: " + error);
  if (result == PartResult::nothing) return std::nullopt;
  return png;
}

}  // namespace lk
