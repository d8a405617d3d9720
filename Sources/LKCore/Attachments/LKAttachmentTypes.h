#pragma once

// Which files count as attachments, by their extension, and which of those are pictures or sound.
//
//     LKAttachmentTypes::isImage(".attachments/Garden plan.PNG#300")   // true

#include <array>
#include <span>
#include <string_view>

namespace lk::LKAttachmentTypes {

// Extensions without a dot, in lower case. Notes themselves (md, txt, html) are none of them.
inline constexpr std::array<std::string_view, 12> images = {
    "png", "jpg", "jpeg", "gif", "webp", "svg", "tif", "tiff", "bmp", "heic", "heif", "avif"};
inline constexpr std::array<std::string_view, 10> audio = {"m4a",  "mp3", "wav",  "aac", "aif",
                                                           "aiff", "caf", "flac", "ogg", "opus"};

// Pictures, sound, video, documents and archives.
extern const std::span<const std::string_view> all;

// True when the extension, in any case, is in the list.
bool contains(std::span<const std::string_view> types, std::string_view extension);

// What follows the last full stop of the path's last part; empty when that part has none, or none
// but at its start. Slashes at the end count for nothing: "a/b.png/" has "png".
std::string_view pathExtension(std::string_view path);

// True for the name of a file that another program keeps only while it works: "~$Plan.docx",
// ".~lock.Plan.odt#", "Plan~", "Trip.mp4.part".
bool isTemporaryFile(std::string_view name);

// True when the reference, up to its first "#", has the extension of a picture.
bool isImage(std::string_view reference);

}  // namespace lk::LKAttachmentTypes
