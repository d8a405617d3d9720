// Ranks, the order by them, and drops that change files.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <compare>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Base/Pattern.h"
#include "LKCore/Collections/LKCollectionPath.h"
#include "LKCore/DataModel/MemoryStore.h"
#include "LKCore/NoteFiles/LKFileFrontMatter.h"
#include "LKCore/NoteFiles/LKRank.h"
#include "LKCore/NoteRepository/LKNoteFileService.h"
#include "LKCore/NoteRepository/OpenCache.h"
#include "LKCore/Ranks/LKManualSortDrop.h"
#include "LKCore/Ranks/LKRankComparator.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

std::string rankBody(const std::string& rank) {
  static const Pattern form("^[0-9a-z]+_[0-9a-f]{4}$");
  EXPECT_TRUE(form.matches(rank)) << rank;
  return rank.substr(0, rank.find('_'));
}

TEST(Rank, HasTheBodyInTheMiddle) {
  EXPECT_EQ(rankBody(LKRank::first()), "i");
  const std::vector<std::pair<std::string, std::string>> above = {
      {"i_3fa0", "r"}, {"z_ffff", "zi"}, {"zz9", "zzm"}, {"", "i"}, {"a5_0000", "n"}};
  for (const auto& [rank, body] : above) EXPECT_EQ(rankBody(LKRank::after(rank)), body) << rank;
  const std::vector<std::pair<std::string, std::string>> below = {
      {"i_0000", "9"}, {"1_0000", "0"}, {"01", "00"}, {"0z_0000", "0h"}, {"a5_0000", "5"}};
  for (const auto& [rank, body] : below) EXPECT_EQ(rankBody(LKRank::before(rank)), body) << rank;
  const std::vector<std::array<std::string, 3>> between = {
      {"a_0000", "c_0000", "b"},
      {"a_0000", "b_0000", "ai"},
      {"az_0000", "b_0000", "azi"},
      {"", "i_0000", "9"},
      {"a_0000", "az_0000", "ah"},
      // Below the letters there is no room behind a whole body.
      {"a_0000", "ai_0000", "ae"},
      {"a_0000", "ab_0000", "aa"}};
  for (const auto& [lo, hi, body] : between) {
    const std::string rank = LKRank::between(lo, hi);
    EXPECT_EQ(rankBody(rank), body) << lo << " " << hi;
    EXPECT_TRUE(lo < rank && rank < hi) << lo << " " << rank << " " << hi;
  }
  std::set<std::string> suffixes;
  for (int i = 0; i < 20; ++i) suffixes.insert(LKRank::after("i"));
  EXPECT_GT(suffixes.size(), 1U);
  EXPECT_FALSE(LKRank::canPlaceBetween("a_0000", "a_ffff"));
  EXPECT_FALSE(LKRank::canPlaceBetween("b_0000", "a_ffff"));
  EXPECT_TRUE(LKRank::canPlaceBetween("a_ffff", "b"));
  EXPECT_FALSE(LKRank::canInsertBefore("00_1234"));
  EXPECT_TRUE(LKRank::canInsertBefore("01"));
}

