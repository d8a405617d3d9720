#pragma once

// Pictures that a note shows, read for a book: from the collection or from the note's text itself.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Pictures/PictureHeader.h"

namespace lk {

struct CollectionPicture {
  std::string bytes;
  PictureFormat format = PictureFormat::png;  // by the bytes, whatever the name says
};

inline constexpr uint64_t kPictureLimit = uint64_t{64} << 20;  // bytes

// The file that a source names: "attachments/a.png", "./attachments/...", ".attachments/...",
// "larkspire-asset:///...", "file://..." or any path below the collection, percent-encoded or not.
// Nothing for an absolute path, for "..", and for whatever lies outside the collection once its
// symbolic links are followed.
std::optional<std::filesystem::path> pictureFile(std::string_view source,
                                                 const std::filesystem::path& collectionRoot);

// The picture of such a source or of a "data:...;base64," one; nothing when it is not there, no
// ordinary file, larger than kPictureLimit or no picture. Never throws for a bad source.
std::optional<CollectionPicture> collectionPicture(std::string_view source,
                                                   const std::filesystem::path& collectionRoot);

}  // namespace lk
