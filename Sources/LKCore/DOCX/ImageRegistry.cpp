#include "LKCore/DOCX/ImageRegistry.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/DOCX/DocumentMeasures.h"
#include "LKCore/DOCX/XMLText.h"
#include "LKCore/Modules/Download.h"
#include "LKCore/Modules/Module.h"
#include "LKCore/Modules/VectorPicture.h"
#include "LKCore/Pictures/CollectionPicture.h"
#include "LKCore/Pictures/SelfContainedSVG.h"

namespace lk::word {

namespace {

constexpr std::chrono::seconds kRemoteTimeout{30};
constexpr std::chrono::seconds kRemoteTimeOfBook{120};  // all pictures together
constexpr size_t kRemoteLimit = 10485760;
constexpr double kCompanionDotsPerInch = 220;
constexpr int kLongestCompanionSide = 4096;
constexpr size_t kLongestNameInWarning = 200;

bool isRemoteSource(std::string_view source) {
  const std::string start = text::lowercased(source.substr(0, 8));
  return start.starts_with("http://") || start.starts_with("https://");
}

// How points are turned and mirrored to stand upright.
struct Turn {
  int degrees;  // clockwise, after the mirroring
  bool isMirrored;
};

Turn turnOf(int orientation) {
  switch (orientation) {
    case 2:
      return {0, true};
    case 3:
      return {180, false};
    case 4:
      return {180, true};
    case 5:
      return {270, true};
    case 6:
      return {90, false};
    case 7:
      return {90, true};
    case 8:
      return {270, false};
    default:
      return {0, false};
  }
}

}  // namespace

ImageRegistry::ImageRegistry(std::filesystem::path collectionRoot, PictureRoom room,
                             LKBindDOCXBuilder::Warning warning)
    : root_(std::move(collectionRoot)), room_(room), warning_(std::move(warning)) {}

void ImageRegistry::warn(const std::string& source, const std::string& reason) const {
  if (!warning_) return;
  const bool isLong = source.size() > kLongestNameInWarning;
  const std::string name = text::escapedInvalid(
      isLong ? source.substr(0, source.find_first_of(",;", 0)).substr(0, 40) + "…" : source);
  warning_("The picture '" + name + "' is left out: " + reason);
}

const EmbeddedImage* ImageRegistry::registerSource(const std::string& source) {
  const auto [place, isNew] = bySource_.try_emplace(source);
  if (isNew) {
    try {
      place->second = isRemoteSource(source) ? registerRemote(source) : registerFile(source);
    } catch (const ModuleError& error) {
      warn(source, error.description());
    }
  }
  return place->second ? &*place->second : nullptr;
}

std::optional<EmbeddedImage> ImageRegistry::registerFile(const std::string& source) {
  const auto file = pictureFile(source, root_);
  const std::string key = file ? file->string() : source;
  const auto known = byFile_.find(key);
  if (known != byFile_.end()) return known->second;
  auto picture = collectionPicture(source, root_);
  std::optional<EmbeddedImage> image;
  if (picture) image = registerBytes(std::move(picture->bytes));
  if (!image) warn(source, "the collection has no picture of that name.");
  byFile_.emplace(key, image);
  return image;
}

std::optional<EmbeddedImage> ImageRegistry::registerRemote(const std::string& url) {
  using std::chrono::steady_clock;
  const auto left =
      std::chrono::duration_cast<std::chrono::seconds>(kRemoteTimeOfBook - remoteTime_);
  if (left.count() < 1) {
    warn(url, "the book's pictures from the network took too long.");
    return std::nullopt;
  }
  const auto start = steady_clock::now();
  std::optional<EmbeddedImage> image;
  try {
    image = registerBytes(download(url, std::min(kRemoteTimeout, left), kRemoteLimit).bytes);
    if (!image) warn(url, "what the address gives is no picture.");
  } catch (const DownloadError& error) {
    warn(url, error.description());
  }
  remoteTime_ += std::chrono::duration_cast<std::chrono::milliseconds>(steady_clock::now() - start);
  return image;
}

std::optional<EmbeddedImage> ImageRegistry::registerBytes(std::string bytes) {
  const auto header = pictureHeader(bytes);
  if (!header) return std::nullopt;
  if (header->format == PictureFormat::svg) return registerSVG(std::move(bytes), *header);
  EmbeddedImage image;
  image.relationshipID = addPart(std::move(bytes), header->format);
  image.widthIn = header->widthIn;
  image.heightIn = header->heightIn;
  image.orientation = header->orientation;
  return image;
}

// Word shows the points where it cannot draw the shapes, and finds the shapes by the points.
std::optional<EmbeddedImage> ImageRegistry::registerSVG(std::string svg,
                                                        const PictureHeader& header) {
  const double scale =
      std::min({1.0, room_.widthIn / header.widthIn, room_.heightIn / header.heightIn});
  const auto side = [&](double inches) {
    return wholeWithin(inches * scale * kCompanionDotsPerInch, 1, kLongestCompanionSide);
  };
  auto png = pngOfSVG(svg, side(header.widthIn), side(header.heightIn));
  if (!png) return std::nullopt;
  EmbeddedImage image;
  image.widthIn = header.widthIn;
  image.heightIn = header.heightIn;
  image.relationshipID = addPart(std::move(*png), PictureFormat::png);
  if (isSelfContainedSVG(svg)) {
    image.svgRelationshipID = addPart(std::move(svg), PictureFormat::svg);
  }
  return image;
}

const EmbeddedImage* ImageRegistry::registerPreRendered(const std::string& source,
                                                        const LKBindDiagram& diagram) {
  const auto [place, isNew] = diagrams_.try_emplace(source);
  std::optional<EmbeddedImage>& image = place->second;
  if (isNew) {
    const auto png = pictureHeader(diagram.png);
    try {
      if (png && png->format == PictureFormat::png) {
        image = registerBytes(diagram.png);
        const bool hasShapes = !diagram.svg.empty() && isSelfContainedSVG(diagram.svg);
        if (hasShapes) image->svgRelationshipID = addPart(diagram.svg, PictureFormat::svg);
      } else if (!diagram.svg.empty()) {
        image = registerBytes(diagram.svg);
      }
    } catch (const ModuleError& error) {
      warn("mermaid", error.description());
    }
    if (image && diagram.width > 0 && diagram.height > 0) {
      constexpr double kPixelsPerInch = 96;
      image->widthIn = diagram.width / kPixelsPerInch;
      image->heightIn = diagram.height / kPixelsPerInch;
    }
  }
  return image ? &*image : nullptr;
}

std::string ImageRegistry::addPart(std::string bytes, PictureFormat format) {
  const std::string number = std::to_string(parts_.size() + 1);
  std::string name = "media/image" + number;
  name.append(extensionOf(format));
  parts_.push_back({"rIdImg" + number, std::move(name), format, std::move(bytes)});
  return parts_.back().relationshipID;
}

std::string ImageRegistry::imageRun(const EmbeddedImage& image, std::string_view alt,
                                    const LKInlineImage& requested) {
  constexpr double kPixelsPerInch = 96;
  double scale = std::min({1.0, room_.widthIn / image.widthIn, room_.heightIn / image.heightIn});
  if (requested.requestedWidth) {
    scale = std::min(scale, *requested.requestedWidth / kPixelsPerInch / image.widthIn);
  }
  if (requested.requestedHeight) {
    scale = std::min(scale, *requested.requestedHeight / kPixelsPerInch / image.heightIn);
  }
  const int shownWidth = emu(image.widthIn * scale);
  const int shownHeight = emu(image.heightIn * scale);
  const Turn turn = turnOf(image.orientation);
  const bool isOnItsSide = turn.degrees % 180 != 0;
  const int width = isOnItsSide ? shownHeight : shownWidth;  // of the points before the turn
  const int height = isOnItsSide ? shownWidth : shownHeight;
  // What the turned picture needs beyond its upright box, above and below or on both sides.
  const int beyondSides = isOnItsSide ? std::max(0, (shownWidth - width) / 2) : 0;
  const int beyondEnds = isOnItsSide ? std::max(0, (shownHeight - height) / 2) : 0;

  const std::string id = std::to_string(++drawings_);
  const std::string size = numberAttribute("cx", width) + numberAttribute("cy", height);
  std::string xml = "<w:r><w:drawing><wp:inline distT=\"0\" distB=\"0\" distL=\"0\" distR=\"0\">";
  xml.append("<wp:extent").append(size).append("/><wp:effectExtent");
  xml.append(numberAttribute("l", beyondSides)).append(numberAttribute("t", beyondEnds));
  xml.append(numberAttribute("r", beyondSides)).append(numberAttribute("b", beyondEnds));
  xml.append("/><wp:docPr id=\"").append(id).append("\" name=\"Picture ").append(id);
  xml.append("\" descr=\"");
  appendEscaped(xml, alt);
  xml.append(
      "\"/><wp:cNvGraphicFramePr><a:graphicFrameLocks noChangeAspect=\"1\"/>"
      "</wp:cNvGraphicFramePr><a:graphic><a:graphicData "
      "uri=\"http://schemas.openxmlformats.org/drawingml/2006/picture\"><pic:pic>"
      "<pic:nvPicPr><pic:cNvPr id=\"");
  xml.append(id).append("\" name=\"Picture ").append(id);
  xml.append("\"/><pic:cNvPicPr/></pic:nvPicPr><pic:blipFill><a:blip r:embed=\"");
  xml.append(image.relationshipID);
  if (image.svgRelationshipID.empty()) {
    xml.append("\"/>");
  } else {
    xml.append(
        "\"><a:extLst><a:ext uri=\"{96DAC541-7B7A-43D3-8B79-37D633B846F1}\"><asvg:svgBlip "
        "xmlns:asvg=\"http://schemas.microsoft.com/office/drawing/2016/SVG/main\" "
        "r:embed=\"");
    xml.append(image.svgRelationshipID).append("\"/></a:ext></a:extLst></a:blip>");
  }
  xml.append("<a:stretch><a:fillRect/></a:stretch></pic:blipFill><pic:spPr><a:xfrm");
  constexpr long long kUnitsPerDegree = 60000;
  if (turn.degrees != 0) xml.append(numberAttribute("rot", turn.degrees * kUnitsPerDegree));
  if (turn.isMirrored) xml.append(" flipH=\"1\"");
  xml.append("><a:off x=\"0\" y=\"0\"/><a:ext").append(size);
  xml.append(
      "/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></pic:spPr></pic:pic>"
      "</a:graphicData></a:graphic></wp:inline></w:drawing></w:r>");
  return xml;
}

}  // namespace lk::word
