#include "LKCore/Base/Json.h"

#include <cmath>
#include <limits>

#include "LKCore/Base/JsonWriter.h"

namespace lk {

namespace {

constexpr int kMaximumDepth = 200;

void print(JsonWriter& out, const Json& value) {
  switch (value.type()) {
    case Json::value_t::object:
      out.beginObject();
      for (const auto& [key, member] : value.items()) print(out.key(key), member);
      out.endObject();
      break;
    case Json::value_t::array:
      out.beginArray();
      for (const Json& member : value) print(out, member);
      out.endArray();
      break;
    case Json::value_t::string:
      out.string(value.get_ref<const std::string&>());
      break;
    default:
      out.raw(value.dump());
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
  JsonWriter writer(out);
  print(writer, value);
  return out;
}

std::optional<std::string> stringMember(const Json& object, const char* key) {
  const Json* value = member(object, key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_string()) throw wrongType(key, "a string");
  return value->get<std::string>();
}

std::string requiredString(const Json& object, const char* key) {
  auto value = stringMember(object, key);
  if (!value) throw JsonError(std::string("\"") + key + "\" is missing.");
  return *std::move(value);
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

std::optional<double> numberMember(const Json& object, const char* key) {
  const Json* value = member(object, key);
  if (value == nullptr) return std::nullopt;
  if (!value->is_number()) throw wrongType(key, "a number");
  return value->get<double>();
}

Json numberJson(double value) {
  constexpr double kExactlyWhole = 9e15;
  const bool isWhole = std::abs(value) < kExactlyWhole && std::floor(value) == value;
  return isWhole ? Json(static_cast<int64_t>(value)) : Json(value);
}

}  // namespace lk
