// Templates: their files, what stands for a placeholder, and what a note takes from one.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Notices.h"
#include "LKCore/Platform/Files.h"
#include "LKCore/Templates/FilledTemplate.h"
#include "LKCore/Templates/LKTemplateError.h"
#include "LKCore/Templates/LKTemplateStore.h"
#include "Support/Growth.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using Values = LKTemplateResolver::Values;

Instant moment() {
  setenv("TZ", "UTC", 1);
  tzset();
  return *parseISO8601("2026-03-14T09:26:53Z");
}

LKTemplateResolver::Result resolvedNow(const std::string& text, const Values& values,
                                       const std::string& locale = "en_US") {
  return LKTemplateResolver::resolve(text, values, moment(), locale);
}

// --- Placeholders --------------------------------------------------------------------------------

struct ResolverRow {
  const char* name;
  std::string text;
  Values values;
  std::string result;
  std::optional<size_t> cursor = std::nullopt;
};

class Resolver : public testing::TestWithParam<ResolverRow> {};

TEST_P(Resolver, FillsThePlaceholders) {
  const ResolverRow& row = GetParam();
  const auto result = resolvedNow(row.text, row.values);
  EXPECT_EQ(result.text, row.result);
  EXPECT_EQ(result.cursorOffset, row.cursor);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, Resolver,
    testing::Values(
        ResolverRow{"date_and_value",
                    "Meeting {{date}} {{topic}}",
                    {{"topic", "Plan"}},
                    "Meeting 2026-03-14 Plan"},
        ResolverRow{"unfilled_leaves_no_trace", "a{{topic}}b", {}, "ab"},
        ResolverRow{"words_of_the_system_in_any_case", "{{DATE}} {{Time}}", {}, "2026-03-14 09:26"},
        ResolverRow{"the_date_wins_over_a_value", "{{date}}", {{"date", "x"}}, "2026-03-14"},
        ResolverRow{"names_in_exact_case", "{{Topic}}", {{"topic", "Plan"}}, ""},
        ResolverRow{"weekday", "{{date:EEEE}}", {}, "Saturday"},
        ResolverRow{"time_by_pattern", "{{time:HH.mm}}", {}, "09.26"},
        ResolverRow{"no_pattern_stays", "{{date:foo}} {{date:}}", {}, "{{date:foo}} {{date:}}"},
        ResolverRow{"a_value_is_not_searched_for_values",
                    "{{a}}{{b}}",
                    {{"a", "{{b}}."}, {"b", "{{a}}"}},
                    "."},
        ResolverRow{"dates_in_values", "{{a}}", {{"a", "in {{date:yyyy}}"}}, "in 2026"},
        ResolverRow{"cursor", "a{{cursor}}b", {}, "ab", 1},
        ResolverRow{"first_cursor_counts", "{{Cursor}}a{{CURSOR}}", {}, "a", 0},
        ResolverRow{"cursor_behind_what_grew",
                    "{{date}} e\u0301{{cursor}}!",
                    {},
                    "2026-03-14 e\u0301!",
                    12},
        ResolverRow{"cursor_behind_what_went", "{{gone}}x{{cursor}}{{date:yyyy}}", {}, "x2026", 1},
        ResolverRow{"outer_braces_stay", "{{{a}}}", {{"a", "v"}}, "{v}"},
        ResolverRow{"open_ends_stay", "a}} {{b", {{"b", "v"}}, "a}} {{b"},
        ResolverRow{"an_open_end_takes_nothing_along", "{{ x {{a}}", {{"a", "v"}}, "{{ x v"},
        ResolverRow{"one_line_only", "{{a\nb}} {{a}}", {{"a", "v"}}, "{{a\nb}} v"}),
    [](const auto& row) { return row.param.name; });

TEST(ResolverLocale, DoesNotReachTheMachineForms) {
  const auto result = resolvedNow(
      "{{date:yyyyMMdd}} {{date:yyyy-MM-dd}} {{date:yyyy-MM-dd HHmm}} "
      "{{date:yyyy}}",
      {}, "th_TH@calendar=buddhist");
  EXPECT_EQ(result.text, "20260314 2026-03-14 2026-03-14 0926 2569");
}

