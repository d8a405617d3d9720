// The piecewise writer of JSON, against a slow reading of the same form; and the searcher that
// ends a hostile pattern.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <random>
#include <string>

#include "LKCore/Base/Json.h"
#include "LKCore/Base/JsonWriter.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"

namespace lk {
namespace {

std::string slowString(const std::string& value) {
  std::string out = "\"";
  for (size_t i = 0; i < value.size();) {
    const text::Decoded next = text::decode(value, i);
    i += next.length;
    const std::string shorts = "\"\\/\b\f\n\r\t";
    const size_t at = next.scalar < 0x80 ? shorts.find(static_cast<char>(next.scalar)) : 8;
    if (at < 8) {
      out += std::string("\\") + "\"\\/bfnrt"[at];
    } else if (next.scalar < 0x20) {
      std::array<char, 8> escape{};
      std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(next.scalar));
      out += escape.data();
    } else {
      text::append(out, next.scalar);
    }
  }
  return out + "\"";
}

std::string slowForm(const Json& value, const std::string& indent) {
  if (value.is_string()) return slowString(value.get<std::string>());
  if (!value.is_structured()) return value.dump();
  std::string members;
  for (const auto& [key, member] : value.items()) {
    members += (members.empty() ? "\n  " : ",\n  ") + indent;
    if (value.is_object()) members += slowString(key) + " : ";
    members += slowForm(member, indent + "  ");
  }
  if (!members.empty()) members += "\n" + indent;
  return value.is_object() ? "{" + members + "}" : "[" + members + "]";
}

class RandomTrees {
 public:
  explicit RandomTrees(unsigned seed) : random_(seed) {}

  Json tree(int depth) {
    switch (number(depth > 0 ? 7 : 5)) {
      case 0:
        return nullptr;
      case 1:
        return number(2) == 0;
      case 2:
        return number(100'000) - 50'000;
      case 3:
        return number(1000) / 8.0;
      case 4:
        return text();
      case 5: {
        Json array = Json::array();
        for (int i = number(4); i > 0; --i) array.push_back(tree(depth - 1));
        return array;
      }
      default: {
        Json object = Json::object();
        for (int i = number(4); i > 0; --i) object[text()] = tree(depth - 1);
        return object;
      }
    }
  }

 private:
  int number(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

  std::string text() {
    static const std::array<std::string, 8> pieces = {
        "word", "\"", "/\\", "\n\t\r\b\f", "\x01\x1f\x7f", "\u00E9\u65E5", "\xFF", "\U0001F642"};
    std::string result;
    for (int i = number(5); i > 0; --i) result += pieces[static_cast<size_t>(number(8))];
    return result;
  }

  std::mt19937 random_;
};

TEST(JsonWriting, IsTheOneFormOfEveryTree) {
  for (unsigned seed = 0; seed < 500; ++seed) {
    const Json tree = RandomTrees(seed).tree(4);
    ASSERT_EQ(printJson(tree), slowForm(tree, "")) << "seed " << seed;
  }
}

TEST(PatternSearch, FindsWhatThePatternFindsAndEndsAHostileOne) {
  const Pattern pattern("b+", Pattern::Case::insensitive);
  PatternSearcher searcher(pattern);
  EXPECT_EQ(searcher.first("aaBbb b"), (TextRange{2, 5}));
  EXPECT_EQ(searcher.first("aaBbb b", 5), (TextRange{6, 7}));
  EXPECT_EQ(searcher.first("\xFF\xC3", 0), std::nullopt);
  const Pattern hostile("(a+)+$");
  PatternSearcher bounded(hostile);
  EXPECT_THROW(bounded.first(std::string(60, 'a') + "!"), PatternError);
}

TEST(LocalizedKeys, OrderAsTheComparisonDoes) {
  const std::vector<std::string> titles = {
      "", "a", "A", "b2", "b10", "B2", "\u00E9t\u00E9", "ete", "\u65E5\u672C", "z z", "10", "9"};
  const auto sign = [](int order) { return (order > 0) - (order < 0); };
  for (const std::string& a : titles) {
    for (const std::string& b : titles) {
      EXPECT_EQ(sign(text::localizedKey(a).compare(text::localizedKey(b))),
                sign(text::compareLocalized(a, b)))
          << a << " " << b;
    }
  }
  EXPECT_EQ(text::localizedKey(std::string(5000, 'x')), text::localizedKey(std::string(5000, 'x')));
}

}  // namespace
}  // namespace lk
