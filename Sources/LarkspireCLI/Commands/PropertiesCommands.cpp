#include "LarkspireCLI/Commands/PropertiesCommands.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Base/Time.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Properties/LKBuiltInProperties.h"
#include "LKCore/Properties/LKPropertySchemaStore.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/CollectionLocation.h"
#include "LarkspireCLI/Support/NoteWriting.h"
#include "LarkspireCLI/Support/Output.h"
#include "LarkspireCLI/Support/OutputFormatter.h"
#include "LarkspireCLI/Support/PropertyArgument.h"
#include "LarkspireCLI/Support/PropertyScanner.h"
#include "LarkspireCLI/Support/PropertySchema.h"
#include "LarkspireCLI/Support/TextColumns.h"

namespace lk {

namespace fs = std::filesystem;

namespace {

constexpr const char* kCannotChangeSchema =
    "This collection is read-only. Properties cannot be changed.";

// --- Definitions ---------------------------------------------------------------------------------

const LKPropertyDefinition& requireDefinition(const std::string& name,
                                              const std::vector<LKPropertyDefinition>& schema) {
  const LKPropertyDefinition* const found = findDefinition(text::trimmed(name), schema);
  if (found != nullptr) return *found;
  throw CLIError::general("Property \"" + name +
                          "\" not found.\n  Hint: Use `lk properties list` to see all defined "
                          "properties.");
}

// Before anybody is asked to confirm.
void requireNotBuiltIn(const LKPropertyDefinition& definition) {
  if (!LKBuiltInProperties::allIDs().contains(definition.id)) return;
  throw CLIError::general(LKPropertySchemaError::builtIn(definition.name).description());
}

PropertyRow propertyRow(const LKPropertyDefinition& definition, int64_t noteCount) {
  return {.name = definition.name,
          .type = std::string(rawValue(definition.type)),
          .options = definition.options,
          .isRequired = definition.isRequired,
          .createdDate = definition.createdDate,
          .noteCount = noteCount};
}

// Runs `change` on the schema, turning what it throws into general.
void changeSchema(const std::function<void(LKPropertySchemaStore&)>& change) {
  try {
    change(LKPropertySchemaStore::shared());
  } catch (const LKPropertySchemaError& error) {
    throw CLIError::general(error.description());
  } catch (const FileError& error) {
    throw CLIError::general("The property schema could not be written. " + error.description());
  }
}

bool isSelectType(LKPropertyType type) {
  return type == LKPropertyType::singleSelect || type == LKPropertyType::multiSelect;
}

LKPropertyType creatableType(const std::string& name) {
  const auto type = propertyTypeNamed(name);
  if (type == LKPropertyType::derived) {
    throw CLIError::general("Derived properties cannot be created via the CLI.");
  }
  if (type == LKPropertyType::project) {
    throw CLIError::general("Project properties cannot be created via the CLI.");
  }
  if (type) return *type;
  std::string valid;
  for (const LKPropertyType each : kPropertyTypes) {
    if (each == LKPropertyType::derived || each == LKPropertyType::project) continue;
    valid.append(valid.empty() ? "" : ", ").append(rawValue(each));
  }
  throw CLIError::general("Unknown property type \"" + name + "\".\n  Valid types: " + valid);
}

// Each option once, in any case.
std::vector<std::string> typedOptions(std::string_view list) {
  std::vector<std::string> found;
  std::set<std::string> keys;
  for (const std::string_view piece : text::split(list, ',')) {
    const std::string_view option = text::trimmed(piece);
    const bool isNew = !option.empty() && keys.insert(text::caseInsensitiveKey(option)).second;
    if (isNew) found.emplace_back(option);
  }
  return found;
}

// --- Use -----------------------------------------------------------------------------------------

// A row for each key without a definition, under its first spelling.
std::vector<OrphanRow> orphanRows(const std::vector<NoteProperty>& properties,
                                  const std::vector<LKPropertyDefinition>& schema) {
  std::map<std::string, PropertyUse> orphans = PropertyScanner::usesByKey(properties);
  for (const LKPropertyDefinition& each : schema) {
    orphans.erase(text::caseInsensitiveKey(each.name));
  }
  std::vector<OrphanRow> rows;
  for (auto& [key, use] : orphans) {
    PropertyScanner::sortTitles(use.noteTitles);
    const auto count = static_cast<int64_t>(use.noteTitles.size());
    rows.push_back({use.key, count, std::move(use.noteTitles)});
  }
  std::ranges::stable_sort(rows, [](const OrphanRow& a, const OrphanRow& b) {
    return text::compareLocalized(a.key, b.key) < 0;
  });
  return rows;
}

// Sorted.
std::vector<std::string> titlesOfUsers(const LKPropertyDefinition& definition,
                                       const fs::path& collection) {
  auto uses = PropertyScanner::usesByKey(
      PropertyScanner::notesUsing(definition.name, std::nullopt, collection));
  return uses.empty() ? std::vector<std::string>{} : std::move(uses.begin()->second.noteTitles);
}

std::string noteValueRowsJSON(const std::vector<NoteProperty>& uses) {
  Json rows = Json::array();
  for (const NoteProperty& use : uses) {
    rows.push_back(
        {{"title", use.noteTitle}, {"value", use.value}, {"fileURL", fileURL(use.noteURL)}});
  }
  return OutputFormatter::jsonEncode(rows);
}

std::string noteValueLines(const std::vector<NoteProperty>& uses) {
  TextColumns list;
  for (const NoteProperty& use : uses) list.add({{use.noteTitle, TextStyle::bold}, {use.value}});
  return list.text(Terminal::ofStandardOutput());
}

}  // namespace

void PropertiesListCommand::declare(ArgumentList& /*arguments*/) {}

void PropertiesListCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::vector<LKPropertyDefinition> schema = readPropertySchema(options);
  const auto counts = PropertyScanner::usageCounts(collection, schema);
  std::vector<PropertyRow> rows;
  for (const LKPropertyDefinition& definition : schema) {
    rows.push_back(propertyRow(definition, counts.at(text::caseInsensitiveKey(definition.name))));
  }
  printLine(OutputFormatter::formatPropertyList(rows, options.json, Terminal::ofStandardOutput()));
}

void PropertiesShowCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
}

void PropertiesShowCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::vector<LKPropertyDefinition> schema = readPropertySchema(options);
  const LKPropertyDefinition& definition = requireDefinition(name, schema);
  PropertyDetailRow row;
  row.notes = titlesOfUsers(definition, collection);
  static_cast<PropertyRow&>(row) = propertyRow(definition, static_cast<int64_t>(row.notes.size()));
  row.minValue = definition.minValue;
  row.maxValue = definition.maxValue;
  row.maxLength = definition.maxLength;
  printLine(OutputFormatter::formatPropertyDetail(row, options.json));
}

void PropertiesAddCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.");
  Argument& typeArgument =
      arguments.option("--type", type,
                       "Property type (text, number, date, dateTime, checkbox, singleSelect, "
                       "multiSelect, url, email, phone, rating).");
  typeArgument.choices = {"text",        "number", "date",  "dateTime", "checkbox", "singleSelect",
                          "multiSelect", "url",    "email", "phone",    "rating"};
  typeArgument.required = true;
  arguments
      .option("--property-options", propertyOptions,
              "Comma-separated options (required for singleSelect/multiSelect).")
      .valueName = "list";
  arguments.flag("--required", required, "Mark this property as required.");
}

void PropertiesAddCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  requireWritable(collection, kCannotChangeSchema);
  LKPropertyDefinition definition;
  definition.id = UUID::random();
  definition.name = readablePropertyName(name);
  definition.type = creatableType(type);
  definition.createdDate = Instant::now();
  definition.isRequired = required;
  if (isSelectType(definition.type)) {
    definition.options = typedOptions(propertyOptions.value_or(""));
    if (definition.options.empty()) {
      throw CLIError::general(type +
                              " properties require --property-options.\n  Example: "
                              "--property-options \"Draft,In Progress,Done\"");
    }
  } else if (propertyOptions) {
    printNote(options, "Note: --property-options has no meaning for the type " + type + ".");
  }
  changeSchema([&](LKPropertySchemaStore& store) { store.add(definition); });
  printMessage(options, "Created property \"" + definition.name + "\"");
}

void PropertiesDeleteCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
  arguments.flag("--force", force, "Skip confirmation prompt.");
}

void PropertiesDeleteCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  requireWritable(collection, kCannotChangeSchema);
  const std::vector<LKPropertyDefinition> schema = readPropertySchema(options);
  const LKPropertyDefinition& definition = requireDefinition(name, schema);
  requireNotBuiltIn(definition);
  const auto counts = PropertyScanner::usageCounts(collection, schema);
  const int64_t count = counts.at(text::caseInsensitiveKey(definition.name));
  const std::string notes = std::to_string(count) + " notes";
  if (count > 0 && !force) {
    throw CLIError::general("Delete \"" + definition.name + "\"? " + notes +
                            " use this property. Values preserved in front matter.\n  Use --force "
                            "to skip this confirmation.");
  }
  changeSchema([&](LKPropertySchemaStore& store) { store.remove(definition.id); });
  printMessage(options, "Deleted property \"" + definition.name + "\"" +
                            (count > 0 ? " (values preserved in " + notes + ")" : ""));
}

void PropertiesOrphansCommand::declare(ArgumentList& /*arguments*/) {}

void PropertiesOrphansCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::vector<LKPropertyDefinition> schema = readPropertySchema(options);
  const auto rows = orphanRows(PropertyScanner::scanAllProperties(collection), schema);
  printLine(OutputFormatter::formatOrphanList(rows, options.json));
}

void PropertiesNotesCommand::declare(ArgumentList& arguments) {
  arguments.positional("name", name, "Property name.").completion = Completion::property;
  arguments.option("--value", value, "Filter by property value (case-insensitive).");
}

void PropertiesNotesCommand::run() {
  const fs::path collection = resolvedCollection(options.collection, options.quiet);
  const std::string key(text::trimmed(name));
  const auto uses = PropertyScanner::notesUsing(key, value, collection);
  if (options.json) {
    printLine(noteValueRowsJSON(uses));
  } else if (!uses.empty()) {
    printLine(noteValueLines(uses));
  } else {
    printLine(value ? "No notes have \"" + key + "\" set to \"" + *value + "\""
                    : "No notes use property \"" + key + "\"");
  }
}

}  // namespace lk
