// The document of a bind spec: what each key means, what may be missing, and what is refused.

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Bind/LKBindSpec.h"

namespace lk {
namespace {

// Every key once; the lines of the presets that it leaves out are those of the defaults.
constexpr const char* kWholeSpec = R"({
"schema_version": 1, "name": "Plain",
"description": "System font, single-spaced. General-purpose PDF.",
"created_date": "2026-03-14T09:26:53Z", "modified_date": "2026-03-15T00:00:00Z",
"page": {"size": "letter", "width_in": 8.5, "height_in": 11, "orientation": "portrait",
  "margin_in": {"top_in": 1, "bottom_in": 1, "left_in": 1, "right_in": 1}},
"typography": {"body_font": "-apple-system", "body_size_pt": 12, "heading_font": "-apple-system",
  "code_font": "Menlo", "code_size_pt": 10, "line_spacing": "single", "first_line_indent_in": 0,
  "paragraph_spacing_pt": 8, "justify_body": false},
"headings": {
  "part": {"treatment": "part", "page_break_before": true, "numbering": "roman_upper",
    "prefix": "Part {part_n_roman_upper}\n{title}", "suffix": "", "alignment": "center",
    "size_pt": 24, "weight": "bold", "spacing_before_pt": 200, "spacing_after_pt": 60,
    "include_in_toc": true},
  "h1": {"treatment": "plain", "page_break_before": false, "numbering": "none", "prefix": "",
    "suffix": "", "alignment": "left", "size_pt": 16, "weight": "bold", "spacing_before_pt": 12,
    "spacing_after_pt": 6, "include_in_toc": false},
  "h2": {"treatment": "section", "page_break_before": false, "numbering": "none", "prefix": "",
    "suffix": "", "alignment": "left", "size_pt": 14, "weight": "bold", "spacing_before_pt": 24,
    "spacing_after_pt": 12, "include_in_toc": true},
  "h3": {"treatment": "subsection", "page_break_before": false, "numbering": "none", "prefix": "",
    "suffix": "", "alignment": "left", "size_pt": 12, "weight": "bold", "spacing_before_pt": 12,
    "spacing_after_pt": 6, "include_in_toc": false}},
"scene_break": {"rendering": "horizontal_rule", "text": "", "alignment": "center",
  "spacing_before_pt": 12, "spacing_after_pt": 12},
"front_matter": {"title_page": {"include": true, "title": "{tag_display_name}", "subtitle": "",
    "author": "{author}", "alignment": "center", "vertical_position": "middle"},
  "copyright_note": "Rights", "dedication_note": "For Ann", "epigraph_note": "Motto",
  "include_notes_with_tag": "front",
  "table_of_contents": {"include": false, "title": "Contents", "max_depth": 2}},
"back_matter": {"include_notes_with_tag": "back", "about_author_note": "Me"},
"header_footer": {"style": "publishedBook", "first_page_blank": true,
  "header_left": "{author_surname}", "header_center": "{title}", "header_right": "{page}",
  "footer_left": "", "footer_center": "", "footer_right": "", "page_number_style": "arabic",
  "front_matter_page_style": "roman_lower", "suppress_on_chapter_first_page": true},
"filters": {"strip_comments": true, "strip_tasks": "lines", "strip_tags": true,
  "strip_frontmatter": true, "strip_metadata_blocks": true, "skip_notes_tagged": "draft",
  "render_mermaid": true, "syntax_highlight_code": true, "paragraph_style": "larkspireNative",
  "footnote_placement": "perPage"},
"output": {"default_format": "pdf", "filename_pattern": "{tag_name} - {date_iso}.{ext}",
  "embed_fonts": false, "include_toc_in_filename": false},
"theme": "manuscript"})";

LKBindSpec wholeSpec() {
  LKBindSpec spec = LKBindSpec::iOSPlain();
  spec.createdDate = parseISO8601("2026-03-14T09:26:53Z");
  spec.modifiedDate = parseISO8601("2026-03-15T00:00:00Z");
  spec.frontMatter.copyrightNote = "Rights";
  spec.frontMatter.dedicationNote = "For Ann";
  spec.frontMatter.epigraphNote = "Motto";
  spec.frontMatter.includeNotesWithTag = "front";
  spec.backMatter.includeNotesWithTag = "back";
  spec.backMatter.aboutAuthorNote = "Me";
  spec.filters.skipNotesTagged = "draft";
  return spec;
}

TEST(BindSpec, isWrittenUnderTheKeysOfItsFields) {
  EXPECT_EQ(wholeSpec().encodedJSON(), printJson(parseJson(kWholeSpec)));
  EXPECT_EQ(LKBindSpec::decode(kWholeSpec), wholeSpec());
}

