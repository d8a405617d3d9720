#include "LKCore/Properties/LKMultiSelectValue.h"

#include <algorithm>
#include <optional>

#include "LKCore/Base/Text.h"

namespace lk::LKMultiSelectValue {

namespace {

struct FlowItem {
  std::string text;
  size_t end = 0;  // where its comma stands, or the end of the text
};

void addItem(std::vector<std::string>& items, std::string_view item) {
  const std::string_view trimmed = text::trimmed(item);
  if (!trimmed.empty()) items.emplace_back(trimmed);
}

// Where the comma at or after `from` stands, or the end.
size_t nextComma(std::string_view text, size_t from) {
  return std::min(text.find(',', from), text.size());
}

// The item whose quote stands at `start`; nothing when that quote is never closed. In double
// quotes a backslash escapes a quote and itself, in single quotes a quote is doubled.
std::optional<FlowItem> quotedItem(std::string_view text, size_t start) {
  const char quote = text[start];
  std::string content;
  for (size_t i = start + 1; i < text.size(); ++i) {
    const char next = i + 1 < text.size() ? text[i + 1] : '\0';
    if (text[i] == quote) {
      if (quote == '\'' && next == quote) {
        ++i;
      } else {
        const size_t end = nextComma(text, i);
        const bool closesItem = text::trimmed(text.substr(i + 1, end - i - 1)).empty();
        return FlowItem{closesItem ? content : std::string(text.substr(start, end - start)), end};
      }
    } else if (quote == '"' && text[i] == '\\' && (next == '"' || next == '\\')) {
      ++i;
    }
    content += text[i];
  }
  return std::nullopt;
}

FlowItem itemAt(std::string_view text, size_t start) {
  const size_t first = text.size() - text::trimmedLeading(text.substr(start)).size();
  if (first < text.size() && (text[first] == '"' || text[first] == '\'')) {
    if (auto quoted = quotedItem(text, first)) return *std::move(quoted);
  }
  const size_t end = nextComma(text, start);
  return {std::string(text.substr(start, end - start)), end};
}

std::vector<std::string> parseFlowItems(std::string_view text) {
  std::vector<std::string> items;
  for (size_t start = 0; start < text.size();) {
    const FlowItem item = itemAt(text, start);
    addItem(items, item.text);
    start = item.end + 1;
  }
  return items;
}

std::string flowScalar(const std::string& item) {
  if (item.find_first_of(",[]\"'") == std::string::npos) return item;
  const std::string escaped =
      text::replacingAll(text::replacingAll(item, "\\", "\\\\"), "\"", "\\\"");
  return "\"" + escaped + "\"";
}

}  // namespace

Form form(std::string_view value) {
  const bool isBracketed = value.size() >= 2 && value.starts_with('[') && value.ends_with(']');
  return isBracketed ? Form::flow : Form::comma;
}

std::vector<std::string> parse(std::string_view value) {
  if (form(value) == Form::flow) return parseFlowItems(value.substr(1, value.size() - 2));
  std::vector<std::string> items;
  for (const std::string_view item : text::split(value, ',')) addItem(items, item);
  return items;
}

std::string serialize(const std::vector<std::string>& items, Form as) {
  std::string joined;
  for (const std::string& item : items) {
    if (!joined.empty()) joined += ", ";
    joined += as == Form::flow ? flowScalar(item) : item;
  }
  return as == Form::flow ? "[" + joined + "]" : joined;
}

bool contains(std::string_view value, std::string_view item) {
  const std::string_view wanted = text::trimmed(item);
  return std::ranges::any_of(
      parse(value), [&](const std::string& each) { return text::equalIgnoringCase(each, wanted); });
}

std::set<std::string> multiSelectPropertyNames(const LKPropertySchemaStore& store) {
  std::set<std::string> names;
  for (const LKPropertyDefinition& definition : store.loadAll()) {
    if (definition.type == LKPropertyType::multiSelect) {
      names.insert(text::lowercased(definition.name));
    }
  }
  return names;
}

}  // namespace lk::LKMultiSelectValue
