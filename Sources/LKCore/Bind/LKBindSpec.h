#pragma once

// How a manuscript is to be bound: page, typography, headings, scene breaks, front and back matter,
// running heads, filters, output and theme. A plain value, kept and exchanged as one JSON document;
// every later stage of binding reads this record alone.
//
//     LKBindSpec spec = LKBindSpec::iOSPaperback();
//     spec.headings.h1.prefix = "{title}";
//     const std::string document = spec.encodedJSON();
//     assert(LKBindSpec::decode(document) == spec);
//
// In the document every field has its name in snake case, "margin_in" for `marginIn`; only
// `specDescription` is called "description". Lengths that end in `In` are inches, in `Pt` points.
// "Token text" may hold tokens such as {title} or {author}, which the engine expands.
//
// The initial value of a field is its default. The bind spec itself, `LKBindHeadings`,
// `LKBindHeaderFooter`, `LKBindFilters` and `LKBindBackMatter` take it for each key that is missing;
// in every other record all keys must be there, except those of optional fields.

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Time.h"

namespace lk {

// --- Choices, each with the word that stands for it in the document ------------------------------

enum class LKBindPageSize {
  letter,
  legal,
  a4,
  a5,
  b5,
  tradePaperback6x9,  // "trade_paperback_6x9"
  massMarket425x7,    // "mass_market_4_25x7"
  custom,
};
enum class LKBindOrientation { portrait, landscape };
enum class LKBindLineSpacing { single, oneAndAHalf, double_ };  // "single", "1.5", "double"
enum class LKBindHeadingTreatment { chapter, part, section, subsection, plain };
enum class LKBindHeadingNumbering { none, arabic, romanUpper, romanLower, word };  // "roman_upper"
enum class LKBindAlignment { left, center, right, justify };
enum class LKBindFontWeight { regular, bold };
enum class LKBindSceneBreakRendering { centeredText, horizontalRule, blankLine };  // "blank_line"
enum class LKBindStripTasks { keep, metadata, lines };
enum class LKBindPageNumberStyle { arabic, romanLower, romanUpper };          // "roman_lower"
enum class LKBindHeaderFooterStyle { publishedBook, agentSubmission, none };  // "publishedBook"
enum class LKBindFootnotePlacement { perPage, endOfBook, endOfChapter };      // "endOfBook"
enum class LKBindParagraphStyle { larkspireNative, commonmark };              // "larkspireNative"
enum class LKBindOutputFormat {
  pdf,
  docx,
  epub,
  rtf,
  htmlBundle,      // "html_bundle"
  markdownBundle,  // "markdown_bundle"
  textBundle,      // "text_bundle"
};

// --- Page and type -------------------------------------------------------------------------------

struct LKBindMargins {
  double topIn = 1;
  double bottomIn = 1;
  double leftIn = 1;
  double rightIn = 1;

  // The same on all four sides.
  static constexpr LKBindMargins standard() { return {1, 1, 1, 1}; }
  static constexpr LKBindMargins narrow() { return {0.5, 0.5, 0.5, 0.5}; }
  static constexpr LKBindMargins wide() { return {1.5, 1.5, 1.5, 1.5}; }
  static constexpr LKBindMargins tight() { return {0.25, 0.25, 0.25, 0.25}; }

  bool operator==(const LKBindMargins&) const = default;
};

struct LKBindPage {
  LKBindPageSize size = LKBindPageSize::letter;
  // Of the upright sheet, whatever the orientation.
  double widthIn = 8.5;
  double heightIn = 11;
  LKBindOrientation orientation = LKBindOrientation::portrait;
  LKBindMargins marginIn;

  bool operator==(const LKBindPage&) const = default;
};

struct LKBindTypography {
  std::string bodyFont = "Times New Roman";
  double bodySizePt = 12;
  std::string headingFont = "Times New Roman";
  std::string codeFont = "Menlo";
  double codeSizePt = 10;
  LKBindLineSpacing lineSpacing = LKBindLineSpacing::double_;
  double firstLineIndentIn = 0.5;
  double paragraphSpacingPt = 0;
  bool justifyBody = false;

  bool operator==(const LKBindTypography&) const = default;
};

// --- Headings and scene breaks -------------------------------------------------------------------

// The treatment of one heading level.
struct LKBindHeading {
  LKBindHeadingTreatment treatment = LKBindHeadingTreatment::plain;
  bool pageBreakBefore = false;
  LKBindHeadingNumbering numbering = LKBindHeadingNumbering::none;
  std::string prefix;  // token text
  std::string suffix;
  LKBindAlignment alignment = LKBindAlignment::left;
  double sizePt = 12;
  LKBindFontWeight weight = LKBindFontWeight::bold;
  double spacingBeforePt = 12;
  double spacingAfterPt = 6;
  bool includeInToc = false;

  static LKBindHeading defaultPart();
  static LKBindHeading defaultH1();
  static LKBindHeading defaultH2();
  static LKBindHeading defaultH3();

  bool operator==(const LKBindHeading&) const = default;
};

struct LKBindHeadings {
  LKBindHeading part = LKBindHeading::defaultPart();
  LKBindHeading h1 = LKBindHeading::defaultH1();
  LKBindHeading h2 = LKBindHeading::defaultH2();
  LKBindHeading h3 = LKBindHeading::defaultH3();

