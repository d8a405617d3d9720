// Names of attachments: made, read out of references, and found in texts.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "LKCore/Attachments/AttachmentUses.h"
#include "LKCore/Attachments/LKAttachmentNaming.h"
#include "LKCore/Attachments/LKAttachmentTypes.h"
#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"
#include "Support/Growth.h"

namespace lk {
namespace {

using TextPairs = std::vector<std::pair<std::string, std::string>>;

TEST(AttachmentNames, HoldNothingThatNeedsAnEscape) {
  for (const auto& [text, name] : TextPairs{{"Plan (2) : beds.png", "Plan_2_beds.png"},
                                            {"a/b\\c", "a_b_c"},
                                            {"__a__b__", "a_b"},
                                            {" \t\u00A0bed\u2003north\n", "bed_north"},
                                            {"Käse.pdf", "Käse.pdf"},
                                            {":/()", ""},
                                            {"", ""}}) {
    EXPECT_EQ(LKAttachmentNaming::sanitizeFilename(text), name) << text;
  }
}

TEST(AttachmentNames, OfPastedPicturesAreFreeOnes) {
  const auto pasted = [](std::string_view note, std::vector<std::string> taken) {
    return LKAttachmentNaming::pastedImageName(
        note, "PNG", [&](const std::string& name) { return std::ranges::count(taken, name) > 0; });
  };
  EXPECT_EQ(pasted(" Garden plan ", {}), "Garden_plan.png");
  EXPECT_EQ(pasted("Beds", {"Beds.png", "Beds-2.png"}), "Beds-3.png");
  for (const char* nothing : {"", " \n", "Untitled", "(/)"}) {
    EXPECT_EQ(pasted(nothing, {}), "Pasted_image.png") << nothing;
  }
}

TEST(AttachmentReferences, GiveTheName) {
  for (const auto& [reference, name] :
       TextPairs{{"larkspire-asset:///bed.png", "bed.png"},
                 {"./attachments/bed.png", "bed.png"},
                 {".attachments/attachments/bed.png", "attachments/bed.png"},
                 {"attachments/Garden%20plan%2epdf", "Garden plan.pdf"},
                 {"K%C3%A4se.pdf", "Käse.pdf"},
                 {"100%.png", "100%.png"},
                 {"caf%E9.png", "caf%E9.png"}}) {
    EXPECT_EQ(LKAttachmentTypes::attachmentFilename(reference), name) << reference;
  }
  for (const char* web : {"http://a.example/b.png", "HTTPS://a.example/b.png"}) {
    EXPECT_EQ(LKAttachmentTypes::attachmentFilename(web), std::nullopt) << web;
  }
}

TEST(AttachmentReferences, ShowPicturesAndLinkTheRest) {
  using LKAttachmentTypes::markdownReference;
  EXPECT_EQ(markdownReference("bed.PNG", "Bed", ".attachments/"), "![Bed](.attachments/bed.PNG)");
  EXPECT_EQ(markdownReference("bed.avif", "", ""), "![](bed.avif)");
  EXPECT_EQ(markdownReference("plan.pdf", "Plan", "a/"), "[Plan](a/plan.pdf)");
  EXPECT_EQ(markdownReference("plan.pdf", "", "a/"), "[plan.pdf](a/plan.pdf)");
}

TEST(PercentCodes, AreDecodedOrStay) {
  for (const auto& [text, decoded] : TextPairs{{"a%20b%2Fc%2f", "a b/c/"},
                                               {"%", "%"},
                                               {"%4", "%4"},
                                               {"%%41%zz%-1", "%A%zz%-1"},
                                               {"%2541", "%41"}}) {
    EXPECT_EQ(percentDecoded(text), decoded) << text;
  }
}

TEST(AttachmentTypes, HaveEachExtensionOnceInLowerCase) {
  std::vector<std::string_view> all(LKAttachmentTypes::all.begin(), LKAttachmentTypes::all.end());
  std::ranges::sort(all);
  EXPECT_EQ(std::ranges::adjacent_find(all), all.end());
  for (const std::string_view each : all) EXPECT_EQ(text::lowercased(each), each);
  for (const char* each : {"png", "mp3", "mov", "pdf", "zip"}) {
    EXPECT_TRUE(LKAttachmentTypes::contains(LKAttachmentTypes::all, each)) << each;
  }
  EXPECT_FALSE(LKAttachmentTypes::contains(LKAttachmentTypes::all, "md"));
}

// --- Uses ----------------------------------------------------------------------------------------

// The rule itself, name by name.
std::vector<size_t> plainUses(const std::vector<std::string>& names, const std::string& text) {
  const std::string decoded = percentDecoded(text);
  const std::array texts = {text, text::composed(text), decoded, text::composed(decoded)};
  std::vector<size_t> used;
  for (size_t i = 0; i < names.size(); ++i) {
    const std::array forms = {names[i], text::composed(names[i])};
    const bool isUsed = std::ranges::any_of(texts, [&](const std::string& each) {
      return std::ranges::any_of(
          forms, [&](const std::string& form) { return each.find(form) != std::string::npos; });
    });
    if (isUsed) used.push_back(i);
  }
  return used;
}

TEST(AttachmentsInText, AreFoundInEachWayOfWriting) {
  const AttachmentUses uses({"bed.png", "bed.png.bak", "Garden plan.pdf", "Ka\u0308se.pdf", "b"});
  using Used = std::vector<size_t>;
  EXPECT_EQ(uses.in("![](.attachments/bed.png)"), (Used{0, 4}));
  EXPECT_EQ(uses.in("bed.png.bak"), (Used{0, 1, 4}));
  EXPECT_EQ(uses.in("[p](Garden%20plan.pdf)"), Used{2});
  EXPECT_EQ(uses.in("[k](K\u00E4se.pdf)"), Used{3});
  EXPECT_EQ(uses.in("[k](K%c3%a4se.pdf)"), Used{3});
  EXPECT_EQ(uses.in("caf\xE9 Garden plan.pdf"), Used{2});
  const AttachmentUses signs({"bed (1).png", "bed_2.png", "Pea & Bean.png"});
  EXPECT_EQ(signs.in("![](<bed \\(1\\).png>) [p](bed\\_2.png)"), (Used{0, 1}));
  EXPECT_EQ(signs.in("![](Pea%20&amp;%20Bean.png) ![](bed%20\\(1\\).png)"), (Used{0, 2}));
  EXPECT_EQ(uses.in(""), Used{});
  EXPECT_EQ(AttachmentUses(std::vector<std::string>{}).in("bed.png"), Used{});
}

TEST(AttachmentsInText, AreThoseOfThePlainRule) {
  std::mt19937 random(7);
  const std::vector<std::string> pieces = {"a",  "b",   "ab",      "%",  "%61",    "%20",
                                           " ",  "2",   "\u00E9",  "e",  "\u0301", "%C3%A9",
                                           ".p", "aab", "bab.png", "\n", "\xE9"};
  const auto made = [&](size_t most) {
    std::string text;
    for (size_t count = 1 + random() % most; count > 0; --count) {
      text += pieces[random() % pieces.size()];
    }
    return text;
  };
  size_t usedOnes = 0;
  for (int round = 0; round < 3000; ++round) {
    std::vector<std::string> names(1 + random() % 20);
    for (std::string& name : names) name = made(6);
    const AttachmentUses uses(names);
    const std::string text = made(40);
    const std::vector<size_t> used = uses.in(text);
    ASSERT_EQ(used, plainUses(names, text)) << round << ": " << text;
    usedOnes += used.size();
  }
  EXPECT_GT(usedOnes, 1000U);
}

TEST(AttachmentsInText, CostTimeInProportionToIt) {
  const AttachmentUses uses({std::string(200, 'a') + "b", std::string(199, 'a') + "c"});
  EXPECT_LT(test::growth("a", 100'000, [&](const std::string& text) { uses.in(text); }), 8);
}

}  // namespace
}  // namespace lk
