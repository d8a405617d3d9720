#include "LKCore/Base/Json.h"

#include <array>
#include <cstdio>
#include <limits>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr int kMaximumDepth = 200;

void printString(std::string& out, const std::string& value) {
  out.push_back('"');
  for (size_t i = 0; i < value.size();) {
    const text::Decoded d = text::decode(value, i);
    i += d.length;
    switch (d.scalar) {
      case '"':
        out += "\\\"";
        break;
      case '\\':
        out += "\\\\";
        break;
      case '/':
        out += "\\/";
        break;
      case '\b':
        out += "\\b";
        break;
      case '\f':
        out += "\\f";
        break;
      case '\n':
        out += "\\n";
        break;
      case '\r':
        out += "\\r";
        break;
      case '\t':
        out += "\\t";
        break;
      default:
        if (d.scalar < 0x20) {
          std::array<char, 8> escaped{};
          std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(d.scalar));
          out += escaped.data();
        } else {
          text::append(out, d.scalar);
        }
    }
  }
  out.push_back('"');
}

void print(std::string& out, const Json& value, size_t level);

void newLine(std::string& out, size_t level) {
  out.push_back('\n');
  out.append(level * 2, ' ');
}

void printObject(std::string& out, const Json& value, size_t level) {
  if (value.empty()) {
    out += "{}";
    return;
  }
  out.push_back('{');
  bool first = true;
  for (const auto& [key, member] : value.items()) {
    if (!first) out.push_back(',');
    first = false;
    newLine(out, level + 1);
    printString(out, key);
    out += " : ";
    print(out, member, level + 1);
  }
  newLine(out, level);
  out.push_back('}');
}

void printArray(std::string& out, const Json& value, size_t level) {
  if (value.empty()) {
    out += "[]";
    return;
  }
  out.push_back('[');
  bool first = true;
  for (const Json& member : value) {
    if (!first) out.push_back(',');
    first = false;
    newLine(out, level + 1);
    print(out, member, level + 1);
  }
  newLine(out, level);
  out.push_back(']');
}

void print(std::string& out, const Json& value, size_t level) {
  switch (value.type()) {
    case Json::value_t::object:
      printObject(out, value, level);
      break;
    case Json::value_t::array:
      printArray(out, value, level);
      break;
    case Json::value_t::string:
      printString(out, value.get_ref<const std::string&>());
      break;
    default:
      out += value.dump();
  }
}

// The value of the key, null for a missing one.
const Json* member(const Json& object, const char* key) {
  const auto found = object.find(key);
  return found == object.end() || found->is_null() ? nullptr : &*found;
}

JsonError wrongType(const char* key, const char* wanted) {
  return JsonError(std::string("\"") + key + "\" is not " + wanted + ".");
}

}  // namespace

Json parseJson(std::string_view text) {
  const auto limitDepth = [](int depth, Json::parse_event_t event, Json&) {
    const bool opens =
        event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start;
    if (opens && depth >= kMaximumDepth) throw JsonError("The JSON is nested too deeply.");
    return true;
  };
  try {
    return Json::parse(text, limitDepth);
  } catch (const Json::exception& error) {  // parse_error, and out_of_range for a number like 1e999
    const std::string_view what = error.what();
    const size_t colon = what.find("] ");
    throw JsonError("Not valid JSON: " +
                    std::string(colon == std::string_view::npos ? what : what.substr(colon + 2)));
  }
}

std::string printJson(const Json& value) {
  std::string out;
  print(out, value, 0);
  return out;
}

std::optional<std::string> stringMember(const Json& object, const char* key) {
  const Json* value = member(object, key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_string()) throw wrongType(key, "a string");
  return value->get<std::string>();
}

std::optional<bool> boolMember(const Json& object, const char* key) {
  const Json* value = member(object, key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_boolean()) throw wrongType(key, "true or false");
  return value->get<bool>();
}

std::optional<int64_t> integerMember(const Json& object, const char* key) {
  const Json* value = member(object, key);
  if (value == nullptr) return std::nullopt;
  const bool fits = !value->is_number_unsigned() ||
                    value->get<uint64_t>() <= uint64_t{std::numeric_limits<int64_t>::max()};
  if (!value->is_number_integer() || !fits) throw wrongType(key, "an integer");
  return value->get<int64_t>();
}

}  // namespace lk
