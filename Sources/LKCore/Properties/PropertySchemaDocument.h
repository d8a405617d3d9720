#pragma once

// The content of a schema file: an array with a row for each definition of the user's
// (LKPropertyDefinition.h). It holds the array as it was read and changes only what it is told to:
// members that this version does not know, and rows that it cannot read, are written back.
//
//     auto document = PropertySchemaDocument::decode(bytes);
//     document.add(definition);
//     bytes = document.text();

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Properties/LKPropertyDefinition.h"
#include "LKCore/Properties/LKPropertySchemaError.h"

namespace lk {

class PropertySchemaDocument {  // NOLINT(bugprone-exception-escape): moving JSON does not throw
 public:
  // Throws JsonError for text that is not one JSON array.
  static PropertySchemaDocument decode(std::string_view text);

  // The file's bytes.
  std::string text() const;

  // The rows that can be read, in their order, those with the id of a built-in property left out.
  // For each that cannot be read a sentence goes to `problems`, if given.
  std::vector<LKPropertyDefinition> definitions(std::vector<std::string>* problems = nullptr) const;

  // Each throws LKPropertySchemaError and then has changed nothing: for a name that is reserved,
  // or taken in any case by another row or a built-in; for the id of a built-in; when adding, as a
  // duplicate, for an id that a row has, and otherwise for one that no row has.
  void add(const LKPropertyDefinition& definition);
  void update(const LKPropertyDefinition& definition);
  void remove(const UUID& id);

  // Makes these the definitions, in this order; built-ins among them are passed over. Rows that
  // cannot be read stay, after them.
  void replaceAll(const std::vector<LKPropertyDefinition>& definitions);

 private:
  explicit PropertySchemaDocument(Json rows) : rows_(std::move(rows)) {}

  Json* rowWithID(const UUID& id);
  void requireUsableName(const LKPropertyDefinition& definition) const;

  Json rows_;
};

}  // namespace lk
