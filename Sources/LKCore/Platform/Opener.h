#pragma once

#include <string>

namespace lk {

// Hands the link to the desktop, which opens it in the application set for its kind, and waits
// until that has been arranged. No shell takes part. Throws Error with words for a person when
// the desktop's opener is missing or reports a failure.
//
//     openURL("larkspire://open?id=6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F");
void openURL(const std::string& url);

}  // namespace lk
