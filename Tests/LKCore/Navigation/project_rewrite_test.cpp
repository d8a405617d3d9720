#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Navigation/LKProjectTextRewrite.h"
#include "Support/Growth.h"

namespace lk {
namespace {

namespace rewrite = LKProjectTextRewrite;

// The words were project/projects, then area/areas, and are client/clients.
LKProjectTermsSnapshot termsNow() {
  LKProjectTermsSnapshot terms;
  terms.metadataKeywords = {"client", "area", "project"};
  terms.tagPrefixes = {"clients", "areas", "projects"};
  terms.setKeywordTables();
  return terms;
}

struct RewriteCase {
  std::string name, before, after;
  size_t tagHits = 0, metaHits = 0;
  bool includeSubtree = false;
};

RewriteCase unchanged(const std::string& name, const std::string& text) {
  return {name, text, text};
}

std::string nameOf(const testing::TestParamInfo<RewriteCase>& info) {
  return info.param.name;
}

void expectRewritten(const rewrite::Rewritten& result, const RewriteCase& expected) {
  EXPECT_EQ(result.text, expected.after);
  EXPECT_EQ(result.counts.tagHits, expected.tagHits);
  EXPECT_EQ(result.counts.metaHits, expected.metaHits);
}

class Rename : public testing::TestWithParam<RewriteCase> {};

TEST_P(Rename, OfAcmeToNimbus) {
  expectRewritten(
      rewrite::rename(GetParam().before, "acme", "Nimbus", GetParam().includeSubtree, termsNow()),
      GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Rename,
    testing::Values(
        RewriteCase{"every_word", "#projects/acme #areas/acme #clients/acme",
                    "#clients/Nimbus #clients/Nimbus #clients/Nimbus", 3, 0},
        RewriteCase{"any_case", "#Projects/ACME\n- [ ] Project:Acme",
                    "#clients/Nimbus\n- [ ] client:Nimbus", 1, 1},
        unchanged("longer_names", "#projects/acme-2 #projects/acmes #projects/acme_"),
        unchanged("letters_beyond_ascii", "#projects/acmé #projects/acmee\u0301 #projects/acme٣"),
        unchanged("combining_mark", "#projects/acme\u0301"),
        RewriteCase{"full_stop", "#projects/acme.", "#clients/Nimbus.", 1, 0},
        unchanged("path_below", "#projects/acme/x\n- [ ] a project:acme/x"),
        RewriteCase{"subtree", "#projects/acme/x\n- [ ] a project:acme/x area:acme b",
                    "#clients/Nimbus/x\n- [ ] a client:Nimbus/x client:Nimbus b", 1, 2, true},
        unchanged("no_task", "Say project:acme\n* [ ] a project:acme\n- [?] project:acme"),
        RewriteCase{"task_marks",
                    "\t- [x] project:acme\n  - [/]  project:acme\r\n- [X] a area:acme",
                    "\t- [x] client:Nimbus\n  - [/]  client:Nimbus\r\n- [X] a client:Nimbus", 0, 3},
        unchanged("word_start", "- [ ] subproject:acme (project:acme a\tproject:acme"),
        RewriteCase{
            "fence", "```\n#projects/acme\n```\n#projects/acme\n ```c\n- [ ] project:acme\n```",
            "```\n#projects/acme\n```\n#clients/Nimbus\n ```c\n- [ ] project:acme\n```", 1, 0},
        RewriteCase{"unpaired_fence", "```\n```\n```\n#projects/acme",
                    "```\n```\n```\n#clients/Nimbus", 1, 0},
        RewriteCase{"other_line_ends", "a\u2028- [ ] project:acme\rproject:acme",
                    "a\u2028- [ ] client:Nimbus\rproject:acme", 0, 1},
        RewriteCase{"side_by_side", "#projects/acme#projects/acme",
                    "#clients/Nimbus#clients/Nimbus", 2, 0}),
    nameOf);

TEST(Rename, FindsNamesAsTheyAreSpelledElsewhere) {
  const LKProjectTermsSnapshot terms;
  const auto renamed = [&](std::string_view text, std::string_view name) {
    return rewrite::rename(text, name, "x", false, terms).text;
  };
  EXPECT_EQ(renamed("#projects/cafe\u0301.", "Café"), "#projects/x.");
  EXPECT_EQ(renamed("#projects/ΠΡΟΣ", "προς"), "#projects/x");
  EXPECT_EQ(renamed("#projects/日本語 #projects/日本、", "日本"), "#projects/日本語 #projects/x、");
  for (const char* unwritable : {"", "a b", "a\n"}) {
    EXPECT_EQ(rewrite::rename("#projects/a b", unwritable, "x", true, terms).text, "#projects/a b");
    EXPECT_EQ(rewrite::rename("#projects/a", "a", unwritable, true, terms).text, "#projects/a");
  }
}

class Reterm : public testing::TestWithParam<RewriteCase> {};

TEST_P(Reterm, BringsEarlierWordsUpToDate) {
  expectRewritten(rewrite::reterm(GetParam().before, termsNow()), GetParam());
  EXPECT_EQ(rewrite::reterm(GetParam().after, termsNow()),
            (rewrite::Rewritten{GetParam().after, {}}));
}

INSTANTIATE_TEST_SUITE_P(
    Texts, Reterm,
    testing::Values(RewriteCase{"words", "#projects/x/Y, #Areas/z\n- [ ] a project:x AREA:z",
                                "#clients/x/Y, #clients/z\n- [ ] a client:x client:z", 2, 2},
                    unchanged("in_use_stay", "#Clients/x\n- [ ] Client:x"),
                    unchanged("no_name", "#projects/ #projects #projects/.\n- [ ] project: a"),
                    RewriteCase{"name_like_a_word", "#projects/projects/x\n- [ ] project:#areas/x",
                                "#clients/projects/x\n- [ ] client:#clients/x", 2, 1},
                    unchanged("fence", "```\n#areas/x\n```")),
    nameOf);

struct StripCase : RewriteCase {
  rewrite::StripScope scope = rewrite::StripAll{};
};

class Strip : public testing::TestWithParam<StripCase> {};

TEST_P(Strip, RemovesAcmeAndItsBlank) {
  const std::vector<std::string> names = {"acme", "", "other"};
  expectRewritten(rewrite::strip(GetParam().before, names, GetParam().scope, termsNow()),
                  GetParam());
}

const char* const kMixed = "a #areas/acme b\n- [ ] c area:acme d #areas/acme\n- [ ] area:other e";

INSTANTIATE_TEST_SUITE_P(
    Texts, Strip,
    testing::Values(
        StripCase{{"all", kMixed, "a b\n- [ ] c d\n- [ ] e", 2, 2}},
        StripCase{
            {"body_tags", kMixed, "a b\n- [ ] c area:acme d #areas/acme\n- [ ] area:other e", 1, 0},
            rewrite::StripBodyTags{}},
        StripCase{{"tokens", kMixed, "a #areas/acme b\n- [ ] c d #areas/acme\n- [ ] e", 0, 2},
                  rewrite::StripTaskMeta{}},
        StripCase{{"one_line", kMixed, "a #areas/acme b\n- [ ] c d #areas/acme\n- [ ] area:other e",
                   0, 1},
                  rewrite::StripTaskMeta{1}},
        StripCase{unchanged("line_that_is_not_there", kMixed), rewrite::StripTaskMeta{9}},
        StripCase{{"line_behind_the_block", "---\nid: 1\n---\n\n- [ ] area:acme\n- [ ] area:acme",
                   "---\nid: 1\n---\n\n- [ ] area:acme\n- [ ] ", 0, 1},
                  rewrite::StripTaskMeta{1}},
        StripCase{{"block_stays", "---\nx: #areas/acme\n---\n#areas/acme x",
                   "---\nx: #areas/acme\n---\nx", 1, 0}},
        StripCase{{"mark_and_level_stay",
                   "\t- [ ] area:acme area:other\n\t#areas/acme x\n- #areas/acme",
                   "\t- [ ] \n\tx\n- ", 2, 2}},
        StripCase{{"one_blank", "a  #areas/acme  b (#areas/acme)", "a   b ()", 2, 0}},
        StripCase{unchanged("other_names", "#areas/acme/x #areas/acmes")},
        StripCase{
            {"fence", "#areas/acme\n```\n#areas/acme\n```", "\n```\n#areas/acme\n```", 1, 0}}),
    [](const auto& row) { return row.param.name; });

TEST(ProjectNames, AreRenamedWithTheirSubtree) {
  const auto name = [](const char* text, bool subtree) {
    return rewrite::renameProjectName(text, "a/b", "N", subtree).value_or("-");
  };
  EXPECT_EQ(name("a/b", false) + name("A/B/c", false) + name("a/bc", true), "N--");
  EXPECT_EQ(name("A/B/C", true), "N/C");
  const auto tag = [](const char* text, bool subtree) {
    return rewrite::renameProjectTagText(text, "acme", "N", subtree, termsNow()).value_or("-");
  };
  EXPECT_EQ(tag("Areas/Acme", false), "Areas/N");
  EXPECT_EQ(tag("projects/acme/x", true), "projects/N/x");
  EXPECT_EQ(tag("projects/acme/x", false) + tag("other/acme", true), "--");
}

TEST(CodeBlocks, AreStretchesOfWholeLines) {
  const auto marked = [](std::string_view text) {
    return rewrite::transformOutsideCodeBlocks(
               text,
               [](std::string_view stretch) {
                 return rewrite::Rewritten{"<" + std::string(stretch) + ">", {}};
               })
        .text;
  };
  EXPECT_EQ(marked(""), "<>");
  EXPECT_EQ(marked("a\n```\nb\n```\n```\n```\nc\n"), "<a>\n```\nb\n```\n```\n```\n<c\n>");
  EXPECT_EQ(marked("```\n```"), "```\n```");
  EXPECT_EQ(marked("\n```\n\t```\n"), "<>\n```\n\t```\n<>");
}

// --- Over many texts -----------------------------------------------------------------------------

std::string randomText(std::mt19937& random) {
  static const auto kParts = text::split(
      "#projects/acme|#areas/|Acme|acme|/|- [ ] |\t| project:acme| client:acme| "
      "|\n|\n```\n|.|é|-|#|"
      "x|area:|日本|- [x]|\n- [/] ",
      '|');
  std::string text;
  for (int i = 0; i < 40; ++i) text += kParts[random() % kParts.size()];
  return text;
}

// The rename said again with patterns, line by line.
std::string modelRename(std::string_view text, bool includeSubtree) {
  const std::string over =
      std::string("acme(?![\\p{L}\\p{M}\\p{Nd}_") + (includeSubtree ? "-])" : "/-])");
  const Pattern tag("#(clients|areas|projects)/" + over, Pattern::Case::insensitive);
  const Pattern token("(?<= )(client|area|project):" + over, Pattern::Case::insensitive);
  const Pattern task(R"(^[ \t]*- \[[ xX/-]\]( |$))");
  std::vector<std::string_view> lines = text::split(text, '\n');
  std::vector<size_t> fences;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (text::trimmedBlanks(lines[i]).starts_with("```")) fences.push_back(i);
  }
  std::string result;
  for (size_t i = 0; i < lines.size(); ++i) {
    const auto before =
        static_cast<size_t>(std::ranges::lower_bound(fences, i + 1) - fences.begin());
    const bool isFence = before > 0 && fences[before - 1] == i;
    const bool isFenced = before > 0 && (before % 2 == 0 ? isFence : before < fences.size());
    std::string line(lines[i]);
    if (!isFenced) line = tag.replacingAll(line, "#clients/nimbus");
    if (!isFenced && task.matches(line)) line = token.replacingAll(line, "client:nimbus");
    result.append(i == 0 ? "" : "\n").append(line);
  }
  return result;
}

TEST(ProjectRewrites, LeaveNoHitAndEveryOtherByte) {
  std::mt19937 random(20260314);
  size_t hits = 0;
  for (int round = 0; round < 2000; ++round) {
    const std::string text = randomText(random);
    const bool subtree = round % 2 == 0;
    const auto renamed = rewrite::rename(text, "acme", "nimbus", subtree, termsNow());
    ASSERT_EQ(renamed.text, modelRename(text, subtree)) << text;
    ASSERT_EQ(modelRename(renamed.text, subtree), renamed.text) << "a hit is left";
    hits += renamed.counts.tagHits + renamed.counts.metaHits;
  }
  EXPECT_GT(hits, 2000U);
}

TEST(ProjectRewrites, TakeTimeLinearInHostileText) {
  constexpr size_t kBytes = size_t{16} * 1024;
  for (const char* unit :
       {"#", "#projects/", " project:", "#projects/acme", "- #projects/acme ", " ", "\t", "`",
        "\n```", "\u0301", "é", " project:acme", "#projects/日"}) {
    const double times = test::growth(unit, kBytes, [](const std::string& rest) {
      const std::string text = "- [ ] " + rest;
      rewrite::rename(text, "acme", "nimbus", true, termsNow());
      rewrite::reterm(text, termsNow());
      rewrite::strip(text, std::vector<std::string>{"acme"}, rewrite::StripAll{}, termsNow());
    });
    EXPECT_LE(times, 8) << unit;
  }
}

}  // namespace
}  // namespace lk
