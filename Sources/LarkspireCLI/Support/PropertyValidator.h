#pragma once

// Whether a value may be written as a property, by the schema of the collection.
//
//     const auto schema = LKPropertySchemaStore::shared().loadAll();
//     PropertyValidator::validate("status", "growing", schema).value    // "Growing"
//
// Every refusal is a CLIError, propertyValidation.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Properties/LKPropertyDefinition.h"

namespace lk::PropertyValidator {

struct ValidationResult {
  std::optional<std::string> value;   // what is written, in the options' own spelling
  std::vector<std::string> warnings;  // a sentence each
};

// Without a value: for a property that is to be removed.
ValidationResult validate(const std::string& key, const std::optional<std::string>& value,
                          const std::vector<LKPropertyDefinition>& schema);

// The value as it is written.
std::string validateValue(const std::string& value, const LKPropertyDefinition& definition);

}  // namespace lk::PropertyValidator
