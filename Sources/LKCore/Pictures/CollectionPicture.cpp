#include "LKCore/Pictures/CollectionPicture.h"

#include <algorithm>
#include <vector>

#include "LKCore/Base/Base64.h"
#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Platform/Files.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view kFileScheme = "file://";
constexpr std::string_view kAssetScheme = "larkspire-asset://";
constexpr size_t kLongestSource = 4096;  // bytes, as a path's

bool hasParentStep(const fs::path& path) {
  return std::ranges::find(path, fs::path("..")) != path.end();
}

// Both without symbolic links.
bool isBelow(const fs::path& file, const fs::path& folder) {
  const auto [folderPart, filePart] = std::ranges::mismatch(folder, file);
  return folderPart == folder.end() && filePart != file.end();
}

// Where the collection may have a file of that name.
std::vector<fs::path> candidates(std::string_view name, const fs::path& root) {
  while (name.starts_with("./")) name.remove_prefix(2);
  std::string_view attachment = name;
  for (const std::string_view folder : {"attachments/", ".attachments/"}) {
    if (attachment.starts_with(folder)) attachment.remove_prefix(folder.size());
  }
  return {root / name, root / ".attachments" / attachment};
}

std::optional<fs::path> safeFile(const fs::path& path, const fs::path& resolvedRoot) {
  const fs::path file = resolved(path);
  if (!isBelow(file, resolvedRoot)) return std::nullopt;
  const auto info = fileInfo(file);
  return info && info->isRegular ? std::optional(file) : std::nullopt;
}

// The file of a path as it is written, below the collection or, from a "file:" address, absolute.
std::optional<fs::path> fileNamed(std::string_view name, bool isAddress, const fs::path& root) {
  const bool isUsable =
      !name.empty() && name.find('\0') == std::string_view::npos && !hasParentStep(fs::path(name));
  if (!isUsable || name.starts_with('/') != isAddress) return std::nullopt;
  const fs::path resolvedRoot = resolved(root);
  if (isAddress) return safeFile(fs::path(name), resolvedRoot);
  for (const fs::path& candidate : candidates(name, root)) {
    if (auto file = safeFile(candidate, resolvedRoot)) return file;
  }
  return std::nullopt;
}

std::optional<std::string> bytesOfDataSource(std::string_view source) {
  const size_t comma = source.find(',');
  if (comma == std::string_view::npos || !source.substr(0, comma).ends_with(";base64")) {
    return std::nullopt;
  }
  const std::string_view payload = text::trimmed(source.substr(comma + 1));
  if (payload.size() / 4 * 3 > kPictureLimit) return std::nullopt;
  return base64Bytes(payload);
}

}  // namespace

std::optional<fs::path> pictureFile(std::string_view source, const fs::path& collectionRoot) {
  if (source.size() > kLongestSource) return std::nullopt;
  const bool isAddress = source.starts_with(kFileScheme);
  if (isAddress) {
    source.remove_prefix(kFileScheme.size());
    if (source.starts_with("localhost/"))
      source.remove_prefix(std::string_view("localhost").size());
  } else if (source.starts_with(kAssetScheme)) {
    source.remove_prefix(kAssetScheme.size());
    if (source.starts_with('/')) source.remove_prefix(1);
  }
  try {
    if (auto file = fileNamed(source, isAddress, collectionRoot)) return file;
    const std::string decoded = percentDecoded(source);
    return decoded == source ? std::nullopt : fileNamed(decoded, isAddress, collectionRoot);
  } catch (const FileError&) {
    return std::nullopt;  // a folder that cannot be read holds no picture
  } catch (const fs::filesystem_error&) {
    return std::nullopt;
  }
}

std::optional<CollectionPicture> collectionPicture(std::string_view source,
                                                   const fs::path& collectionRoot) {
  std::optional<std::string> bytes;
  if (source.starts_with("data:")) {
    bytes = bytesOfDataSource(source);
  } else if (const auto file = pictureFile(source, collectionRoot)) {
    try {
      bytes = readFileItself(*file, kPictureLimit);
    } catch (const FileError&) {
      return std::nullopt;  // it went, or is too large
    }
  }
  if (!bytes) return std::nullopt;
  const auto header = pictureHeader(*bytes);
  if (!header) return std::nullopt;
  return CollectionPicture{std::move(*bytes), header->format};
}

}  // namespace lk
