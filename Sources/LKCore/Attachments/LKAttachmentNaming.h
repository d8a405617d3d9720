#pragma once

// The names under which files come into `.attachments`: such that a note can refer to them without
// any escape.
//
//     LKAttachmentNaming::sanitizeFilename("Plan (2) : beds.png")    // "Plan_2_beds.png"
//     LKAttachmentNaming::pastedImageName("Beds", "PNG", isTaken)    // "Beds.png", "Beds-2.png" ...

#include <functional>
#include <string>
#include <string_view>

namespace lk::LKAttachmentNaming {

// The text with one "_" for each run of white space, ":", "/", "\", "(", ")" and "_", and none at
// its ends. Empty when nothing else is in it.
std::string sanitizeFilename(std::string_view text);

// A free name for a picture pasted into a note: the note's name, or "Pasted_image" when that says
// nothing, then "-2", "-3" and so on while `isTaken`. The extension has no dot and is lower-cased.
std::string pastedImageName(std::string_view noteName, std::string_view ext,
                            const std::function<bool(const std::string& name)>& isTaken);

}  // namespace lk::LKAttachmentNaming