TEST(Rank, IsSpreadOverAList) {
  for (const size_t count : {0U, 1U, 2U, 35U, 36U, 5'000U}) {
    const std::vector<std::string> ranks = LKRank::spread(count);
    ASSERT_EQ(ranks.size(), count);
    for (size_t i = 0; i < count; ++i) {
      EXPECT_LE(rankBody(ranks[i]).size(), 4U);
      EXPECT_TRUE(LKRank::canInsertBefore(ranks[i]));
      if (i > 0) EXPECT_TRUE(LKManualSortDrop::rankAt(ranks[i - 1], ranks[i])) << ranks[i];
    }
  }
}

TEST(Rank, HasNoPlaceAmongForeignOnes) {
  const std::vector<std::string> foreign = {"",  "_", "__", "0",      "~",
                                            "A", "é", "a_", "z_zzzz", "日本"};
  for (const std::string& lo : foreign) {
    for (const std::string& hi : foreign) {
      const auto rank = LKManualSortDrop::rankAt(lo, hi);
      EXPECT_TRUE(!rank || (lo < *rank && *rank < hi)) << lo << " " << hi;
    }
    const auto below = LKManualSortDrop::rankAt(std::nullopt, lo);
    EXPECT_TRUE(!below || *below < lo) << lo;
  }
}

// The model is the list itself: after every drop the ranks sort the notes as it stands.
TEST(Rank, KeepsTheOrderOfTenThousandDrops) {
  constexpr size_t kNotes = 40;
  std::mt19937 random(20240131);
  std::vector<size_t> list(kNotes);
  for (size_t i = 0; i < kNotes; ++i) list[i] = i;
  std::vector<std::string> ranks = LKRank::spread(kNotes);
  const auto rankOf = [&](size_t index) { return std::optional(ranks[list[index]]); };
  size_t rebalances = 0;
  for (int drop = 0; drop < 10'000; ++drop) {
    const auto taken = list.begin() + static_cast<std::ptrdiff_t>(random() % kNotes);
    const size_t note = *taken;
    list.erase(taken);
    // Every other drop goes where many go, so that the room there is used up.
    const size_t place = drop % 2 == 0 ? random() % kNotes : random() % 2;
    const auto rank = LKManualSortDrop::rankAt(place > 0 ? rankOf(place - 1) : std::nullopt,
                                               place < list.size() ? rankOf(place) : std::nullopt);
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), note);
    if (rank) {
      ranks[note] = *rank;
    } else {
      ++rebalances;
      const std::vector<std::string> fresh = LKRank::spread(kNotes);
      for (size_t i = 0; i < kNotes; ++i) ranks[list[i]] = fresh[i];
    }
    ASSERT_TRUE(std::ranges::is_sorted(list, std::ranges::less_equal(),
                                       [&](size_t index) { return ranks[index]; }))
        << "drop " << drop;
  }
  EXPECT_GT(rebalances, 0U);
  EXPECT_LT(rebalances, 2'000U);
}

TEST(RankComparator, FindsTheRankOfTheNearestTag) {
  using LKRankComparator::Tag;
  LKNote note("Note", "");
  const UUID id = UUID::random();
  note.tagRanks = {{"a", "m"},
                   {"a/b/c", "x"},
                   {"__query_" + id.text(), "q"},
                   {"__dbview_" + id.text(), "d"},
                   {"__all", "l"},
                   {"__untagged", "u"}};
  const std::vector<std::pair<LKRankComparator::Context, std::optional<std::string>>> cases = {
      {Tag{"a/b"}, "m"},
      {Tag{"a/b/c"}, "x"},
      {Tag{"b"}, std::nullopt},
      {LKRankComparator::SavedQuery{id}, "q"},
      {LKRankComparator::DatabaseView{id}, "d"},
      {LKRankComparator::AllNotes{}, "l"},
      {LKRankComparator::Untagged{}, "u"},
      {LKRankComparator::SavedQuery{}, std::nullopt}};
  for (const auto& [context, rank] : cases) {
    EXPECT_EQ(LKRankComparator::lookupRank(note, context), rank) << LKRankComparator::key(context);
  }
  EXPECT_EQ(LKRankComparator::parentTagPath("a/b/c"), "a/b");
  EXPECT_EQ(LKRankComparator::parentTagPath("a"), std::nullopt);
}

TEST(RankComparator, PutsRankedNotesFirstAndThenTheNewest) {
  const auto note = [](const char* rank, int64_t modified) {
    LKNote made("Note", "");
    if (rank != nullptr) made.tagRanks["__all"] = rank;
    made.modifiedDate = {.seconds = modified};
    return made;
  };
  const std::vector<LKNote> ordered = {note("a_1", 1), note("b_0", 9), note(nullptr, 7),
                                       note(nullptr, 3)};
  for (size_t i = 0; i < ordered.size(); ++i) {
    for (size_t j = 0; j < ordered.size(); ++j) {
      EXPECT_EQ(LKRankComparator::compare(ordered[i], ordered[j], LKRankComparator::AllNotes{}),
                i <=> j)
          << i << " " << j;
    }
  }
}