TEST(BindSpec, hasThreePresetsThatSurviveTheirDocuments) {
  LKBindSpec defaults;
  defaults.name = "Standard Manuscript";
  defaults.specDescription = "Times 12pt, double-spaced. Agent/editor submission format.";
  EXPECT_EQ(LKBindSpec::iOSStandardManuscript(), defaults);
  EXPECT_EQ(defaults.typography.lineSpacing, LKBindLineSpacing::double_);
  EXPECT_EQ(defaults.headings.h1.prefix, "Chapter {n}\n{title}");
  EXPECT_EQ(defaults.headings.h1.spacingBeforePt, 144);

  const LKBindSpec paperback = LKBindSpec::iOSPaperback();
  EXPECT_EQ(paperback.page.size, LKBindPageSize::tradePaperback6x9);
  EXPECT_EQ(paperback.typography.firstLineIndentIn, 0.25);
  EXPECT_EQ(paperback.headings, defaults.headings);

  std::string names;
  for (const LKBindSpec& preset : LKBindSpec::iOSStyles()) {
    names += preset.name + ";";
    EXPECT_EQ(LKBindSpec::decode(preset.encodedJSON()), preset) << preset.name;
    EXPECT_EQ(preset.encodedJSON().find("_date\""), std::string::npos) << preset.name;
  }
  EXPECT_EQ(names, "Standard Manuscript;Paperback;Plain;");
}

struct WordCase {
  std::string key;  // by its path in the document
  std::string word;
  std::function<bool(const LKBindSpec&)> holds;
};

TEST(BindSpec, readsTheWordsOfItsChoices) {
  const std::vector<WordCase> cases = {
      {"/page/size", "b5", [](auto& spec) { return spec.page.size == LKBindPageSize::b5; }},
      {"/page/size", "mass_market_4_25x7",
       [](auto& spec) { return spec.page.size == LKBindPageSize::massMarket425x7; }},
      {"/page/size", "custom", [](auto& spec) { return spec.page.size == LKBindPageSize::custom; }},
      {"/page/orientation", "landscape",
       [](auto& spec) { return spec.page.orientation == LKBindOrientation::landscape; }},
      {"/typography/line_spacing", "1.5",
       [](auto& spec) { return spec.typography.lineSpacing == LKBindLineSpacing::oneAndAHalf; }},
      {"/headings/h2/treatment", "plain",
       [](auto& spec) { return spec.headings.h2.treatment == LKBindHeadingTreatment::plain; }},
      {"/headings/h2/numbering", "roman_lower",
       [](auto& spec) { return spec.headings.h2.numbering == LKBindHeadingNumbering::romanLower; }},
      {"/headings/h2/numbering", "word",
       [](auto& spec) { return spec.headings.h2.numbering == LKBindHeadingNumbering::word; }},
      {"/headings/h2/alignment", "justify",
       [](auto& spec) { return spec.headings.h2.alignment == LKBindAlignment::justify; }},
      {"/headings/h2/weight", "regular",
       [](auto& spec) { return spec.headings.h2.weight == LKBindFontWeight::regular; }},
      {"/scene_break/rendering", "blank_line",
       [](auto& spec) {
         return spec.sceneBreak.rendering == LKBindSceneBreakRendering::blankLine;
       }},
      {"/filters/strip_tasks", "metadata",
       [](auto& spec) { return spec.filters.stripTasks == LKBindStripTasks::metadata; }},
      {"/header_footer/page_number_style", "roman_upper",
       [](auto& spec) {
         return spec.headerFooter.pageNumberStyle == LKBindPageNumberStyle::romanUpper;
       }},
      {"/header_footer/style", "agentSubmission",
       [](auto& spec) {
         return spec.headerFooter.style == LKBindHeaderFooterStyle::agentSubmission;
       }},
      {"/filters/footnote_placement", "endOfBook",
       [](auto& spec) {
         return spec.filters.footnotePlacement == LKBindFootnotePlacement::endOfBook;
       }},
      {"/filters/footnote_placement", "endOfChapter",
       [](auto& spec) {
         return spec.filters.footnotePlacement == LKBindFootnotePlacement::endOfChapter;
       }},
      {"/filters/paragraph_style", "commonmark",
       [](auto& spec) { return spec.filters.paragraphStyle == LKBindParagraphStyle::commonmark; }},
      {"/output/default_format", "html_bundle",
       [](auto& spec) { return spec.output.defaultFormat == LKBindOutputFormat::htmlBundle; }},
      {"/output/default_format", "text_bundle",
       [](auto& spec) { return spec.output.defaultFormat == LKBindOutputFormat::textBundle; }},
  };
  for (const WordCase& each : cases) {
    Json document = parseJson(kWholeSpec);
    document[Json::json_pointer(each.key)] = each.word;
    const LKBindSpec spec = LKBindSpec::decode(document.dump());
    EXPECT_TRUE(each.holds(spec)) << each.key << " " << each.word;
    EXPECT_EQ(spec.encodedJSON(), printJson(document)) << each.key << " " << each.word;
  }
}

struct PartialCase {
  std::string document;
  std::function<void(LKBindSpec&)> change;  // of the bind spec with all defaults
};

