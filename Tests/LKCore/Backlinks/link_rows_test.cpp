#include "LKCore/Backlinks/LKLinkRows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "LKCore/DataModel/MemoryStore.h"

namespace lk {
namespace {

using LKLinkRows::Change;
using LKLinkRows::References;
using Lines = std::vector<std::string>;

// --- Lines ---------------------------------------------------------------------------------------

struct LineRow {
  const char* name;
  References references;
  std::string body;
  Lines lines;  // "reference@index text"
};

class ContextLines : public testing::TestWithParam<LineRow> {};

TEST_P(ContextLines, AreTheFirstOfEachReference) {
  Lines lines;
  for (const auto& [reference, line] :
       LKLinkRows::contextLines(GetParam().references, GetParam().body)) {
    lines.push_back(reference + "@" + std::to_string(line.index) + " " + line.text);
  }
  EXPECT_EQ(lines, GetParam().lines);
}

const LineRow kLines[] = {
    {"NoLinks", {"a"}, "a\n[a]\n", {}},
    {"FirstOfMany", {"a"}, "x\n\t[[a]] one \n[[a]] two", {"a@1 [[a]] one"}},
    {"LineFeeds", {"a"}, "1\n\n[[a]]", {"a@2 [[a]]"}},
    {"CarriageReturns", {"a"}, "1\r\r[[a]]\r", {"a@2 [[a]]"}},
    {"BothTogether", {"a"}, "1\r\n\r\n[[a]]\r\n", {"a@2 [[a]]"}},
    {"SeveralInALine", {"a", "b"}, "[[b]][[a]]", {"a@0 [[b]][[a]]", "b@0 [[b]][[a]]"}},
    {"AsWritten", {" a ", "A"}, "[[ a ]] [[A]]", {" a @0 [[ a ]] [[A]]", "A@0 [[ a ]] [[A]]"}},
    {"MoreBrackets", {"a", "b"}, "[[[a]]\n[[b]]]", {"a@0 [[[a]]", "b@1 [[b]]]"}},
    {"UnclosedBefore", {"a"}, "[[ x [[a]] ]]", {"a@0 [[ x [[a]] ]]"}},
    {"OverALineEnd", {"a\nb", "a"}, "[[a\nb]]", {}},
    {"NotThere", {"a", "b"}, "[[a]]\n[[c]]", {"a@0 [[a]]"}},
};

INSTANTIATE_TEST_SUITE_P(Rows, ContextLines, testing::ValuesIn(kLines),
                         [](const auto& row) { return std::string(row.param.name); });

// --- Rows ----------------------------------------------------------------------------------------

class LinkRows : public testing::Test {
 protected:
  LKNote& put(const std::string& title, bool isTrashed = false) {
    LKNote& added = context->notes().insert(LKNote(title, ""));
    added.isTrashed = isTrashed;
    return added;
  }

  LKBackLink& putRow(const std::string& reference, const LKNote* target) {
    LKBackLink row;
    row.id = UUID::random();
    row.targetNoteReference = reference;
    if (target != nullptr) row.targetNoteID = target->id;
    LKBackLink& added = context->backLinks().insert(row);
    setNote(added, &note);
    return added;
  }

  // "reference@index text", and ">" for one with a target, sorted.
  Lines rows() const {
    Lines lines;
    for (const LKBackLink* row : note.backLinks) {
      lines.push_back(row->targetNoteReference + "@" + std::to_string(row->sourceParagraphIndex) +
                      " " + row->sourceParagraph + (row->targetNoteID ? ">" : ""));
    }
    std::ranges::sort(lines);
    return lines;
  }

  LKLinkRows::Outcome sync(const std::string& body, const References& links,
                           const References& dates = {}, bool retries = false) {
    return LKLinkRows::sync(note, body, dates, links, *context, retries);
  }

