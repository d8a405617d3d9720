#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "LKCore/Base/Notices.h"
#include "LKCore/Properties/LKBuiltInProperties.h"
#include "LKCore/Properties/LKMultiSelectValue.h"
#include "LKCore/Properties/LKPropertySchemaStore.h"
#include "Support/Child.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

using test::readWhole;

constexpr const char* kStatusID = "9BE4BCFC-49B6-4A08-B2E6-CC3ABABCED20";

LKPropertyDefinition definition(const std::string& name,
                                LKPropertyType type = LKPropertyType::text) {
  LKPropertyDefinition made;
  made.id = UUID::random();
  made.name = name;
  made.type = type;
  return made;
}

class PropertySchema : public testing::Test {
 protected:
  PropertySchema() : store_([this] { return home_.path(); }) {}

  fs::path file() const { return home_ / ".properties/schema.json"; }
  void write(const std::string& bytes) const {
    fs::create_directories(file().parent_path());
    test::writeWhole(file(), bytes);
  }
  // The names of what is known, the built-in ones left out.
  static Texts names(const LKPropertySchemaStore& store) {
    Texts found;
    for (const LKPropertyDefinition& each : store.loadAll()) {
      if (!LKBuiltInProperties::allIDs().contains(each.id)) found.push_back(each.name);
    }
    return found;
  }
  LKPropertySchemaError::Case refusal(const std::function<void()>& change) const {
    try {
      change();
    } catch (const LKPropertySchemaError& error) {
      return error.errorCase();
    }
    ADD_FAILURE() << "nothing thrown";
    return {};
  }

  test::TempFolder home_;
  LKPropertySchemaStore store_;
};

TEST_F(PropertySchema, WritesWhatItReads) {
  LKPropertyDefinition full = definition("Size", LKPropertyType::number);
  full.id = *UUID::parse(kStatusID);
  full.createdDate = *parseISO8601("2026-02-01T10:00:00Z");
  full.expression.emplace(Json{{"daysUntilDue", Json::object()}});
  full.isRequired = true;
  full.minValue = 2;
  full.maxValue = 2.5;
  full.maxLength = 7;
  store_.add(full);
  EXPECT_EQ(readWhole(file()),
            "[\n  {\n    \"createdDate\" : \"2026-02-01T10:00:00Z\",\n"
            "    \"expression\" : {\n      \"daysUntilDue\" : {}\n    },\n"
            "    \"id\" : \"9BE4BCFC-49B6-4A08-B2E6-CC3ABABCED20\",\n"
            "    \"isRequired\" : true,\n    \"maxLength\" : 7,\n    \"maxValue\" : 2.5,\n"
            "    \"minValue\" : 2,\n    \"name\" : \"Size\",\n    \"options\" : [],\n"
            "    \"type\" : \"number\"\n  }\n]\n");
  EXPECT_EQ(store_.definitionNamed("sIZE"), full);
  store_.add(definition("apple"));
  const std::vector<LKPropertyDefinition> all = store_.loadAll();
  ASSERT_EQ(all.size(), 4U);
  EXPECT_EQ(all[0].name + all[1].name + all[2].name + all[3].name,
            "manuscript-roleProjectappleSize");
}

TEST_F(PropertySchema, RefusesWhatCannotBe) {
  using Case = LKPropertySchemaError::Case;
  store_.add(definition("Übung"));
  const LKPropertyDefinition known = *store_.definitionNamed("übung");
  const std::string before = readWhole(file());
  for (const char* name : {"id", "Title", "lk-x", "LK-y", "hash", "", "a:b"}) {
    EXPECT_EQ(refusal([&] { store_.add(definition(name)); }), Case::reservedName) << name;
  }
  for (const char* name : {"ÜBUNG", "U\u0308bung", "project", "Manuscript-Role"}) {
    EXPECT_EQ(refusal([&] { store_.add(definition(name)); }), Case::duplicateName) << name;
  }
  EXPECT_EQ(refusal([&] { store_.add(known); }), Case::duplicateName);
  LKPropertyDefinition builtIn = LKBuiltInProperties::manuscriptRole();
  builtIn.name = "other";
  EXPECT_EQ(refusal([&] { store_.update(builtIn); }), Case::builtIn);
  EXPECT_EQ(refusal([&] { store_.remove(builtIn.id); }), Case::builtIn);
  EXPECT_EQ(refusal([&] { store_.update(definition("x")); }), Case::notFound);
  EXPECT_EQ(refusal([&] { store_.remove(UUID::random()); }), Case::notFound);
  EXPECT_EQ(readWhole(file()), before);

  LKPropertyDefinition renamed = known;
  renamed.name = "ÜBUNG";  // the case of its own name alone
  store_.update(renamed);
  store_.remove(known.id);
  EXPECT_EQ(readWhole(file()), "[]\n");
}

