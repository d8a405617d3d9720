#include "LarkspireCLI/Support/PropertySchema.h"

#include <optional>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Properties/LKPropertySchemaStore.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/PropertyArgument.h"
#include "LarkspireCLI/Support/PropertyValidator.h"

namespace lk {

namespace {

void tellValidationWarnings(const PropertyValidator::ValidationResult& result,
                            const GlobalOptions& options) {
  for (const std::string& warning : result.warnings) printNote(options, warning);
}

}  // namespace

std::vector<LKPropertyDefinition> readPropertySchema(const GlobalOptions& options) {
  const LKPropertySchemaStore& store = LKPropertySchemaStore::shared();
  std::vector<LKPropertyDefinition> schema = store.loadAll();
  for (const std::string& problem : store.problems()) printNote(options, "Warning: " + problem);
  return schema;
}

std::map<std::string, std::string> checkedProperties(const std::vector<std::string>& arguments,
                                                     const GlobalOptions& options,
                                                     const std::vector<std::string>& removed) {
  std::map<std::string, std::string> properties = uncheckedProperties(arguments);
  if (properties.empty() && removed.empty()) return properties;
  const std::vector<LKPropertyDefinition> schema = readPropertySchema(options);
  for (auto& [key, value] : properties) {
    const auto result = PropertyValidator::validate(key, value, schema);
    tellValidationWarnings(result, options);
    value = result.value.value_or(value);
  }
  for (const std::string& key : removed) {
    const std::string name(text::trimmed(key));
    if (findDefinition(name, schema) == nullptr) continue;
    tellValidationWarnings(PropertyValidator::validate(name, std::nullopt, schema), options);
  }
  return properties;
}

std::map<std::string, std::string> uncheckedProperties(const std::vector<std::string>& arguments) {
  std::map<std::string, std::string> properties;
  for (const std::string& argument : arguments) {
    PropertyArgument property = PropertyArgument::parse(argument);
    properties[property.key] = std::move(property.value);
  }
  return properties;
}

}  // namespace lk
