#pragma once

#include <filesystem>
#include <string>
#include <utility>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/UUID.h"

namespace lk {

// A change of the property schema that is refused. Made by the function named after its case.
class LKPropertySchemaError : public Error {
 public:
  enum class Case { duplicateName, reservedName, notFound, builtIn, unreadable };

  static LKPropertySchemaError duplicateName(const std::string& name) {
    return {Case::duplicateName, "A property named '" + name + "' already exists."};
  }
  static LKPropertySchemaError reservedName(const std::string& name) {
    return {Case::reservedName, "'" + name + "' is a reserved system property and cannot be used."};
  }
  static LKPropertySchemaError notFound(const UUID& id) {
    return {Case::notFound, "No property definition found with ID " + id.text()};
  }
  static LKPropertySchemaError builtIn(const std::string& name) {
    return {Case::builtIn, "Built-in property " + name + " cannot be modified or deleted."};
  }
  // A schema file that a person has to mend first: it is never written over.
  static LKPropertySchemaError unreadable(const std::filesystem::path& file, const Error& error) {
    return {Case::unreadable, "The property schema in " + file.string() +
                                  " cannot be read and stays as it is. " + error.description()};
  }

  Case errorCase() const noexcept { return case_; }

 private:
  LKPropertySchemaError(Case which, std::string description)
      : Error(std::move(description)), case_(which) {}

  Case case_;
};

}  // namespace lk
