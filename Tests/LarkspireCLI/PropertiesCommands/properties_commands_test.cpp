// Which values may be written, and what `lk properties` finds in the notes.

#include "LKCore/Properties/LKPropertyDefinition.h"
#include "LarkspireCLI/Reading/ReadingFixture.h"
#include "LarkspireCLI/Support/CLIError.h"
#include "LarkspireCLI/Support/PropertyScanner.h"
#include "LarkspireCLI/Support/PropertyValidator.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::ProcessResult;
using Type = LKPropertyType;

LKPropertyDefinition limited(Type type) {
  LKPropertyDefinition definition;
  definition.name = "P";
  definition.type = type;
  definition.options = {"High", "Done, really", "Ü"};
  definition.minValue = -1.5;
  definition.maxValue = 10;
  definition.maxLength = 3;
  return definition;
}

struct ValueCase {
  Type type;
  std::string value;
  std::string complaint = "";  // after `Value "V" `; empty for a value that is written as it is
  std::string written = "";    // where it differs
};

TEST(PropertyValues, AreHeldAgainstTheirDefinition) {
  const std::string notNumber = "is not a valid number.";
  const std::string notDate = "is not a valid date. Use YYYY-MM-DD format.";
  const std::string notTime = "is not a valid date+time. Use YYYY-MM-DDTHH:MM format.";
  const std::string notBoolean = "is not a valid boolean. Use true/false, yes/no, or 1/0.";
  const std::string notRating = "is not a valid rating. Use 1–5.";
  const std::string notOption =
      "is not a valid option for \"P\".\n  Available options: High, Done, really, Ü";
  const std::vector<ValueCase> cases = {
      {Type::text, "e\u0301👨‍👩‍👧é"},
      {Type::url, "four", "exceeds maximum length of 3"},
      {Type::number, "-1.5"},
      {Type::number, "+1e1"},
      {Type::number, "-1.51", "is below minimum -1.5"},
      {Type::number, "10.5", "exceeds maximum 10"},
      {Type::number, "", notNumber},
      {Type::number, "1,5", notNumber},
      {Type::number, "nan", notNumber},
      {Type::number, "+-1", notNumber},
      {Type::date, "2026-13-45"},
      {Type::date, "2026-3-14", notDate},
      {Type::date, "2026-03-14 ", notDate},
      {Type::dateTime, "2026-03-14T09:26"},
      {Type::dateTime, "2026-03-14", notTime},
      {Type::checkbox, "YES"},
      {Type::checkbox, "on", notBoolean},
      {Type::rating, "5"},
      {Type::rating, "6", notRating},
      {Type::rating, "0", notRating},
      {Type::rating, "4.0", notRating},
      {Type::singleSelect, "hIGH", "", "High"},
      {Type::singleSelect, "done, REALLY", "", "Done, really"},
      {Type::singleSelect, "", notOption},
      {Type::multiSelect, "high,ü", "", "High, Ü"},
      {Type::multiSelect, "[ü, 'done, really']", "", "[Ü, \"Done, really\"]"},
      {Type::multiSelect, " , ", "cannot be empty. Provide comma-separated options."},
      {Type::project, "anything at all"},
  };
  for (const ValueCase& each : cases) {
    SCOPED_TRACE(std::string(rawValue(each.type)) + " " + each.value);
    try {
      const std::string written = PropertyValidator::validateValue(each.value, limited(each.type));
      EXPECT_EQ(each.complaint, "");
      EXPECT_EQ(written, each.written.empty() ? each.value : each.written);
    } catch (const CLIError& error) {
      EXPECT_EQ(error.exitStatus(), 7);
      EXPECT_EQ(error.message(), "Value \"" + each.value + "\" " + each.complaint);
    }
  }
  try {  // the item is named, not the whole value
    PropertyValidator::validateValue("high, low", limited(Type::multiSelect));
    ADD_FAILURE() << "nothing thrown";
  } catch (const CLIError& error) {
    EXPECT_EQ(error.message(), "Value \"low\" " + notOption);
  }
}

class PropertiesCommands : public test::Reading {
 protected:
  void noteWith(const std::string& path, const std::map<std::string, std::string>& properties,
                const std::string& body = "Words.") const {
    note(path, body, 0, [&](LKFileFrontMatter& front) { front.userProperties = properties; });
  }
  std::string block(const std::string& path) const { return test::readWhole(file(path)); }
};