  bool operator==(const LKBindHeadings&) const = default;
};

struct LKBindSceneBreak {
  LKBindSceneBreakRendering rendering = LKBindSceneBreakRendering::centeredText;
  std::string text = "* * *";
  LKBindAlignment alignment = LKBindAlignment::center;
  double spacingBeforePt = 12;
  double spacingAfterPt = 12;

  bool operator==(const LKBindSceneBreak&) const = default;
};

// --- What stands around the chapters -------------------------------------------------------------

struct LKBindTitlePage {
  bool include = true;
  std::string title = "{tag_display_name}";  // token text, as the next two
  std::string subtitle;
  std::string author = "{author}";
  LKBindAlignment alignment = LKBindAlignment::center;
  std::string verticalPosition = "middle";

  bool operator==(const LKBindTitlePage&) const = default;
};

struct LKBindToc {
  bool include = false;
  std::string title = "Contents";
  int64_t maxDepth = 2;

  bool operator==(const LKBindToc&) const = default;
};

// Notes are named by their titles.
struct LKBindFrontMatter {
  LKBindTitlePage titlePage;
  std::optional<std::string> copyrightNote;
  std::optional<std::string> dedicationNote;
  std::optional<std::string> epigraphNote;
  std::optional<std::string> includeNotesWithTag;
  LKBindToc tableOfContents;

  bool operator==(const LKBindFrontMatter&) const = default;
};

struct LKBindBackMatter {
  std::optional<std::string> includeNotesWithTag;
  std::optional<std::string> aboutAuthorNote;

  bool operator==(const LKBindBackMatter&) const = default;
};

// Headers and footers are token text.
struct LKBindHeaderFooter {
  LKBindHeaderFooterStyle style = LKBindHeaderFooterStyle::publishedBook;
  bool firstPageBlank = true;
  std::string headerLeft = "{author_surname}";
  std::string headerCenter = "{title}";
  std::string headerRight = "{page}";
  std::string footerLeft;
  std::string footerCenter;
  std::string footerRight;
  LKBindPageNumberStyle pageNumberStyle = LKBindPageNumberStyle::arabic;
  LKBindPageNumberStyle frontMatterPageStyle = LKBindPageNumberStyle::romanLower;
  bool suppressOnChapterFirstPage = true;

  bool operator==(const LKBindHeaderFooter&) const = default;
};

// --- From notes to a file ------------------------------------------------------------------------

struct LKBindFilters {
  bool stripComments = true;
  LKBindStripTasks stripTasks = LKBindStripTasks::lines;
  bool stripTags = true;
  bool stripFrontmatter = true;  // one word: "strip_frontmatter"
  bool stripMetadataBlocks = true;
  std::optional<std::string> skipNotesTagged;
  bool renderMermaid = true;
  bool syntaxHighlightCode = true;
  LKBindParagraphStyle paragraphStyle = LKBindParagraphStyle::larkspireNative;
  LKBindFootnotePlacement footnotePlacement = LKBindFootnotePlacement::perPage;

  bool operator==(const LKBindFilters&) const = default;
};

struct LKBindOutput {
  LKBindOutputFormat defaultFormat = LKBindOutputFormat::pdf;
  std::string filenamePattern = "{tag_name} - {date_iso}.{ext}";  // token text
  bool embedFonts = false;
  bool includeTocInFilename = false;

  bool operator==(const LKBindOutput&) const = default;
};

// --- The whole -----------------------------------------------------------------------------------

// A spec that is well formed and still not for this version.
class LKBindSpecError : public Error {
 public:
  static LKBindSpecError unsupportedSchemaVersion(int64_t found, int64_t supported);

  int64_t found() const noexcept { return found_; }
  int64_t supported() const noexcept { return supported_; }

 private:
  LKBindSpecError(std::string description, int64_t found, int64_t supported);

  int64_t found_;
  int64_t supported_;
};

struct LKBindSpec {
  static constexpr int64_t kSupportedSchemaVersion = 1;

  int64_t schemaVersion = kSupportedSchemaVersion;
  std::string name = "Untitled";
  std::optional<std::string> specDescription;  // "description"
  std::optional<Instant> createdDate;          // whole seconds once encoded, as the next
  std::optional<Instant> modifiedDate;
  LKBindPage page;
  LKBindTypography typography;
  LKBindHeadings headings;
  LKBindSceneBreak sceneBreak;
  LKBindFrontMatter frontMatter;
  LKBindBackMatter backMatter;
  LKBindHeaderFooter headerFooter;
  LKBindFilters filters;
  LKBindOutput output;
  std::string theme = "manuscript";

  // The bind spec of a document; keys that nobody here knows are passed over. Throws JsonError, whose
  // text names the key by its path and the line in the document, and LKBindSpecError for a schema
  // version above the supported one.
  static LKBindSpec decode(std::string_view bytes);

  // The document in the system's form, without the absent optional fields.
  std::string encodedJSON() const;

  // The presets: a submission to an agent or editor, a self-published paperback of 6 by 9 inches,
  // and a general-purpose one in the system's font.
  static LKBindSpec iOSStandardManuscript();
  static LKBindSpec iOSPaperback();
  static LKBindSpec iOSPlain();
  // The three, in this order.
  static std::array<LKBindSpec, 3> iOSStyles();

  bool operator==(const LKBindSpec&) const = default;
};

}  // namespace lk
