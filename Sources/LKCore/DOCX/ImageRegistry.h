#pragma once

// The pictures of a Word document: each is read once and embedded once, however often and under
// whatever name the notes show it.

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/DOCX/LKBindDOCXBuilder.h"
#include "LKCore/Pictures/PictureHeader.h"
#include "LKCore/Rendering/LKInlineImage.h"

namespace lk::word {

// A file below word/media.
struct MediaPart {
  std::string relationshipID;  // "rIdImg1"
  std::string name;            // "media/image1.png"
  PictureFormat format = PictureFormat::png;
  std::string bytes;
};

struct EmbeddedImage {
  std::string relationshipID;     // of the points
  std::string svgRelationshipID;  // of the shapes behind them; empty: none
  double widthIn = 0;             // as it is shown, at its own size
  double heightIn = 0;
  int orientation = 1;  // as Exif counts: what the viewer must do to the points
};

// The room that a picture has.
struct PictureRoom {
  double widthIn = 6;
  double heightIn = 9;
};

class ImageRegistry {
 public:
  ImageRegistry(std::filesystem::path collectionRoot, PictureRoom room,
                LKBindDOCXBuilder::Warning warning);

  // The picture of a source in the text; nothing, after one warning, when there is none.
  const EmbeddedImage* registerSource(const std::string& source);
  // A diagram that was drawn before; nothing without a picture.
  const EmbeddedImage* registerPreRendered(const std::string& source, const LKBindDiagram& diagram);

  // A run with the picture, no larger than the room and the size that the text asks for.
  std::string imageRun(const EmbeddedImage& image, std::string_view alt,
                       const LKInlineImage& requested);

  const std::vector<MediaPart>& parts() const { return parts_; }

 private:
  std::optional<EmbeddedImage> registerFile(const std::string& source);
  std::optional<EmbeddedImage> registerRemote(const std::string& url);
  std::optional<EmbeddedImage> registerBytes(std::string bytes);
  std::optional<EmbeddedImage> registerSVG(std::string svg, const PictureHeader& header);
  std::string addPart(std::string bytes, PictureFormat format);
  void warn(const std::string& source, const std::string& reason) const;

  std::filesystem::path root_;
  PictureRoom room_;
  LKBindDOCXBuilder::Warning warning_;
  std::vector<MediaPart> parts_;
  std::map<std::string, std::optional<EmbeddedImage>> bySource_;
  std::map<std::string, std::optional<EmbeddedImage>> byFile_;
  std::map<std::string, std::optional<EmbeddedImage>> diagrams_;
  std::chrono::milliseconds remoteTime_{0};  // spent on the network
  int drawings_ = 0;
};

}  // namespace lk::word