  std::unique_ptr<LKContext> context = makeMemoryStore();
  LKNote& note = put("Source");
};

TEST_F(LinkRows, FollowTheBody) {
  const LKNote& plan = put("Plan");
  const References both = {"plan", "Gone"};
  auto outcome = sync("x\n[[plan]]\n[[Gone]] [[plan]]", both);
  EXPECT_EQ(outcome, (LKLinkRows::Outcome{Change::links, {plan.id}}));
  EXPECT_EQ(rows(), (Lines{"Gone@2 [[Gone]] [[plan]]", "plan@1 [[plan]]>"}));
  const UUID kept = note.backLinks.front()->id;

  EXPECT_EQ(sync("x\n[[plan]]\n[[Gone]] [[plan]]", both), LKLinkRows::Outcome{});
  outcome = sync("[[plan]]\n[[Gone]] [[plan]]", both);
  EXPECT_EQ(outcome, (LKLinkRows::Outcome{Change::lines, {plan.id}}));
  EXPECT_EQ(note.backLinks.front()->id, kept);

  const LKNote& found = put("gone");
  EXPECT_EQ(sync("[[plan]]\n[[Gone]] [[plan]]", both), LKLinkRows::Outcome{});
  outcome = sync("[[plan]]\n[[Gone]] [[plan]]", both, {}, true);
  EXPECT_EQ(outcome, (LKLinkRows::Outcome{Change::links, {found.id}}));

  EXPECT_EQ(sync("[[plan]]", {"plan"}).targets, std::set<UUID>{found.id});
  EXPECT_EQ(rows(), Lines{"plan@0 [[plan]]>"});
  EXPECT_EQ(sync("", {"plan"}).change, Change::lines) << "no longer written in that form";
  EXPECT_EQ(rows(), Lines{"plan@0 >"});
  EXPECT_EQ(context->backLinks().count(), 1U);
}

TEST_F(LinkRows, GiveADateARowOfItsOwnAndNoTarget) {
  put("20260314");
  sync("@20260314", {}, {"20260314"});
  EXPECT_EQ(rows(), Lines{"20260314@0 "});
  sync("@20260314\n[[20260314]]", {"20260314"}, {"20260314"}, true);
  EXPECT_EQ(rows(), (Lines{"20260314@0 ", "20260314@1 [[20260314]]>"}));
  EXPECT_EQ(sync("@20260314", {}, {"20260314"}).change, Change::none);
  EXPECT_EQ(rows(), Lines{"20260314@1 [[20260314]]>"}) << "a row with a target stays first";
}

TEST_F(LinkRows, AreOneForBothFormsOfAReference) {
  sync("[[caf\u00E9]]", {"caf\u00E9"});
  EXPECT_EQ(sync("[[cafe\u0301]]", {"cafe\u0301"}).change, Change::lines);
  EXPECT_EQ(rows(), Lines{"caf\u00E9@0 [[cafe\u0301]]"});
}

// --- Healing -------------------------------------------------------------------------------------

struct HealRow {
  const char* name;
  References checked;
  bool isVerified;  // to the note "Elsewhere"
  size_t limit;
  std::string replacement;  // the title of a live note; empty for none
  const char* healedTo;     // its title, "" for as before
};

class Healing : public LinkRows, public testing::WithParamInterface<HealRow> {};

TEST_P(Healing, PointsARowWhoseTargetIsTrashedElsewhere) {
  const HealRow& row = GetParam();
  const LKNote& old = put("Plan", true);
  const LKNote& alive = put("Alive");
  const LKNote& elsewhere = put("Elsewhere");
  LKBackLink& link = putRow("Plan", &old);
  const LKBackLink& untouched = putRow("plan", &alive);
  const LKNote* const replacement = row.replacement.empty() ? nullptr : &put(row.replacement);
  std::map<std::string, UUID> verified;
  if (row.isVerified) verified["Plan"] = elsewhere.id;
  const auto changed = LKLinkRows::healTargets(note, row.checked, verified, *context, row.limit);
  const std::string healedTo = row.healedTo;
  const LKNote* const expected = healedTo.empty() ? &old
                                 : row.isVerified ? &elsewhere
                                                  : replacement;
  EXPECT_EQ(link.targetNoteID, expected->id);
  EXPECT_EQ(untouched.targetNoteID, alive.id);
  EXPECT_EQ(changed, healedTo.empty() ? std::set<UUID>{} : (std::set<UUID>{old.id, expected->id}));
}

const HealRow kHealings[] = {
    {"NoReplacement", {}, false, 10, "", ""},
    {"SameTitle", {}, false, 0, "Plan", "Plan"},
    {"AnotherCase", {}, false, 1, "PLAN", "PLAN"},
    {"AnotherCaseBeyondTheLimit", {}, false, 0, "PLAN", ""},
    {"CheckedInVain", {"Plan"}, false, 10, "Plan", ""},
    {"VerifiedByTheCaller", {}, true, 0, "Plan", "Elsewhere"},
};

INSTANTIATE_TEST_SUITE_P(Rows, Healing, testing::ValuesIn(kHealings),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace lk