TEST_F(PropertiesCommands, FindWhatStandsInTheBlocksOfNotesAlone) {
  noteWith("b/Plan", {{"Mood", "calm"}, {"mood", "wild"}, {"n", "1"}});
  noteWith("6F0C2A9E-41B7-4E55-9A7C-0E1B2C3D4E5F", {{"mood", ""}});
  noteWith(".daily/20260310", {{"mood", "calm"}});
  noteWith(".trash/Gone", {{"mood", "gone"}});
  noteWith("Long", {{"mood", std::string(9'000, 'x')}}, std::string(50'000, 'y'));
  noteWith("Latin body", {{"n", "2"}}, std::string(9'000, 'z') + "\xE9");
  noteWith("Latin start", {{"n", "5"}}, "\xE9");
  test::writeWhole(notes() / "No line feed.MD", "---\nid: " + UUID::random().text() +
                                                    "\ncreated: 2026-03-14T09:26:53Z\nn: 3\n---");
  test::writeWhole(notes() / "Latin.md", "---\nid: 0\nn: \xE9\n---\n");
  test::writeWhole(notes() / "Plain.md", "n: 4\n" + std::string(9'000, 'z'));
  fs::create_directory(notes() / "n.md");

  const std::map<std::string, int64_t> counts = {{"mood", 4}, {"n", 4}, {"unused", 0}};
  LKPropertyDefinition unused;
  unused.name = "Unused";
  EXPECT_EQ(PropertyScanner::usageCounts(notes(), {unused}), counts);
  std::vector<std::string> found;
  for (const NoteProperty& each : PropertyScanner::scanAllProperties(notes(), false)) {
    found.push_back(each.noteTitle + "|" + each.key + "|" + each.value.substr(0, 4));
  }
  EXPECT_EQ(found, (std::vector<std::string>{"Untitled|mood|", "Latin body|n|2", "Latin start|n|5",
                                             "Long|mood|xxxx", "No line feed|n|3", "Plan|Mood|calm",
                                             "Plan|mood|wild", "Plan|n|1"}));

  const ProcessResult orphans = lk("properties|orphans");
  EXPECT_EQ(orphans.out,
            "2 orphaned property keys (no schema definition):\nmood (4 notes)\nn (4 notes)\n");
  EXPECT_EQ(titles("properties|notes|MOOD|--value|CALM"),
            (std::vector<std::string>{"20260310", "Plan"}));
}

TEST_F(PropertiesCommands, HoldEditAndCreateToTheSchema) {
  ASSERT_EQ(
      lk("properties|add|Stage|--type|multiSelect|--property-options|Draft,Done,draft").status, 0);
  ASSERT_EQ(lk("properties|add|owner|--type|text|--required").status, 0);
  noteWith("Plan", {{"owner", "Ann"}});
  EXPECT_EQ(lk("edit|Plan|--set-property|stage=done, DRAFT").err, "");
  EXPECT_NE(block("Plan").find("\nstage: Done, Draft\n"), std::string::npos);
  EXPECT_EQ(titles("properties|notes|stage|--value|draft"), std::vector<std::string>{"Plan"});

  const std::string before = block("Plan");
  const ProcessResult refused = lk("edit|Plan|--set-property|owner=Bo|--set-property|Stage=x");
  EXPECT_EQ(refused.status, 7);
  EXPECT_EQ(refused.err,
            "Error: Value \"x\" is not a valid option for \"Stage\".\n  Available options: Draft, "
            "Done\n");
  EXPECT_EQ(lk("edit|Plan|--set-property|size=9").status, 7);
  EXPECT_EQ(lk("create|New|--property|size=9").status, 7);
  EXPECT_FALSE(fs::exists(file("New")));
  EXPECT_EQ(block("Plan"), before);

  EXPECT_EQ(lk("edit|Plan|--set-property|size=9|--force").status, 0);
  EXPECT_NE(block("Plan").find("\nsize: 9\n"), std::string::npos);
  EXPECT_EQ(lk("edit|Plan|--remove-property|owner").err,
            "Warning: \"owner\" is marked as required.\n");
  EXPECT_EQ(block("Plan").find("owner"), std::string::npos);
  EXPECT_EQ(lk("create|New|--property|stage=[DONE]").status, 0);
  EXPECT_NE(block("New").find("\nstage: [Done]\n"), std::string::npos);
}

TEST_F(PropertiesCommands, SayWhenTheSchemaIsDamagedAndLeaveItAlone) {
  const fs::path schema = notes() / ".properties/schema.json";
  fs::create_directory(schema.parent_path());
  test::writeWhole(schema, "[{");
  const ProcessResult listed = lk("properties");
  EXPECT_EQ(listed.status, 0);
  EXPECT_TRUE(listed.out.starts_with("manuscript-role  singleSelect  ")) << listed.out;
  EXPECT_TRUE(listed.err.starts_with("Warning: The property schema in " + schema.string()));
  EXPECT_EQ(lk("properties|--quiet").err, "");
  const ProcessResult added = lk("properties|add|x|--type|text|--json");
  EXPECT_EQ(added.status, 1);
  const std::string message = parseJson(added.err).at("message");
  EXPECT_NE(message.find(schema.string()), std::string::npos) << message;
  EXPECT_EQ(test::readWhole(schema), "[{");
}

}  // namespace
}  // namespace lk
