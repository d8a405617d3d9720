#include "LKCore/Attachments/LKAttachmentTypes.h"

#include <algorithm>

namespace lk::LKAttachmentTypes {

namespace {

constexpr std::array<std::string_view, 21> kOtherTypes = {
    "pdf",  "doc", "docx", "xls", "xlsx", "ppt", "pptx", "odt", "ods",   "odp",    "rtf",
    "epub", "csv", "tsv",  "zip", "mp4",  "mov", "m4v",  "key", "pages", "numbers"};

constexpr auto kAllTypes = [] {
  std::array<std::string_view, images.size() + audio.size() + kOtherTypes.size()> types{};
  auto* end = std::ranges::copy(images, types.begin()).out;
  end = std::ranges::copy(audio, end).out;
  std::ranges::copy(kOtherTypes, end);
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

}  // namespace lk::LKAttachmentTypes