class ManualSortDrop : public testing::Test {
 protected:
  ManualSortDrop() {
    LKCollectionPath::setOverrideDocumentsDirectory(folder.path());
    setOpenCache([this](const fs::path&) { return context.get(); });
  }
  ~ManualSortDrop() override {
    setOpenCache({});
    LKCollectionPath::setOverrideDocumentsDirectory(std::nullopt);
  }

  UUID add(const std::string& title, const std::string& rank) {
    LKNote& row = context->notes().insert(LKNote(title, ""));
    NewNote note;
    note.title = title;
    note.noteID = row.id;
    row.fileURL = LKNoteFileService::createNote(note, folder.path());
    if (!rank.empty()) {
      LKNoteFileService::setTagRank(*row.fileURL, "garden", rank,
                                    LKNoteFileService::ModificationTime::preserved);
    }
    return row.id;
  }

  // As the file has it.
  std::string rank(const std::string& title) {
    const auto file = parseDocument(test::readWhole(folder / (title + ".md")));
    const auto found = file.frontMatter.tagRanks.find("garden");
    return found == file.frontMatter.tagRanks.end() ? "" : found->second;
  }

  bool drop(UUID id, const std::vector<UUID>& others, size_t index) {
    return LKManualSortDrop::perform(
        {.primaryID = id, .others = others, .insertIndex = index, .contextKey = "garden"},
        *context);
  }

  test::TempFolder folder;
  std::unique_ptr<LKContext> context = makeMemoryStore();
};

TEST_F(ManualSortDrop, GivesOneNoteARankBetweenItsNeighbours) {
  const UUID a = add("A", "a_0000");
  const UUID b = add("B", "c_0000");
  const UUID moved = add("Moved", "x_0000");
  const auto bodyAfterDropAt = [&](size_t index) {
    EXPECT_TRUE(drop(moved, {a, b}, index));
    return rankBody(rank("Moved"));
  };
  EXPECT_EQ(bodyAfterDropAt(1), "b");
  EXPECT_EQ(bodyAfterDropAt(0), "5");
  EXPECT_EQ(bodyAfterDropAt(2), "o");
  EXPECT_EQ(bodyAfterDropAt(99), "o");
  EXPECT_TRUE(drop(moved, {}, 0));
  EXPECT_EQ(rankBody(rank("Moved")), "i");
  EXPECT_EQ(rank("A") + rank("B"), "a_0000c_0000");
}

TEST_F(ManualSortDrop, SeedsAListThatLacksRanksAndOneWithoutRoom) {
  const UUID a = add("A", "");
  const UUID b = add("B", "b_0000");
  const UUID moved = add("Moved", "");
  const UUID ghost = UUID::random();
  ASSERT_TRUE(drop(moved, {ghost, b, ghost, a}, 3));
  EXPECT_TRUE(rank("B") < rank("Moved") && rank("Moved") < rank("A"))
      << rank("B") << " " << rank("Moved") << " " << rank("A");
  LKNoteFileService::setTagRank(folder / "A.md", "garden", "0_0000",
                                LKNoteFileService::ModificationTime::preserved);
  ASSERT_TRUE(drop(moved, {a, b}, 0));
  EXPECT_TRUE(rank("Moved") < rank("A") && rank("A") < rank("B"));
}

TEST_F(ManualSortDrop, ThatCannotWriteSaysNo) {
  const UUID a = add("A", "0_0000");
  EXPECT_FALSE(drop(UUID::random(), {a}, 1));  // no file to write
  EXPECT_FALSE(drop(UUID::random(), {a}, 0));  // nor after the rest was ranked again
  EXPECT_EQ(rankBody(rank("A")), "i");
  const UUID broken = add("Broken", "");
  fs::remove(folder / "Broken.md");
  EXPECT_FALSE(drop(a, {broken}, 0));  // seeding fails
  EXPECT_FALSE(drop(broken, {a}, 1));
}

}  // namespace
}  // namespace lk
