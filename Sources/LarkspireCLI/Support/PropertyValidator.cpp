#include "LarkspireCLI/Support/PropertyValidator.h"

#include <algorithm>
#include <array>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Properties/LKMultiSelectValue.h"
#include "LarkspireCLI/Support/CLIError.h"

namespace lk::PropertyValidator {

namespace {

void refuseUnless(bool isAllowed, const std::string& value, const std::string& complaint) {
  if (!isAllowed) throw CLIError::propertyValidation("Value \"" + value + "\" " + complaint);
}

// True when the text has an ASCII digit for each "d" of the shape and all else as it stands there.
bool hasShape(std::string_view text, std::string_view shape) {
  return std::ranges::equal(text, shape, [](char c, char wanted) {
    return wanted == 'd' ? c >= '0' && c <= '9' : c == wanted;
  });
}

void checkLength(const std::string& value, const LKPropertyDefinition& definition) {
  if (!definition.maxLength) return;
  const auto length = static_cast<int64_t>(text::characterEnds(value).size());
  refuseUnless(length <= *definition.maxLength, value,
               "exceeds maximum length of " + std::to_string(*definition.maxLength));
}

void checkNumber(const std::string& value, const LKPropertyDefinition& definition) {
  double number = 0;
  refuseUnless(text::parseNumber(value, number), value, "is not a valid number.");
  if (definition.minValue) {
    refuseUnless(number >= *definition.minValue, value,
                 "is below minimum " + numberJson(*definition.minValue).dump());
  }
  if (definition.maxValue) {
    refuseUnless(number <= *definition.maxValue, value,
                 "exceeds maximum " + numberJson(*definition.maxValue).dump());
  }
}

bool isBoolean(const std::string& value) {
  static constexpr std::array<std::string_view, 6> kWords = {"true", "false", "yes",
                                                             "no",   "1",     "0"};
  const std::string lowered = text::lowercased(value);
  return std::ranges::find(kWords, std::string_view(lowered)) != kWords.end();
}

bool isRating(const std::string& value) {
  int stars = 0;
  return text::parseInteger(value, stars) && stars >= 1 && stars <= 5;
}

std::string joinedOptions(const std::vector<std::string>& options) {
  std::string joined;
  for (const std::string& option : options) joined += (joined.empty() ? "" : ", ") + option;
  return joined;
}

std::string matchOption(const std::string& item, const std::vector<std::string>& against,
                        const std::string& propertyName) {
  const auto found = std::ranges::find_if(
      against, [&](const std::string& option) { return text::equalIgnoringCase(option, item); });
  refuseUnless(found != against.end(), item,
               "is not a valid option for \"" + propertyName +
                   "\".\n  Available options: " + joinedOptions(against));
  return *found;
}

std::string matchOptions(const std::string& value, const LKPropertyDefinition& definition) {
  std::vector<std::string> items = LKMultiSelectValue::parse(value);
  refuseUnless(!items.empty(), value, "cannot be empty. Provide comma-separated options.");
  for (std::string& item : items) item = matchOption(item, definition.options, definition.name);
  return LKMultiSelectValue::serialize(items, LKMultiSelectValue::form(value));
}

}  // namespace

ValidationResult validate(const std::string& key, const std::optional<std::string>& value,
                          const std::vector<LKPropertyDefinition>& schema) {
  const LKPropertyDefinition* const definition = findDefinition(key, schema);
  if (definition == nullptr) {
    throw CLIError::propertyValidation(
        "Property \"" + key + "\" is not defined.\n  Hint: Use `lk properties add \"" + key +
        "\" --type text` to create it, or --force to write anyway.");
  }
  ValidationResult result;
  if (value) {
    result.value = validateValue(*value, *definition);
  } else if (definition->isRequired) {
    result.warnings.push_back("Warning: \"" + definition->name + "\" is marked as required.");
  }
  return result;
}

std::string validateValue(const std::string& value, const LKPropertyDefinition& definition) {
  switch (definition.type) {
    case LKPropertyType::derived:
      throw CLIError::propertyValidation(
          "Property \"" + definition.name +
          "\" is a derived (computed) property and cannot be set manually.");
    case LKPropertyType::text:
    case LKPropertyType::url:
    case LKPropertyType::email:
    case LKPropertyType::phone:
      checkLength(value, definition);
      break;
    case LKPropertyType::number:
      checkNumber(value, definition);
      break;
    case LKPropertyType::date:
      refuseUnless(hasShape(value, "dddd-dd-dd"), value,
                   "is not a valid date. Use YYYY-MM-DD format.");
      break;
    case LKPropertyType::dateTime:
      refuseUnless(hasShape(value, "dddd-dd-ddTdd:dd"), value,
                   "is not a valid date+time. Use YYYY-MM-DDTHH:MM format.");
      break;
    case LKPropertyType::checkbox:
      refuseUnless(isBoolean(value), value,
                   "is not a valid boolean. Use true/false, yes/no, or 1/0.");
      break;
    case LKPropertyType::rating:
      refuseUnless(isRating(value), value, "is not a valid rating. Use 1–5.");
      break;
    case LKPropertyType::singleSelect:
      return matchOption(value, definition.options, definition.name);
    case LKPropertyType::multiSelect:
      return matchOptions(value, definition);
    case LKPropertyType::project:
      break;  // any name may be a project
  }
  return value;
}

}  // namespace lk::PropertyValidator
