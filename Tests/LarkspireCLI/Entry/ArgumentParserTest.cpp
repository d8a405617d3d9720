#include "LarkspireCLI/Support/ArgumentParser.h"

#include <gtest/gtest.h>

namespace lk {
namespace {

using Words = std::vector<std::string>;

// A command's fields, one of each kind, and their printable form.
struct Fields {
  std::string title;
  std::optional<std::string> place;
  std::optional<std::string> content;
  std::vector<std::string> tags;
  std::optional<int> limit;
  std::string sort = "modified";
  bool force = false;
  bool help = false;

  ArgumentList declared() {
    ArgumentList arguments;
    arguments.positional("title", title, "");
    arguments.positional("place", place, "");
    arguments.option("--content", content, "");
    arguments.option("--tag", tags, "");
    arguments.option("--limit", limit, "");
    arguments.option("--sort", sort, "");
    arguments.flag("--force", force, "");
    arguments.flag(helpFlag, help, "").shortName = "-h";
    return arguments;
  }

  std::string shown() const {
    std::string text = "<" + title + ">";
    if (place) text += " place=<" + *place + ">";
    if (content) text += " content=<" + *content + ">";
    for (const std::string& tag : tags) text += " tag=<" + tag + ">";
    if (limit) text += " limit=" + std::to_string(*limit);
    if (sort != "modified") text += " sort=<" + sort + ">";
    if (force) text += " force";
    if (help) text += " help";
    return text;
  }
};

std::string parsed(const Words& words) {
  Fields fields;
  try {
    parseArguments(fields.declared(), words);
    return fields.shown();
  } catch (const ArgumentError& error) {
    const std::string hint = error.nearest().empty() ? "" : " [" + error.nearest() + "]";
    return error.description() + hint;
  }
}

struct WordsCase {
  const char* name;
  Words words;
  std::string result;
};

void PrintTo(const WordsCase& row, std::ostream* out) {
  *out << row.name;
}

class ArgumentWords : public testing::TestWithParam<WordsCase> {};

TEST_P(ArgumentWords, reachTheFieldsUnchanged) {
  EXPECT_EQ(parsed(GetParam().words), GetParam().result);
}

std::string wordsCaseName(const testing::TestParamInfo<WordsCase>& row) {
  return row.param.name;
}

const WordsCase orderCases[] = {
    {"options_after", {"T", "--force", "--limit", "3"}, "<T> limit=3 force"},
    {"options_before", {"--limit", "3", "--force", "T"}, "<T> limit=3 force"},
    {"options_between", {"T", "--content", "x", "P"}, "<T> place=<P> content=<x>"},
    {"repeated_values_in_order", {"T", "--tag", "b", "--tag=a"}, "<T> tag=<b> tag=<a>"},
    {"last_single_value_wins", {"T", "--sort", "a", "--sort", "b"}, "<T> sort=<b>"},
    {"flag_twice", {"T", "--force", "--force"}, "<T> force"},
    {"words_after_separator", {"--", "--force", "--"}, "<--force> place=<-->"},
    {"separator_alone", {"T", "--"}, "<T>"},
};
INSTANTIATE_TEST_SUITE_P(order, ArgumentWords, testing::ValuesIn(orderCases), wordsCaseName);

const WordsCase valueCases[] = {
    {"brackets",
     {"[a,b]", "--content", "[c, d]", "--tag", "[e]"},
     "<[a,b]> content=<[c, d]> tag=<[e]>"},
    {"brackets_after_equals",
     {"[]", "--tag=[a,b]", "--content=[]"},
     "<[]> content=<[]> tag=<[a,b]>"},
    {"braces", {"{}", "--content", "{}", "--tag={}"}, "<{}> content=<{}> tag=<{}>"},
    {"percent_signs",
     {"%%", "%%", "--tag", "%%", "--content=%%"},
     "<%%> place=<%%> content=<%%> tag=<%%>"},
    {"commas", {"a,b", "--tag", "a,b", "--content", ","}, "<a,b> content=<,> tag=<a,b>"},
    {"empty", {"", "", "--content", "", "--tag", ""}, "<> place=<> content=<> tag=<>"},
    {"empty_after_equals", {"--content=", "T", "--tag=", "P"}, "<T> place=<P> content=<> tag=<>"},
    {"equals_in_value", {"T", "--content=a=b", "--tag", "k=v="}, "<T> content=<a=b> tag=<k=v=>"},
    {"ends_in_equals", {"a=", "--tag", "--x=", "--content", "b="}, "<a=> content=<b=> tag=<--x=>"},
    {"option_as_value",
     {"T", "--content", "--force", "--tag", "-h"},
     "<T> content=<--force> tag=<-h>"},
    {"separator_as_value", {"T", "--content", "--", "--force"}, "<T> content=<--> force"},
    {"separator_after_value", {"--tag", "a", "--", "-T"}, "<-T> tag=<a>"},
    {"negative_numbers", {"-5", "-1.5", "--limit", "-2"}, "<-5> place=<-1.5> limit=-2"},
    {"dashes", {"-", "---", "--content", "-"}, "<-> place=<---> content=<->"},
    {"list_item", {"- [ ] buy", "- milk"}, "<- [ ] buy> place=<- milk>"},
    {"slashes", {"/force", "/content:x"}, "</force> place=</content:x>"},
    {"plus_signs", {"++", "+x"}, "<++> place=<+x>"},
    {"option_like_text", {"force", "help"}, "<force> place=<help>"},
    {"quotes_and_lines", {"a\nb\t'\"\\n", "--content", "  \n"}, "<a\nb\t'\"\\n> content=<  \n>"},
    {"outside_ascii", {"Grüße 日本", "--tag=é"}, "<Grüße 日本> tag=<é>"},
    {"true_is_text", {"true", "--content", "false"}, "<true> content=<false>"},
};
INSTANTIATE_TEST_SUITE_P(values, ArgumentWords, testing::ValuesIn(valueCases), wordsCaseName);

const WordsCase refusedCases[] = {
    {"unknown_option", {"T", "--contents", "x"}, "Unknown option '--contents'. [--content]"},
    {"unknown_assigned", {"T", "--tagg=x"}, "Unknown option '--tagg'. [--tag]"},
    {"one_dash", {"T", "-force"}, "Unknown option '-force'. [--force]"},
    {"nothing_near", {"T", "--zzzzzz"}, "Unknown option '--zzzzzz'."},
    {"other_case", {"T", "--Force"}, "Unknown option '--Force'. [--force]"},
    {"too_many", {"T", "P", "Q", "R"}, "Unexpected argument 'Q'."},
    {"too_many_after_separator", {"T", "P", "--", "--tag"}, "Unexpected argument '--tag'."},
    {"missing_argument", {"--force"}, "Missing argument <title>."},
    {"missing_value", {"T", "--tag"}, "Missing value for '--tag'."},
    {"no_number", {"T", "--limit", "3x"}, "'3x' isn't a whole number for '--limit'."},
    {"huge_number",
     {"T", "--limit=99999999999"},
     "'99999999999' isn't a whole number for '--limit'."},
    {"empty_number", {"T", "--limit="}, "'' isn't a whole number for '--limit'."},
    {"flag_with_value", {"T", "--force=no"}, "Option '--force' doesn't take a value."},
    {"flag_with_true", {"T", "--force=true"}, "Option '--force' doesn't take a value."},
    {"flag_with_nothing", {"T", "--force="}, "Option '--force' doesn't take a value."},
    {"help_outweighs_faults", {"--wrong", "--limit", "x", "-h"}, "<> help"},
};
INSTANTIATE_TEST_SUITE_P(refused, ArgumentWords, testing::ValuesIn(refusedCases), wordsCaseName);

TEST(NearestWord, isNearEnoughToBeMeant) {
  const std::vector<std::string_view> words = {"tasks", "tags", "list", "notifications"};
  const std::pair<const char*, const char*> rows[] = {
      {"lits", "list"}, {"tsaks", "tasks"},         {"tag", "tags"}, {"tas", "tags"},
      {"lst", "list"},  {"notif", "notifications"}, {"xy", ""},      {"delete", ""},
      {"", ""},         {"täsks", "tasks"}};
  for (const auto& [word, nearest] : rows) EXPECT_EQ(nearestWord(word, words), nearest) << word;
}

}  // namespace
}  // namespace lk
