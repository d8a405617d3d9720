#pragma once

// JSON in and out. Reading is the library's; writing is ours, because every JSON document of the
// system has one form: two spaces of indentation, keys sorted by their bytes, " : " after a key,
// a slash written as "\/", text other than control characters left as UTF-8, `[]` and `{}` for
// the empty ones.

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"

namespace lk {

using Json = nlohmann::json;

// Text that is not JSON; the description says what is wrong and at which line and column.
class JsonError : public Error {
 public:
  using Error::Error;
};

// Throws JsonError for anything that is not one JSON document in UTF-8, or that is nested more
// than 200 levels deep.
Json parseJson(std::string_view text);

// The document in the system's form, without a closing line feed. Invalid UTF-8 in a string is
// written as U+FFFD.
std::string printJson(const Json& value);

// Members of an object. A missing key and null give nothing; a value of another type throws
// JsonError, which names the key.
std::optional<std::string> stringMember(const Json& object, const char* key);
std::optional<bool> boolMember(const Json& object, const char* key);
std::optional<int64_t> integerMember(const Json& object, const char* key);
std::optional<double> numberMember(const Json& object, const char* key);

// A string that has to be there; JsonError, which names the key, where it is not.
std::string requiredString(const Json& object, const char* key);

// The number as documents and messages show it: a whole one without a fraction, 5 and not 5.0.
Json numberJson(double value);

}  // namespace lk
