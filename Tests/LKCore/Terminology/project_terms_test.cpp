#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "LKCore/Base/Notices.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/Terminology/LKProjectTerms.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;
using test::readWhole;
using test::writeWhole;

struct WordsCase {
  std::string name, singular, plural, message;
};

class Words : public testing::TestWithParam<WordsCase> {};

TEST_P(Words, AreJudgedInOrder) {
  EXPECT_EQ(LKProjectTerms::validate(GetParam().singular, GetParam().plural).value_or("fine"),
            GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Pairs, Words,
    testing::Values(
        WordsCase{"good", " client\t", "clients ", "fine"},
        WordsCase{"beyond_ascii", "Übung", "Übungen", "fine"},
        WordsCase{"empty", " ", "clients", "Both words are required."},
        WordsCase{"inner_blank", "client", "my clients", "Words cannot contain spaces."},
        WordsCase{"line_end", "client\n", "clients", "Words cannot contain spaces."},
        WordsCase{"equal", "Sheep", "sheep", "The singular and plural words must differ."},
        WordsCase{"reserved", "Due", "dues", "“Due” is reserved for task metadata."},
        WordsCase{"underscore", "client", "my_clients",
                  "“my_clients” contains characters not allowed in tags."},
        WordsCase{"no_tag_opens_so", "area", "2areas",
                  "“2areas” contains characters not allowed in tags."},
        WordsCase{"plural_before_colon", "a:b", "a_b",
                  "“a_b” contains characters not allowed in tags."},
        WordsCase{"colon", "a:b", "clients", "“a:b” cannot contain “:” or “/”."},
        WordsCase{"slash", "a/b", "clients", "“a/b” cannot contain “:” or “/”."}),
    [](const auto& testCase) { return testCase.param.name; });

class Terms : public testing::Test {
 protected:
  Terms() {
    LKCollectionPath::setOverrideDocumentsDirectory(home_.path());
    LKProjectTerms::invalidateCache();
  }
  ~Terms() override {
    LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt);
    LKProjectTerms::invalidateCache();
  }

  fs::path file() const { return home_ / ".config/terminology.json"; }
  void write(const std::string& bytes) {
    fs::create_directories(file().parent_path());
    writeWhole(file(), bytes);
    LKProjectTerms::invalidateCache();
  }

  test::TempFolder home_;
};

TEST_F(Terms, AChangeKeepsTheWordsBeforeAndWhatItDoesNotKnow) {
  write(R"({"singular":"Area","plural":"Areas","colour":{"x":[1]}})");
  int posted = 0;
  const auto watch = notices::observe("com.larkspire.terminologyChanged", [&] { ++posted; });
  const auto before = LKProjectTerms::snapshot();
  LKProjectTerms::update(" Client ", "Clients");
  EXPECT_EQ(posted, 1);
  EXPECT_EQ(before->singular, "Area") << "a snapshot stays as it was";
  const auto terms = LKProjectTerms::snapshot();
  EXPECT_EQ(terms->singular, "Client");
  EXPECT_EQ(terms->metadataKeywords, (std::vector<std::string>{"client", "area", "project"}));
  EXPECT_EQ(terms->tagPrefixes, (std::vector<std::string>{"clients", "areas", "projects"}));
  EXPECT_EQ(terms->keywordScalars.front().withColon, "client:");
  const std::string text = readWhole(file());
  EXPECT_NE(text.find("\"colour\" : {"), std::string::npos) << text;
  LKProjectTerms::update("project", "projects");
  EXPECT_EQ(LKProjectTerms::snapshot()->previousSingulars,
            (std::vector<std::string>{"area", "client"}));
}

TEST_F(Terms, TheDefaultsAreNeverPreviousWords) {
  LKProjectTerms::update("client", "clients");
  LKProjectTerms::update("client", "accounts");
  EXPECT_EQ(readWhole(file()),
            "{\n  \"plural\" : \"accounts\",\n  \"previousPlurals\" : [\n    \"clients\"\n  ],\n"
            "  \"previousSingulars\" : [],\n  \"singular\" : \"client\"\n}\n");
}

TEST_F(Terms, WordsThatAreRefusedChangeNothing) {
  EXPECT_THROW(LKProjectTerms::update("due", "dues"), LKProjectTermsError);
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(Terms, AFileThatCannotBeReadMeansTheDefaultsAndIsKept) {
  for (const char* bytes : {"", "[]", "{\"singular\":", "{\"singular\":1,\"plural\":\"a\"}"}) {
    write(bytes);
    EXPECT_EQ(*LKProjectTerms::snapshot()->tagPrefixes.begin(), "projects") << bytes;
    EXPECT_EQ(readWhole(file()), bytes);
  }
  write("{\"singular\":");
  LKProjectTerms::update("client", "clients");
  size_t kept = 0;
  for (const auto& entry : fs::directory_iterator(file().parent_path())) {
    if (entry.path() != file() && readWhole(entry.path()) == "{\"singular\":") ++kept;
  }
  EXPECT_EQ(kept, 1U);
}

TEST(ProjectTags, NameTheProjectInTheirOwnCase) {
  LKProjectTermsSnapshot terms;
  terms.tagPrefixes = {"i̇ler", "work/clients", "projects"};
  EXPECT_EQ(terms.projectName("PROJECTS/Acme/Site"), "Acme/Site");
  EXPECT_EQ(terms.projectName("Work/Clients/x"), "x");
  EXPECT_EQ(terms.projectName("İLER/Ağaç"), "Ağaç") << "longer in lower case";
  for (const char* other : {"work/x", "projects/", "projects", "projectsx/a", ""}) {
    EXPECT_EQ(terms.projectName(other), std::nullopt) << other;
  }
}

}  // namespace
}  // namespace lk