TEST(ResolverTime, IsLinearInAnyText) {
  for (const char* unit :
       {"{{", "{{\n", "}}", "{{a}}", "{{ {{cursor}}", "{{date:yyyy}}", "{{\u00E9"}) {
    SCOPED_TRACE(unit);
    EXPECT_LT(test::growth(unit, 100'000,
                           [](const std::string& text) {
                             resolvedNow(text, {{"a", "{{b}}"}});
                           }),
              8);
  }
}

TEST(ResolverSize, HasALimit) {
  std::string text;
  for (int i = 0; i < 17; ++i) text += "{{a}}";
  EXPECT_THROW(resolvedNow(text, {{"a", std::string(1'000'000, 'x')}}), LKTemplateError);
}

// --- Filling a template --------------------------------------------------------------------------

LKTemplate plant() {
  LKTemplate result;
  result.id = UUID::random();
  result.name = "Plant";
  result.titleTemplate = "{{kind}} {{date}}";
  result.bodyTemplate = "In the {{bed}} bed by {{who}}.{{cursor}}";
  LKTemplateParameter kind;
  kind.name = "kind";
  kind.label = "Kind of plant";
  kind.required = true;
  LKTemplateParameter bed;
  bed.name = "bed";
  bed.defaultValue = "{{date:yyyy}}";
  result.parameters = {kind, bed};
  result.propertyDefaults = {{"status", "Growing"}, {"bed", "{{bed}}"}, {"by", "{{who}}"}};
  result.tags = {"garden/{{kind}}", "{{who}}"};
  return result;
}

TEST(FilledTemplates, TakeGivenValuesThenDefaults) {
  const FilledTemplate byDefault = filled(plant(), {{"kind", "rose"}}, moment(), "en_US");
  EXPECT_EQ(byDefault.title, "rose 2026-03-14");
  EXPECT_EQ(byDefault.body.text, "In the 2026 bed by .");
  EXPECT_EQ(byDefault.body.cursorOffset, 20U);
  EXPECT_EQ(byDefault.properties,
            (std::map<std::string, std::string>{{"bed", "2026"}, {"status", "Growing"}}));
  EXPECT_EQ(byDefault.tags, std::vector<std::string>{"garden/rose"});

  const Values given = {{"kind", "rose"}, {"bed", ""}, {"who", "Ann"}};
  const FilledTemplate note = filled(plant(), given, moment(), "en_US");
  EXPECT_EQ(note.body.text, "In the  bed by Ann.");
  EXPECT_EQ(note.properties.at("by"), "Ann");
  EXPECT_FALSE(note.properties.contains("bed"));
}

TEST(FilledTemplates, NameTheRequiredParameterWithoutAValue) {
  for (const Values& given : {Values{}, Values{{"kind", " "}}, Values{{"Kind", "rose"}}}) {
    try {
      filled(plant(), given, moment(), "en_US");
      FAIL() << "nothing is missing";
    } catch (const LKTemplateError& error) {
      EXPECT_EQ(error.description(),
                "The template \"Plant\" needs a value for \"kind\" (Kind of plant).");
    }
  }
}

// --- Files ---------------------------------------------------------------------------------------

constexpr const char* kLeast =
    R"({"id":"4CDD2055-930D-4EAF-94F4-733F3E7D1BFB","name":"N","titleTemplate":"T","bodyTemplate":"B"})";

TEST(TemplateFiles, ReadBackWhatIsWritten) {
  LKTemplate source = plant();
  source.description = "One plant";
  source.createdDate = moment();
  source.parameters.back().type = LKPropertyType::singleSelect;
  source.parameters.back().options = {"North", "South"};
  source.parameters.back().autoTagNote = true;
  EXPECT_EQ(decodeTemplate(parseJson(printJson(encodeTemplate(source)))), source);
  const LKTemplate least = decodeTemplate(parseJson(kLeast));
  EXPECT_EQ(least.bodyTemplate, "B");
  EXPECT_TRUE(least.parameters.empty());
}

