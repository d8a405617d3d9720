#pragma once

// The templates of a collection: the JSON files in its `.templates` folder (LKTemplate.h).
//
//     for (const LKTemplate& each : LKTemplateStore::shared().loadAll()) list(each.name);
//
// Nothing is held in memory: each call reads the files. Reading never fails; what is no template,
// or longer than `kFileLimit`, is logged and passed over. Changes throw FileError, then have
// changed nothing, and post kTemplatesChanged when they are made.

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "LKCore/Templates/LKTemplate.h"

namespace lk {

// Posted after a template was saved or deleted.
inline constexpr const char* kTemplatesChanged = "com.larkspire.templatesChanged";

class LKTemplateStore {
 public:
  static constexpr size_t kFileLimit = 4'000'000;  // bytes

  // Told of each file that is passed over, and why.
  using OnSkipped = std::function<void(const std::filesystem::path& file, const Error& error)>;

  // The store of the active collection, whichever that is at the moment.
  static LKTemplateStore& shared();

  // A store of the `.templates` folder in the folder that `collection` gives at each call.
  explicit LKTemplateStore(std::function<std::filesystem::path()> collection);

  // In the order of lists for people.
  std::vector<LKTemplate> loadAll(const OnSkipped& onSkipped = {}) const;
  // The template in the file that is named by the id.
  std::optional<LKTemplate> load(const UUID& id) const;

  // Writes the file, and keeps the members of it that this version does not know.
  void save(const LKTemplate& changed) const;
  // A template that has no file is an error (ENOENT).
  void deleteTemplate(const UUID& id) const;

 private:
  std::filesystem::path folder() const;
  std::filesystem::path file(const UUID& id) const;

  std::function<std::filesystem::path()> collection_;
};

}  // namespace lk
