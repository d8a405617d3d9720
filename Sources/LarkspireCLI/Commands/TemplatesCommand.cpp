#include "LarkspireCLI/Commands/TemplatesCommand.h"

#include <string>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Templates/LKTemplateStore.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {

namespace {

Json templateJson(const LKTemplate& each) {
  Json names = Json::array();
  for (const LKTemplateParameter& parameter : each.parameters) names.push_back(parameter.name);
  Json object = {
      {"name", each.name}, {"titleTemplate", each.titleTemplate}, {"parameters", std::move(names)}};
  if (each.description) object["description"] = *each.description;
  if (each.category) object["category"] = *each.category;
  return object;
}

}  // namespace

void TemplatesCommand::declare(ArgumentList& /*arguments*/) {}

void TemplatesCommand::run() {
  resolvedCollection(options.collection, options.quiet);
  const std::vector<LKTemplate> templates =
      LKTemplateStore::shared().loadAll([&](const std::filesystem::path& file, const Error& error) {
        printNote(options, "Warning: " + file.filename().string() +
                               " cannot be used: " + error.description());
      });
  if (options.json) {
    Json rows = Json::array();
    for (const LKTemplate& each : templates) rows.push_back(templateJson(each));
    printLine(printJson(rows));
    return;
  }
  if (templates.empty()) {
    printLine("No templates. Create them in Larkspire (File menu → Templates).");
    return;
  }
  TextColumns rows;
  for (const LKTemplate& each : templates) {
    rows.add({{each.name, TextStyle::bold}, {countOf(each.parameters.size(), "variable")}});
  }
  printLine(rows.text(Terminal::ofStandardOutput()));
}

}  // namespace lk
