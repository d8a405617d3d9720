#pragma once

// Which files count as attachments, by their extension, what kind each is, and how notes refer to
// them.
//
//     LKAttachmentTypes::isImage(".attachments/Garden plan.PNG#300")   // true
//     LKAttachmentTypes::markdownReference("plan.png", "", ".attachments/")
//         // "![](.attachments/plan.png)"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace lk::LKAttachmentTypes {

// Extensions without a dot, in lower case. Notes themselves (md, txt, html) are none of them.
inline constexpr std::array<std::string_view, 12> images = {
    "png", "jpg", "jpeg", "gif", "webp", "svg", "tif", "tiff", "bmp", "heic", "heif", "avif"};
inline constexpr std::array<std::string_view, 10> audio = {"m4a",  "mp3", "wav",  "aac", "aif",
                                                           "aiff", "caf", "flac", "ogg", "opus"};
inline constexpr std::array<std::string_view, 10> video = {"mp4", "mov", "m4v",  "webm", "mkv",
                                                           "avi", "mpg", "mpeg", "ogv",  "3gp"};
inline constexpr std::array<std::string_view, 18> documents = {
    "pdf", "doc", "docx", "xls",  "xlsx", "ppt", "pptx", "odt",   "ods",
    "odp", "odg", "rtf",  "epub", "csv",  "tsv", "key",  "pages", "numbers"};
inline constexpr std::array<std::string_view, 8> archives = {"zip", "7z",  "rar", "tar",
                                                             "gz",  "tgz", "bz2", "xz"};

// All of these.
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

// The name that a reference to an attachment gives, below `.attachments`: without the first that
// fits of "larkspire-asset:///", "./attachments/", ".attachments/" and "attachments/", and
// percent-decoded, unless that gives no UTF-8 text. Nothing for a web address. Whoever opens the
// file sees to it that a name like "../x" leads nowhere.
std::optional<std::string> attachmentFilename(std::string_view reference);

// What a note says to show the file: "![LABEL](TARGET)" for a picture; "[LABEL](TARGET)" for any
// other, where the file's name stands for an empty label. The target is the prefix and the name.
std::string markdownReference(std::string_view filename, std::string_view label,
                              std::string_view pathPrefix);

}  // namespace lk::LKAttachmentTypes
