#include "LKCore/Attachments/LKAttachmentTypes.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"

namespace lk::LKAttachmentTypes {

namespace {

constexpr auto kAllTypes = [] {
  std::array<std::string_view,
             images.size() + audio.size() + video.size() + documents.size() + archives.size()>
      types{};
  auto* end = std::ranges::copy(images, types.begin()).out;
  end = std::ranges::copy(audio, end).out;
  end = std::ranges::copy(video, end).out;
  end = std::ranges::copy(documents, end).out;
  std::ranges::copy(archives, end);
  return types;
}();

char asciiLower(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

}  // namespace

constinit const std::span<const std::string_view> all = kAllTypes;

bool contains(std::span<const std::string_view> types, std::string_view extension) {
  return std::ranges::any_of(types, [&](std::string_view type) {
    return std::ranges::equal(type, extension, {}, {}, asciiLower);
  });
}

std::string_view pathExtension(std::string_view path) {
  path = path.substr(0, path.find_last_not_of('/') + 1);
  const std::string_view name = path.substr(path.rfind('/') + 1);
  const size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? std::string_view{} : name.substr(dot + 1);
}

bool isTemporaryFile(std::string_view name) {
  static constexpr std::array<std::string_view, 3> kPartial = {"crdownload", "part", "download"};
  return name.starts_with("~$") || name.starts_with(".~lock.") || name.ends_with('~') ||
         contains(kPartial, pathExtension(name));
}

bool isImage(std::string_view reference) {
  return contains(images, pathExtension(reference.substr(0, reference.find('#'))));
}

std::optional<std::string> attachmentFilename(std::string_view reference) {
  static constexpr std::array<std::string_view, 2> kWebSchemes = {"http://", "https://"};
  static constexpr std::array<std::string_view, 4> kFolders = {
      "larkspire-asset:///", "./attachments/", ".attachments/", "attachments/"};
  for (const std::string_view scheme : kWebSchemes) {
    const std::string_view start = reference.substr(0, scheme.size());
    if (std::ranges::equal(start, scheme, {}, asciiLower)) return std::nullopt;
  }
  for (const std::string_view folder : kFolders) {
    if (!reference.starts_with(folder)) continue;
    reference.remove_prefix(folder.size());
    break;
  }
  std::string decoded = percentDecoded(reference);
  return text::isValidUTF8(decoded) ? std::move(decoded) : std::string(reference);
}

std::string markdownReference(std::string_view filename, std::string_view label,
                              std::string_view pathPrefix) {
  const bool isPicture = contains(images, pathExtension(filename));
  std::string result = isPicture ? "![" : "[";
  result += label.empty() && !isPicture ? filename : label;
  return result.append("](").append(pathPrefix).append(filename).append(")");
}

}  // namespace lk::LKAttachmentTypes
