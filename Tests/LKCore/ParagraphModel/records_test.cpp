// The records around paragraphs, and places in UTF-16 units.

#include <gtest/gtest.h>

#include "LKCore/Base/Text.h"
#include "LKCore/ParagraphModel/LKTaskDetail.h"
#include "LKCore/ParagraphModel/MakeParagraphs.h"
#include "LKCore/ParagraphModel/OutlineRecords.h"
#include "Support/ChangedVariable.h"

namespace lk {
namespace {

TEST(UTF16Places, MapBothWaysAtEveryScalar) {
  std::string mixed;
  for (int i = 0; i < 60; ++i) mixed += "a\u00E9\u65E5\U0001F600";
  for (const std::string& text :
       {std::string(), std::string(200, 'a'), mixed, mixed + "abcdefghi"}) {
    const UTF16Text storage(text);
    size_t units = 0;
    size_t byte = 0;
    while (byte < text.size()) {
      ASSERT_EQ(storage.utf16Offset(byte), units);
      ASSERT_EQ(storage.byteOffset(units), byte);
      const text::Decoded scalar = text::decode(text, byte);
      const size_t width = scalar.scalar > 0xFFFF ? 2 : 1;
      ASSERT_EQ(storage.of({units, width}), text.substr(byte, scalar.length));
      if (width == 2) {
        ASSERT_EQ(storage.byteOffset(units + 1), byte);
      }
      units += width;
      byte += scalar.length;
    }
    EXPECT_EQ(storage.length(), units);
    EXPECT_EQ(storage.utf16Offset(byte), units);
    EXPECT_EQ(storage.of({0, static_cast<size_t>(-1)}), text);
    EXPECT_EQ(storage.of({units + 5, static_cast<size_t>(-1)}), "");
  }
}

struct MarkingRow {
  const char* text;
  const char* date;  // at five hours west of Greenwich; empty for none
};

TEST(TaskDetail, ReadsTheOlderDoneMarking) {
  const test::ChangedVariable zone("TZ", "EST5");
  const MarkingRow rows[] = {
      {"Call @done(Mar 5, 2024)", "2024-03-05T05:00:00Z"},
      {"Call\t@done(dec 31 1999) more", "1999-12-31T05:00:00Z"},
      {"@done(Mar 5, 2024)", ""},
      {"a @done(Feb 30, 2024)", ""},
      {"a @done(Abc 3, 2024)", ""},
      {"a @done(March 3, 2024)", ""},
      {"a @done(2024-03-05)", ""},
      {"a @done(Mar 5, 24)", ""},
  };
  for (const MarkingRow& row : rows) {
    LKTaskDetail detail;
    detail.text = row.text;
    detail.parse();
    EXPECT_EQ(detail.dateCompleted ? formatISO8601(*detail.dateCompleted) : "", row.date)
        << row.text;
    EXPECT_EQ(detail.text, row.text);
  }
}

TEST(TaskDetail, IsWrittenAndReadAsJSON) {
  LKTaskDetail detail;
  detail.dateDue = parseISO8601("2026-03-14T09:26:53Z");
  detail.startDate = parseISO8601("2026-03-13T00:00:00Z");
  detail.text = "Order \"seeds\"";
  detail.priority = -3;
  detail.isComplete = true;
  detail.comments = "two\nlines";
  detail.percentComplete = 40;
  EXPECT_EQ(parseTaskDetail(parseJson(printJson(taskDetailJson(detail)))), detail);
  EXPECT_EQ(parseTaskDetail(Json::object()), LKTaskDetail());
  for (const char* bad : {"[]", R"({"priority": 2147483648})", R"({"dateDue": "tomorrow"})",
                          R"({"isComplete": 1})", R"({"text": 1})"}) {
    EXPECT_THROW(parseTaskDetail(parseJson(bad)), JsonError) << bad;
  }
}

TEST(OutlineRecords, CountWhatTheyHide) {
  const std::vector<Paragraph> rows = makeParagraphs("# a\n\U0001F600b");
  FoldedSection section(rows[0].id);
  section.setParagraphs(rows);
  section.setParagraphs({rows[1], rows[1]});
  EXPECT_EQ(section.characters(), 6U);
  EXPECT_EQ(section.id(), rows[0].id);
  EXPECT_EQ(arrayName(ParagraphArrayType::unfold), "Unfold");
}

TEST(OutlineRecords, ShowARowToOutsiders) {
  std::vector<Paragraph> rows = makeParagraphs("## a\n\t- [x] b\n- c\n1. d");
  rows[0].childrenAreFolded = true;
  EXPECT_TRUE(rows[0].isHoistable());
  EXPECT_FALSE(rows[1].isHoistable());
  const LKParagraphInfo heading = paragraphInfo(rows[0]);
  EXPECT_EQ(heading,
            (LKParagraphInfo{rows[0].id, {0, 5}, "## a\n", 2, 0, false, LKListType::none, true}));
  EXPECT_EQ(paragraphInfo(rows[1]).listType, LKListType::task);
  EXPECT_EQ(paragraphInfo(rows[2]).listType, LKListType::unordered);
  EXPECT_EQ(paragraphInfo(rows[3]).listType, LKListType::ordered);
  EXPECT_TRUE(paragraphInfo(rows[3]).isList);
}

}  // namespace
}  // namespace lk