TEST(TemplateFiles, AreRefusedWithAMemberOfAnotherKind) {
  for (const char* patch :
       {R"({"id":"no"})", R"({"id":null})", R"({"name":1})", R"({"titleTemplate":null})",
        R"({"bodyTemplate":[]})", R"({"createdDate":"2026-03-14"})", R"({"category":1})",
        R"({"parameters":{}})", R"({"parameters":["x"]})", R"({"parameters":[{"label":"x"}]})",
        R"({"parameters":[{"name":"x","type":"poem"}]})",
        R"({"parameters":[{"name":"x","id":"y"}]})",
        R"({"parameters":[{"name":"x","required":1}]})", R"({"propertyDefaults":{"a":1}})",
        R"({"propertyDefaults":[]})", R"({"tags":"a"})", R"({"tags":[1]})"}) {
    Json document = parseJson(kLeast);
    document.update(parseJson(patch));
    EXPECT_THROW(decodeTemplate(document), JsonError) << patch;
  }
  EXPECT_THROW(decodeTemplate(Json::array()), JsonError);
}

class Store : public testing::Test {
 protected:
  fs::path file(const UUID& id) const { return folder / ".templates" / (id.text() + ".json"); }

  void put(const std::string& name, const std::string& bytes) const {
    fs::create_directories(folder / ".templates");
    test::writeWhole(folder / ".templates" / name, bytes);
  }

  const test::TempFolder folder;
  const LKTemplateStore store{[this] { return folder.path(); }};
};

TEST_F(Store, SavesListsAndDeletes) {
  int posts = 0;
  const notices::Observation watch = notices::observe(kTemplatesChanged, [&] { ++posts; });
  EXPECT_TRUE(store.loadAll().empty());
  LKTemplate first = plant();
  first.name = "Item 10";
  first.icon = "leaf";
  LKTemplate second = plant();
  second.name = "item 9";
  store.save(first);
  store.save(second);
  EXPECT_EQ(store.loadAll(), (std::vector<LKTemplate>{second, first}));
  EXPECT_EQ(test::readWhole(file(first.id)), printJson(encodeTemplate(first)) + "\n");

  Json newer = encodeTemplate(first);
  newer["colour"] = "green";
  test::writeWhole(file(first.id), printJson(newer));
  first.icon.reset();
  first.name = "Item 8";
  store.save(first);
  EXPECT_EQ(store.load(first.id), first);
  EXPECT_EQ(parseJson(test::readWhole(file(first.id)))["colour"], "green");
  EXPECT_EQ(posts, 3);

  store.deleteTemplate(first.id);
  EXPECT_EQ(store.load(first.id), std::nullopt);
  EXPECT_EQ(posts, 4);
  try {
    store.deleteTemplate(first.id);
    FAIL() << "it was deleted twice";
  } catch (const FileError& error) {
    EXPECT_EQ(error.code(), ENOENT);
  }
}

TEST_F(Store, PassesOverWhatIsNoTemplateAndTells) {
  put("good.json", kLeast);
  put("broken.json", "{\"id\":");
  put("deep.json", std::string(1'000'000, '['));
  put("huge.json", std::string(LKTemplateStore::kFileLimit + 1, ' ') + kLeast);
  put("latin1.json", "{\"name\":\"caf\xE9\"}");
  put("notes.txt", "no template");
  fs::create_directory(folder / ".templates/folder.json");
  std::vector<std::string> skipped;
  const auto templates = store.loadAll(
      [&](const fs::path& path, const Error&) { skipped.push_back(path.filename().string()); });
  ASSERT_EQ(templates.size(), 1U);
  EXPECT_EQ(templates.front().name, "N");
  EXPECT_EQ(skipped, (std::vector<std::string>{"broken.json", "deep.json", "folder.json",
                                               "huge.json", "latin1.json"}));
}

}  // namespace
}  // namespace lk
