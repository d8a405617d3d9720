#pragma once

// Where this platform keeps what the system asks for. Each call reads the environment anew, so
// that a changed HOME counts at once. None of them creates anything.

#include <filesystem>
#include <optional>

namespace lk::directories {

// $HOME, else the password database's entry for the user.
std::filesystem::path home();

// $XDG_DATA_HOME, else ~/.local/share; the system's own folder in it is "Larkspire".
std::filesystem::path applicationSupport();

// XDG_DOCUMENTS_DIR of user-dirs.dirs, else ~/Documents.
std::filesystem::path documents();

// $XDG_CONFIG_HOME, else ~/.config.
std::filesystem::path configuration();

// $TMPDIR, else /tmp.
std::filesystem::path scratch();

// The cloud container's Documents folder; this platform has none.
std::optional<std::filesystem::path> ubiquityDocuments();

// The folder shared by the application and its extensions; this platform has none.
std::optional<std::filesystem::path> groupContainer();

}  // namespace lk::directories
