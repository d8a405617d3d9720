#pragma once

// The property schema of a collection: the built-in properties and those that the user has
// defined, in `.properties/schema.json` inside the collection (PropertySchemaDocument.h).
//
//     LKPropertySchemaStore& store = LKPropertySchemaStore::shared();
//     const auto status = store.definitionNamed("Status");
//
// Every process of the user shares the file: a change takes its lock, reads it anew and replaces
// it, so that no definition is lost. A file that cannot be understood is never written over.
// What was read is kept in memory for as long as the file stays as it was, and a second at most.
//
// Operations may come from any thread.

#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/Clock.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Properties/LKPropertyDefinition.h"
#include "LKCore/Properties/LKPropertySchemaError.h"
#include "LKCore/Properties/PropertySchemaDocument.h"

namespace lk {

// Posted after the schema was changed by this process.
inline constexpr const char* kPropertySchemaChanged = "com.larkspire.propertySchemaChanged";

class LKPropertySchemaStore {
 public:
  // The store of the active collection, whichever that is at the moment.
  static LKPropertySchemaStore& shared();

  // A store of the schema in the collection's folder, which is asked for at each call.
  explicit LKPropertySchemaStore(std::function<std::filesystem::path()> collectionFolder,
                                 Clock clock = Instant::now);

  std::filesystem::path file() const;

  // --- Asking. What cannot be read is logged and passed over. ---

  // The built-in properties first, then the user's in the order of lists for people.
  std::vector<LKPropertyDefinition> loadAll() const;
  // What of the file could not be read, a sentence each, for a person.
  std::vector<std::string> problems() const;
  // The definition of that name in any case.
  std::optional<LKPropertyDefinition> definitionNamed(std::string_view name) const;

  // Forgets what was read.
  void invalidateCache();

  // --- Changing. Each throws LKPropertySchemaError, and FileError when the change cannot be
  // saved; the schema is then as it was. kPropertySchemaChanged is posted after a change. ---

  void add(const LKPropertyDefinition& definition);
  // Of the definition with that id; members of a later version stay.
  void update(const LKPropertyDefinition& definition);
  // Values in notes stay.
  void remove(const UUID& id);
  // Makes these the user's definitions; built-ins among them are passed over.
  void saveAll(const std::vector<LKPropertyDefinition>& definitions);

 private:
  struct Loaded {
    std::filesystem::path file;
    std::optional<FileInfo> stamp;  // from before the reading
    Instant at;
    std::vector<LKPropertyDefinition> definitions;
    std::vector<std::string> problems;
  };

  const Loaded& loaded() const;
  void change(const std::function<void(PropertySchemaDocument&)>& apply);

  std::function<std::filesystem::path()> collectionFolder_;
  Clock clock_;
  mutable std::mutex mutex_;  // around `cached_`
  mutable std::optional<Loaded> cached_;
};

}  // namespace lk
