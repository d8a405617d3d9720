#include "LKCore/Base/LinkDetector.h"

#include <gtest/gtest.h>

#include <string>

namespace lk {
namespace {

std::string found(std::string_view text) {
  std::string all;
  for (const DetectedLink& link : links(text)) {
    const char* kind = link.kind == LinkKind::url     ? "url "
                       : link.kind == LinkKind::email ? "email "
                                                      : "domain ";
    all.append(all.empty() ? "" : " | ").append(kind).append(link.range.of(text));
  }
  return all;
}

struct Row {
  const char* name;
  std::string_view text;
  const char* links;
};

class LinkDetector : public ::testing::TestWithParam<Row> {};

TEST_P(LinkDetector, FindsTheRowsLinks) {
  EXPECT_EQ(found(GetParam().text), GetParam().links) << GetParam().text;
}

const Row kRows[] = {
    {"Prose", "Nothing. Not e.g. this, v1.2 or 3.14.", ""},
    {"FileNames", "notes.md run.sh a.py main.rs x.txt", ""},
    {"Sentence", "See http://x.y/a?b=c#d, or https://z.example.",
     "url http://x.y/a?b=c#d | url https://z.example"},
    {"OtherSchemes", "larkspire://open?id=1 file:///tmp/a",
     "url larkspire://open?id=1 | url file:///tmp/a"},
    {"EmptyURL", "http:// x://( x://.", ""},
    {"Brackets", "(http://x.y/a_(b)) [http://x.y]", "url http://x.y/a_(b) | url http://x.y"},
    {"UnclosedBracket", "http://x.y/a(b", "url http://x.y/a"},
    {"MarkupAround", "<http://x.y> \"http://z.y\"", "url http://x.y | url http://z.y"},
    {"Domains", "example.org/a www.intra.x Example.COM:80 -a.com",
     "domain example.org/a | domain www.intra.x | domain Example.COM:80 | domain a.com"},
    {"NoDomains", "a..com .com a_b.com a-.com com", ""},
    {"Addresses", "me.you+x@mail.example.org, mailto:a@b.cd a@b a@b.c",
     "email me.you+x@mail.example.org | url mailto:a@b.cd"},
    {"OtherScripts", "\u898B\u3066http://x.y/\u8DEF\u3002 \u00E9a.com \u300Ca.com\u300D",
     "url http://x.y/\u8DEF | domain a.com"},
};

INSTANTIATE_TEST_SUITE_P(Rows, LinkDetector, ::testing::ValuesIn(kRows),
                         [](const auto& row) { return row.param.name; });

TEST(LinkDetector, CallsATextValidOnlyWhenItsFirstLinkIsAllOfIt) {
  EXPECT_TRUE(isValidURL("http://a.b/*c"));
  EXPECT_TRUE(isValidURL("example.org"));
  EXPECT_FALSE(isValidURL("http://a.b."));
  EXPECT_FALSE(isValidURL(" http://a.b"));
  EXPECT_FALSE(isValidURL("http://a.b/(c"));
  EXPECT_FALSE(isValidURL(""));
}

TEST(LinkDetector, SearchesOnFromAPlace) {
  EXPECT_EQ(firstLink("a.com b.com", 5)->range, (TextRange{6, 11}));
  EXPECT_FALSE(firstLink("a.com", 5));
}

}  // namespace
}  // namespace lk
