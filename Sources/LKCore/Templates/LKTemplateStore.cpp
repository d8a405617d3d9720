#include "LKCore/Templates/LKTemplateStore.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#include "LKCore/Base/Log.h"
#include "LKCore/Base/Notices.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Platform/SharedFile.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

LKTemplate readTemplate(const fs::path& file) {
  const std::string bytes = readFileStart(file, LKTemplateStore::kFileLimit + 1);
  if (bytes.size() > LKTemplateStore::kFileLimit) throw FileError(file, EFBIG);
  return decodeTemplate(parseJson(bytes));
}

// Nothing when the folder is not there; what cannot be listed counts as not there.
std::vector<fs::path> templateFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  std::error_code error;
  for (fs::directory_iterator it(folder, error), end; it != end; it.increment(error)) {
    const std::string name = it->path().filename().string();
    if (name.ends_with(".json") && !name.starts_with('.')) files.push_back(it->path());
  }
  if (error && error.value() != ENOENT) {
    log::warning(FileError(folder, error.value()).description());
  }
  std::ranges::sort(files);
  return files;
}

bool comesBefore(const LKTemplate& a, const LKTemplate& b) {
  const int order = text::compareLocalized(a.name, b.name);
  return order != 0 ? order < 0 : a.id < b.id;
}

}  // namespace

LKTemplateStore& LKTemplateStore::shared() {
  static LKTemplateStore store([] { return LKCollectionPath::activeDocumentsDirectory(); });
  return store;
}

LKTemplateStore::LKTemplateStore(std::function<fs::path()> collection)
    : collection_(std::move(collection)) {}

fs::path LKTemplateStore::folder() const {
  return collection_() / ".templates";
}

fs::path LKTemplateStore::file(const UUID& id) const {
  return folder() / (id.text() + ".json");
}

std::vector<LKTemplate> LKTemplateStore::loadAll(const OnSkipped& onSkipped) const {
  std::vector<LKTemplate> templates;
  for (const fs::path& each : templateFiles(folder())) {
    try {
      templates.push_back(readTemplate(each));
    } catch (const Error& error) {
      log::warning("The template " + each.string() + " is passed over: " + error.description());
      if (onSkipped) onSkipped(each, error);
    }
  }
  std::ranges::stable_sort(templates, comesBefore);
  return templates;
}

std::optional<LKTemplate> LKTemplateStore::load(const UUID& id) const {
  const fs::path path = file(id);
  try {
    return readTemplate(path);
  } catch (const Error& error) {
    if (errnoOf(error) != ENOENT) {
      log::warning("The template " + path.string() + " cannot be read: " + error.description());
    }
    return std::nullopt;
  }
}

void LKTemplateStore::save(const LKTemplate& changed) const {
  const Json members = encodeTemplate(changed);
  const SharedObject saved =
      changeSharedObject(file(changed.id), Instant::now(), [&](Json& object) {
        for (const char* optional : {"description", "icon", "category"}) object.erase(optional);
        object.update(members);
      });
  if (saved.isChanged) notices::post(kTemplatesChanged);
}

void LKTemplateStore::deleteTemplate(const UUID& id) const {
  removeFile(file(id));
  notices::post(kTemplatesChanged);
}

}  // namespace lk