TEST(BindSpec, takesDefaultsForWhatSomeRecordsLack) {
  const std::vector<PartialCase> cases = {
      {"{}", [](auto&) {}},
      {R"({"name": null, "page": null, "created_date": null, "filters": {"skip_notes_tagged": null},
           "no one knows": [{"name": 1}], "back_matter": {}})",
       [](auto&) {}},
      {R"({"schema_version": 0})", [](auto& spec) { spec.schemaVersion = 0; }},
      {R"({"schema_version": -7})", [](auto& spec) { spec.schemaVersion = -7; }},
      {R"({"filters": {"strip_tags": false}})", [](auto& spec) { spec.filters.stripTags = false; }},
      {R"({"header_footer": {"footer_center": "{page}"}})",
       [](auto& spec) { spec.headerFooter.footerCenter = "{page}"; }},
      {R"({"headings": {"h3": {"treatment": "section", "page_break_before": false,
           "numbering": "none", "prefix": "", "suffix": "", "alignment": "left", "size_pt": 14,
           "weight": "bold", "spacing_before_pt": 24, "spacing_after_pt": 12,
           "include_in_toc": true}}})",
       [](auto& spec) { spec.headings.h3 = spec.headings.h2; }},
      {R"({"created_date": "2026-03-14T10:26:53.75+01:00"})",
       [](auto& spec) { spec.createdDate = parseISO8601("2026-03-14T09:26:53Z"); }},
  };
  for (const PartialCase& each : cases) {
    LKBindSpec expected;
    each.change(expected);
    EXPECT_EQ(LKBindSpec::decode(each.document).encodedJSON(), expected.encodedJSON())
        << each.document;
  }
  const LKBindSpec empty = LKBindSpec::decode("{}");
  EXPECT_EQ(empty.name + ", " + empty.theme, "Untitled, manuscript");
  EXPECT_EQ(empty.filters.stripTasks, LKBindStripTasks::lines);
}

struct BadSpec {
  std::string document;
  std::string message;
};

TEST(BindSpec, isRefusedWithTheKeyAndItsPlace) {
  const std::vector<BadSpec> cases = {
      {"[]", "The bind spec is not an object."},
      {"{\n\"page\": {\"size\": \"a4\"}}", "Line 2: \"page\" has no \"width_in\"."},
      {"{\"output\":\n{}}", "Line 1: \"output\" has no \"default_format\"."},
      {"{\"headings\": {\n\"h2\": {}}}", "Line 2: \"headings.h2\" has no \"treatment\"."},
      {"{\"front_matter\": {\"title_page\": null}}",
       "Line 1: \"front_matter\" has no \"title_page\"."},
      // Neither a text, an array nor another key of that name is taken for it; the last of two is.
      {"{\"name\": \"theme\\\": {\", \"x\": [\"theme\", {\"theme\": 1}],\n\"theme\": "
       "2,\n\"theme\": "
       "3}",
       "Line 3: \"theme\" is not a string."},
      {"{\"filters\": {\n\"strip_tasks\": \"all\"}}",
       "Line 2: \"filters.strip_tasks\" is not one of \"keep\", \"metadata\", \"lines\"."},
      {"{\"filters\": {\"strip_tags\": 1}}",
       "Line 1: \"filters.strip_tags\" is not true or false."},
      {"{\"schema_version\": 18446744073709551615}",
       "Line 1: \"schema_version\" is not an integer."},
      {"{\"created_date\": \"2026-03-14\"}", "Line 1: \"created_date\" is not an ISO 8601 date."},
      {"{\"created_date\": 3}", "Line 1: \"created_date\" is not an ISO 8601 date."},
      {"{\"typography\": \"Times\"}", "Line 1: \"typography\" is not an object."},
  };
  for (const BadSpec& each : cases) {
    SCOPED_TRACE(each.document);
    try {
      LKBindSpec::decode(each.document);
      ADD_FAILURE() << "nothing thrown";
    } catch (const JsonError& error) {
      EXPECT_EQ(error.description(), each.message);
    }
  }
}

TEST(BindSpec, ofALaterVersionIsRefusedOnceTheRestIsRead) {
  try {
    LKBindSpec::decode("{\"schema_version\": 2}");
    ADD_FAILURE() << "nothing thrown";
  } catch (const LKBindSpecError& error) {
    EXPECT_EQ(error.found(), 2);
    EXPECT_EQ(error.description(),
              "Bind spec uses schema version 2; this app supports up to 1. Upgrade Larkspire to "
              "read this spec.");
  }
  EXPECT_THROW(LKBindSpec::decode("{\"schema_version\": 2, \"theme\": 2}"), JsonError);
}

TEST(BindSpec, isRefusedWhereverItIsCutOff) {
  const std::string_view document = kWholeSpec;
  for (size_t length = 0; length < document.size(); ++length) {
    EXPECT_THROW(LKBindSpec::decode(document.substr(0, length)), JsonError) << length;
  }
}

}  // namespace
}  // namespace lk
