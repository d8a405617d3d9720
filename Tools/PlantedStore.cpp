#include "Tools/PlantedStore.h"

#include <map>
#include <string>
#include <utility>

#include "LKCore/Base/Json.h"
#include "LKCore/DataModel/SQLiteStore.h"
#include "LKCore/NoteRepository/LKFileIndex.h"
#include "LKCore/Platform/SharedFile.h"

namespace lk::test {

namespace fs = std::filesystem;

namespace {

void copyRows(LKContext& from, LKContext& to) {
  std::map<const LKNote*, LKNote*> copies;
  for (const LKNote* note : from.notes().fetch()) {
    LKNote copy = *note;
    copy.tags.clear();
    copy.tasks.clear();
    copy.backLinks.clear();
    copies[note] = &to.notes().insert(std::move(copy));
  }
  for (const LKTag* tag : from.tags().fetch()) {
    LKTag copy = *tag;
    copy.notes.clear();
    LKTag& row = to.tags().insert(std::move(copy));
    for (const LKNote* note : tag->notes) addTag(*copies.at(note), row);
  }
  for (const LKTask* task : from.tasks().fetch()) {
    LKTask copy = *task;
    copy.note = nullptr;
    setNote(to.tasks().insert(std::move(copy)), copies.at(task->note));
  }
  for (const LKBackLink* link : from.backLinks().fetch()) {
    LKBackLink copy = *link;
    copy.note = nullptr;
    setNote(to.backLinks().insert(std::move(copy)), copies.at(link->note));
  }
  to.save();
}

}  // namespace

fs::path applicationSupport(const fs::path& home) {
  return home /
         "Library/Containers/com.larkspire.Larkspire-Mac/Data/Library/Application "
         "Support/Larkspire";
}

fs::path applicationStore(const fs::path& home, const std::string& collectionID) {
  return applicationSupport(home) / "caches" / (collectionID + ".store");
}

void plantApplication(const fs::path& home, const fs::path& collection,
                      const std::string& collectionID) {
  const fs::path store = applicationStore(home, collectionID);
  fs::create_directories(store.parent_path());
  const Json registry = {
      {"collections", {{{"id", collectionID}, {"name", "Notes"}, {"path", collection.string()}}}}};
  changeSharedFile(applicationSupport(home) / "collections.json", "",
                   [&](const std::string&) { return printJson(registry); });
  const auto index = LKFileIndex::build(collection, LKParts::all);
  copyRows(*index, *openStore(store));
}

}  // namespace lk::test