TEST_F(PropertySchema, WhatItDoesNotKnowStays) {
  write(std::string(R"([{"id":")") + kStatusID + R"(","name":"status","type":"text","hue":1},)" +
        R"({"id":"x","name":"Mood","type":"feeling"},7])");
  EXPECT_EQ(names(store_), Texts{"status"});
  EXPECT_EQ(store_.problems().size(), 2U);
  EXPECT_EQ(refusal([&] { store_.add(definition("mood")); }),
            LKPropertySchemaError::Case::duplicateName);
  LKPropertyDefinition status = *store_.definitionNamed("status");
  status.maxLength = 3;
  store_.update(status);
  store_.saveAll({definition("first"), status, LKBuiltInProperties::project()});
  const Json rows = parseJson(readWhole(file()));
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0]["name"], "first");
  EXPECT_EQ(rows[1]["hue"], 1);
  EXPECT_EQ(rows[1]["maxLength"], 3);
  EXPECT_EQ(rows[2]["type"], "feeling");
  EXPECT_EQ(rows[3], 7);
}

TEST_F(PropertySchema, WhatCannotBeUnderstoodIsNeverWrittenOver) {
  for (const char* bytes : {"", "{", "{}", "null", "[{\"id\":", "[]\xFF"}) {
    write(bytes);
    store_.invalidateCache();
    EXPECT_TRUE(names(store_).empty());
    EXPECT_EQ(store_.problems().size(), 1U) << bytes;
    try {
      store_.add(definition("x"));
      ADD_FAILURE() << "nothing thrown for " << bytes;
    } catch (const LKPropertySchemaError& error) {
      EXPECT_NE(error.description().find(file().string()), std::string::npos);
    }
    EXPECT_EQ(refusal([&] { store_.saveAll({}); }), LKPropertySchemaError::Case::unreadable);
    EXPECT_EQ(readWhole(file()), bytes);
  }
}

TEST_F(PropertySchema, FollowsTheFileAndTellsOfItsOwnChanges) {
  int posted = 0;
  const auto watch = notices::observe("com.larkspire.propertySchemaChanged", [&] { ++posted; });
  EXPECT_TRUE(names(store_).empty());
  LKPropertySchemaStore other([this] { return home_.path(); });
  other.add(definition("by another"));
  EXPECT_EQ(names(store_), Texts{"by another"});
  other.saveAll({other.definitionNamed("by another").value()});  // nothing new
  EXPECT_EQ(posted, 1);
  fs::remove(file());
  EXPECT_TRUE(names(store_).empty());
  fs::create_directories(file());  // a folder where the file should be
  EXPECT_THROW(store_.add(definition("x")), Error);
}

TEST_F(PropertySchema, NoDefinitionOfSeveralProcessesIsLost) {
  const auto work = [&](const std::string& start) {
    for (int i = 0; i < 40; ++i) store_.add(definition(start + std::to_string(i)));
    return std::string("done");
  };
  test::Child first([&] { return work("a"); });
  test::Child second([&] { return work("b"); });
  EXPECT_EQ(first.word(), "done");
  EXPECT_EQ(second.word(), "done");
  EXPECT_EQ(names(store_).size(), 80U);
}

struct MultiSelectCase {
  const char* value;
  Texts items;
  const char* asFlow;
};

TEST(MultiSelectValue, ReadsBothForms) {
  namespace multi = LKMultiSelectValue;
  const std::vector<MultiSelectCase> cases = {
      {"a, b", {"a", "b"}, "[a, b]"},
      {"[a, b]", {"a", "b"}, "[a, b]"},
      {" a,, b c ,", {"a", "b c"}, "[a, b c]"},
      {"", {}, "[]"},
      {"[]", {}, "[]"},
      {"[", {"["}, "[\"[\"]"},
      {"[ , \"\" ]", {}, "[]"},
      {"[\"a, b\", 'it''s', c]", {"a, b", "it's", "c"}, "[\"a, b\", \"it's\", c]"},
      {R"(["say \"hi\"", "a\\"])", {"say \"hi\"", "a\\"}, R"(["say \"hi\"", a\])"},
      {"[it's, 5\" pipe]", {"it's", "5\" pipe"}, "[\"it's\", \"5\\\" pipe\"]"},
      {"[\"a\" b, c]", {"\"a\" b", "c"}, "[\"\\\"a\\\" b\", c]"},
      {"[\"a, b]", {"\"a", "b"}, "[\"\\\"a\", b]"},
  };
  for (const MultiSelectCase& each : cases) {
    EXPECT_EQ(multi::parse(each.value), each.items) << each.value;
    EXPECT_EQ(multi::serialize(each.items, multi::Form::flow), each.asFlow) << each.value;
    EXPECT_EQ(multi::parse(each.asFlow), each.items) << each.asFlow;
  }
  EXPECT_EQ(multi::serialize({"a", "b c"}, multi::Form::comma), "a, b c");
  EXPECT_TRUE(multi::contains("[x, \"Ärger, groß\"]", "ärger, GROß"));
  EXPECT_FALSE(multi::contains("draft, done", "don"));
}

}  // namespace
}  // namespace lk
