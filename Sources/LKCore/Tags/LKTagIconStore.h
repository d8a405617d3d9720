#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LKCore/Base/Json.h"

namespace lk {

// What a tag looks like in lists. One without either is no icon.
struct LKTagIcon {
  std::optional<std::string> symbolName;
  std::optional<std::string> tintColorName;

  bool operator==(const LKTagIcon&) const = default;
};

// The icons of a collection's tags, in its file ".tag-icons.json":
//
//     { "garden" : { "symbolName" : "leaf", "tintColorName" : "green" } }
//
//     LKTagIconStore icons = LKTagIconStore::ofActiveCollection();
//     icons.renamePrefix("garden", "home/garden");
//
// Nothing is held in memory: each call reads the file, and a change is made by the rules of
// Platform/SharedFile.h, so that processes never lose each other's, members that nobody here knows
// stay, and a damaged file is kept aside. A file that cannot be read means no icons. Every change
// throws FileError.
class LKTagIconStore {
 public:
  explicit LKTagIconStore(const std::filesystem::path& collectionFolder);
  static LKTagIconStore ofActiveCollection();

  std::map<std::string, LKTagIcon> icons() const;
  std::optional<LKTagIcon> icon(const std::string& tag) const;

  // Sets the icon, or clears it when it has neither name.
  void setIcon(const std::string& tag, const LKTagIcon& icon) const;

  // Moves the tag's icon to another tag, or those of the tag and of all below it. An icon that
  // the other tag has already stays.
  void rename(const std::string& from, const std::string& to) const;
  void renamePrefix(const std::string& from, const std::string& to) const;

  void clear(const std::vector<std::string>& tags) const;

 private:
  using Change = std::function<void(Json::object_t&)>;

  void change(const Change& apply) const;

  std::filesystem::path file_;
};

}  // namespace lk
