#include "LKCore/Templates/FilledTemplate.h"

#include "LKCore/Base/Text.h"
#include "LKCore/Templates/LKTemplateError.h"

namespace lk {

namespace {

void requireValue(const LKTemplate& source, const LKTemplateParameter& parameter,
                  const std::string& value) {
  if (!parameter.required || !text::trimmed(value).empty()) return;
  const bool hasLabel = !parameter.label.empty() && parameter.label != parameter.name;
  const std::string label = hasLabel ? " (" + parameter.label + ")" : "";
  throw LKTemplateError("The template \"" + source.name + "\" needs a value for \"" +
                        parameter.name + "\"" + label + ".");
}

}  // namespace

FilledTemplate filled(const LKTemplate& source, const LKTemplateResolver::Values& given,
                      Instant date, std::string_view locale) {
  LKTemplateResolver::Values values = given;
  for (const LKTemplateParameter& parameter : source.parameters) {
    if (!values.contains(parameter.name)) {
      values[parameter.name] =
          LKTemplateResolver::resolve(parameter.defaultValue, {}, date, locale).text;
    }
    requireValue(source, parameter, values[parameter.name]);
  }
  const auto resolved = [&](const std::string& text) {
    return LKTemplateResolver::resolve(text, values, date, locale);
  };
  FilledTemplate result;
  result.title = resolved(source.titleTemplate).text;
  result.body = resolved(source.bodyTemplate);
  for (const auto& [key, text] : source.propertyDefaults) {
    std::string value = resolved(text).text;
    if (!value.empty()) result.properties.emplace(key, std::move(value));
  }
  for (const std::string& text : source.tags) {
    std::string tag = resolved(text).text;
    if (!tag.empty()) result.tags.push_back(std::move(tag));
  }
  return result;
}

}  // namespace lk
