#pragma once

// One collection as the registry knows it: a folder of note files, its name and how the system
// may treat it.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Time.h"
#include "LKCore/Base/UUID.h"

namespace lk {

enum class LKCollectionMode {
  larkspire,
  compatible,
  readOnly,  // notes are readable, but not editable
};

// "larkspire", "compatible" or "readOnly".
std::string_view modeText(LKCollectionMode mode);

// The mode of that text, in exactly this spelling.
std::optional<LKCollectionMode> parseMode(std::string_view text);

struct LKCollectionRecord {
  UUID id;
  std::string name;
  std::optional<std::string> collectionDescription;
  std::filesystem::path path;  // absolute folder path
  bool isCloudSynced = false;
  LKCollectionMode mode = LKCollectionMode::larkspire;
  std::optional<std::string> iconName;
  std::optional<std::string> tintColorHex;
  Instant createdDate;
  Instant lastOpenedDate;
  int64_t noteCount = 0;
  std::optional<std::string> bookmarkData;  // bytes, only carried along on this platform
  bool userAcceptedRisk = false;            // the user forced a folder past validation
  bool isDefault = false;                   // the default collection cannot be removed

  bool operator==(const LKCollectionRecord&) const = default;
};

}  // namespace lk
