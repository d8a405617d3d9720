// The pictures of a book.

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/EPUB/Drawing.h"
#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/EPUB/LKBindEPUBBuilder.h"
#include "LKCore/Modules/Module.h"
#include "LKCore/Modules/VectorPicture.h"
#include "LKCore/Pictures/CollectionPicture.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindEPUBBuilder {

namespace {

// Pixels for each unit of a drawing, for screens that are finer than one.
constexpr int kDrawingScale = 2;
constexpr int kLargestDrawing = 4096;

// First the extension that a type gives.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kPictureTypes = {
    {{"png", "image/png"},
     {"jpg", "image/jpeg"},
     {"jpeg", "image/jpeg"},
     {"gif", "image/gif"},
     {"webp", "image/webp"},
     {"svg", "image/svg+xml"},
     {"tif", "image/tiff"},
     {"tiff", "image/tiff"}}};

bool isBundled(std::string_view source) {
  const std::string start = text::lowercased(source.substr(0, 8));
  return !start.starts_with("http://") && !start.starts_with("https://");
}

std::optional<std::string> drawnSVG(std::string_view svg) {
  const auto header = pictureHeader(svg);
  if (!header) return std::nullopt;
  const int longest = std::max(header->width, header->height);
  const double scale =
      std::min<double>(kDrawingScale, static_cast<double>(kLargestDrawing) / longest);
  const auto scaled = [&](int size) { return std::max(1, static_cast<int>(size * scale)); };
  try {
    return pngOfSVG(svg, scaled(header->width), scaled(header->height));
  } catch (const ModuleError&) {
    return std::nullopt;  // as a picture that cannot be read
  }
}

ResolvedImage resolvedAs(std::string data, PictureFormat format) {
  const std::string_view type = lk::mediaType(format);
  return {std::move(data), std::string(ext(type)), std::string(type)};
}

class Bundler {
 public:
  explicit Bundler(const std::filesystem::path& root) : root_(root) {}

  // The path in the book of what `src` says in HTML; empty when it cannot be read.
  const std::string& pathOf(std::string_view source) {
    const auto known = paths_.find(source);
    if (known != paths_.end()) return known->second;
    return paths_.emplace(source, bundle(xhtml::withoutReferences(source))).first->second;
  }

  std::vector<BundledImage> take() { return std::move(images_); }

 private:
  std::string bundle(const std::string& source) {
    auto picture = resolveImage(source, root_);
    if (!picture) return {};
    const std::string id = "img" + std::to_string(images_.size() + 1);
    std::string path = "images/" + id + "." + picture->ext;
    images_.push_back({id, path, std::move(picture->mediaType), std::move(picture->data)});
    return path;
  }

  const std::filesystem::path& root_;
  std::map<std::string, std::string, std::less<>> paths_;
  std::vector<BundledImage> images_;
};

}  // namespace

BundledImages bundleImages(std::string_view body, const std::filesystem::path& collectionRoot) {
  Bundler bundler(collectionRoot);
  const auto rewritten = [&](const html::TagMatch& tag) -> std::optional<std::string> {
    const std::string& path = bundler.pathOf(tag.value.of(body));
    if (path.empty()) return std::nullopt;
    return std::string(body.substr(tag.whole.start, tag.value.start - tag.whole.start)) + path +
           std::string(body.substr(tag.value.end, tag.whole.end - tag.value.end));
  };
  std::string changed = html::rewriteImages(body, "src=\"", isBundled, rewritten);
  return {std::move(changed), bundler.take()};
}

std::optional<ResolvedImage> resolveImage(std::string_view source,
                                          const std::filesystem::path& collectionRoot) {
  if (source.empty() || !isBundled(source)) return std::nullopt;
  auto picture = collectionPicture(source, collectionRoot);
  if (!picture) return std::nullopt;
  if (picture->format != PictureFormat::svg) {
    return resolvedAs(std::move(picture->bytes), picture->format);
  }
  if (auto plain = xhtml::plainDrawingFile(picture->bytes)) {
    return resolvedAs(*std::move(plain), PictureFormat::svg);
  }
  auto drawn = drawnSVG(picture->bytes);
  if (!drawn) return std::nullopt;
  return resolvedAs(*std::move(drawn), PictureFormat::png);
}

std::string_view mediaType(std::string_view ext) {
  const std::string lower = text::lowercased(ext);
  const auto* const found =
      std::ranges::find(kPictureTypes, lower, [](const auto& type) { return type.first; });
  return found == kPictureTypes.end() ? std::string_view() : found->second;
}

std::string_view ext(std::string_view mediaType) {
  const auto* const found =
      std::ranges::find(kPictureTypes, mediaType, [](const auto& type) { return type.second; });
  return found == kPictureTypes.end() ? std::string_view() : found->first;
}

}  // namespace lk::LKBindEPUBBuilder
