// The JSON document of a bind spec. Each record lists its fields once, as pairs of key and field;
// the reader and the writer both walk that list.

#include <algorithm>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "LKCore/Base/Json.h"
#include "LKCore/Bind/LKBindSpec.h"

namespace lk {

namespace {

// --- The words of the choices, in the order of their enumerators ---------------------------------

using BindWords = std::vector<std::string_view>;

BindWords bindWordsOf(LKBindPageSize /*choice*/) {
  return {"letter", "legal", "a4", "a5", "b5", "trade_paperback_6x9", "mass_market_4_25x7",
          "custom"};
}
BindWords bindWordsOf(LKBindOrientation /*choice*/) {
  return {"portrait", "landscape"};
}
BindWords bindWordsOf(LKBindLineSpacing /*choice*/) {
  return {"single", "1.5", "double"};
}
BindWords bindWordsOf(LKBindHeadingTreatment /*choice*/) {
  return {"chapter", "part", "section", "subsection", "plain"};
}
BindWords bindWordsOf(LKBindHeadingNumbering /*choice*/) {
  return {"none", "arabic", "roman_upper", "roman_lower", "word"};
}
BindWords bindWordsOf(LKBindAlignment /*choice*/) {
  return {"left", "center", "right", "justify"};
}
BindWords bindWordsOf(LKBindFontWeight /*choice*/) {
  return {"regular", "bold"};
}
BindWords bindWordsOf(LKBindSceneBreakRendering /*choice*/) {
  return {"centered_text", "horizontal_rule", "blank_line"};
}
BindWords bindWordsOf(LKBindStripTasks /*choice*/) {
  return {"keep", "metadata", "lines"};
}
BindWords bindWordsOf(LKBindPageNumberStyle /*choice*/) {
  return {"arabic", "roman_lower", "roman_upper"};
}
BindWords bindWordsOf(LKBindHeaderFooterStyle /*choice*/) {
  return {"publishedBook", "agentSubmission", "none"};
}
BindWords bindWordsOf(LKBindFootnotePlacement /*choice*/) {
  return {"perPage", "endOfBook", "endOfChapter"};
}
BindWords bindWordsOf(LKBindParagraphStyle /*choice*/) {
  return {"larkspireNative", "commonmark"};
}
BindWords bindWordsOf(LKBindOutputFormat /*choice*/) {
  return {"pdf", "docx", "epub", "rtf", "html_bundle", "markdown_bundle", "text_bundle"};
}

// --- The fields of the records -------------------------------------------------------------------

template <typename Visitor>
void visitFields(Visitor& visit, LKBindMargins& margins) {
  visit("top_in", margins.topIn);
  visit("bottom_in", margins.bottomIn);
  visit("left_in", margins.leftIn);
  visit("right_in", margins.rightIn);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindPage& page) {
  visit("size", page.size);
  visit("width_in", page.widthIn);
  visit("height_in", page.heightIn);
  visit("orientation", page.orientation);
  visit("margin_in", page.marginIn);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindTypography& typography) {
  visit("body_font", typography.bodyFont);
  visit("body_size_pt", typography.bodySizePt);
  visit("heading_font", typography.headingFont);
  visit("code_font", typography.codeFont);
  visit("code_size_pt", typography.codeSizePt);
  visit("line_spacing", typography.lineSpacing);
  visit("first_line_indent_in", typography.firstLineIndentIn);
  visit("paragraph_spacing_pt", typography.paragraphSpacingPt);
  visit("justify_body", typography.justifyBody);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindHeading& heading) {
  visit("treatment", heading.treatment);
  visit("page_break_before", heading.pageBreakBefore);
  visit("numbering", heading.numbering);
  visit("prefix", heading.prefix);
  visit("suffix", heading.suffix);
  visit("alignment", heading.alignment);
  visit("size_pt", heading.sizePt);
  visit("weight", heading.weight);
  visit("spacing_before_pt", heading.spacingBeforePt);
  visit("spacing_after_pt", heading.spacingAfterPt);
  visit("include_in_toc", heading.includeInToc);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindHeadings& headings) {
  visit("part", headings.part);
  visit("h1", headings.h1);
  visit("h2", headings.h2);
  visit("h3", headings.h3);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindSceneBreak& sceneBreak) {
  visit("rendering", sceneBreak.rendering);
  visit("text", sceneBreak.text);
  visit("alignment", sceneBreak.alignment);
  visit("spacing_before_pt", sceneBreak.spacingBeforePt);
  visit("spacing_after_pt", sceneBreak.spacingAfterPt);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindTitlePage& titlePage) {
  visit("include", titlePage.include);
  visit("title", titlePage.title);
  visit("subtitle", titlePage.subtitle);
  visit("author", titlePage.author);
  visit("alignment", titlePage.alignment);
  visit("vertical_position", titlePage.verticalPosition);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindToc& toc) {
  visit("include", toc.include);
  visit("title", toc.title);
  visit("max_depth", toc.maxDepth);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindFrontMatter& frontMatter) {
  visit("title_page", frontMatter.titlePage);
  visit("copyright_note", frontMatter.copyrightNote);
  visit("dedication_note", frontMatter.dedicationNote);
  visit("epigraph_note", frontMatter.epigraphNote);
  visit("include_notes_with_tag", frontMatter.includeNotesWithTag);
  visit("table_of_contents", frontMatter.tableOfContents);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindBackMatter& backMatter) {
  visit("include_notes_with_tag", backMatter.includeNotesWithTag);
  visit("about_author_note", backMatter.aboutAuthorNote);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindHeaderFooter& headerFooter) {
  visit("style", headerFooter.style);
  visit("first_page_blank", headerFooter.firstPageBlank);
  visit("header_left", headerFooter.headerLeft);
  visit("header_center", headerFooter.headerCenter);
  visit("header_right", headerFooter.headerRight);
  visit("footer_left", headerFooter.footerLeft);
  visit("footer_center", headerFooter.footerCenter);
  visit("footer_right", headerFooter.footerRight);
  visit("page_number_style", headerFooter.pageNumberStyle);
  visit("front_matter_page_style", headerFooter.frontMatterPageStyle);
  visit("suppress_on_chapter_first_page", headerFooter.suppressOnChapterFirstPage);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindFilters& filters) {
  visit("strip_comments", filters.stripComments);
  visit("strip_tasks", filters.stripTasks);
  visit("strip_tags", filters.stripTags);
  visit("strip_frontmatter", filters.stripFrontmatter);
  visit("strip_metadata_blocks", filters.stripMetadataBlocks);
  visit("skip_notes_tagged", filters.skipNotesTagged);
  visit("render_mermaid", filters.renderMermaid);
  visit("syntax_highlight_code", filters.syntaxHighlightCode);
  visit("paragraph_style", filters.paragraphStyle);
  visit("footnote_placement", filters.footnotePlacement);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindOutput& output) {
  visit("default_format", output.defaultFormat);
  visit("filename_pattern", output.filenamePattern);
  visit("embed_fonts", output.embedFonts);
  visit("include_toc_in_filename", output.includeTocInFilename);
}

template <typename Visitor>
void visitFields(Visitor& visit, LKBindSpec& spec) {
  visit("schema_version", spec.schemaVersion);
  visit("name", spec.name);
  visit("description", spec.specDescription);
  visit("created_date", spec.createdDate);
  visit("modified_date", spec.modifiedDate);
  visit("page", spec.page);
  visit("typography", spec.typography);
  visit("headings", spec.headings);
  visit("scene_break", spec.sceneBreak);
  visit("front_matter", spec.frontMatter);
  visit("back_matter", spec.backMatter);
  visit("header_footer", spec.headerFooter);
  visit("filters", spec.filters);
  visit("output", spec.output);
  visit("theme", spec.theme);
}

// The records that take a default for a missing key.
template <typename Record>
constexpr bool takesDefaults =
    std::is_same_v<Record, LKBindSpec> || std::is_same_v<Record, LKBindHeadings> ||
    std::is_same_v<Record, LKBindHeaderFooter> || std::is_same_v<Record, LKBindFilters> ||
    std::is_same_v<Record, LKBindBackMatter>;

template <typename Value>
constexpr bool isOptional = false;
template <typename Value>
constexpr bool isOptional<std::optional<Value>> = true;

// --- Reading -------------------------------------------------------------------------------------

std::string joinedPath(const std::string& path, std::string_view key) {
  return path.empty() ? std::string(key) : path + "." + std::string(key);
}

// The byte of the quote that ends the string which begins at `from`.
size_t closingQuote(std::string_view document, size_t from) {
  while (from < document.size() && document[from] != '"') from += document[from] == '\\' ? 2 : 1;
  return from;
}

// The line, from 1, of the last key in the document that has the path, as the reader takes the last
// of two; 1 when there is none. The document is valid JSON.
size_t lineOfKey(std::string_view document, const std::string& wanted) {
  std::vector<std::string> around;  // the paths of the objects and arrays that are open
  std::string path;                 // of the latest key
  size_t line = 1;
  size_t found = 1;
  for (size_t i = 0; i < document.size(); ++i) {
    const char c = document[i];
    if (c == '\n') ++line;
    if (c == '{' || c == '[') around.push_back(path);
    if ((c == '}' || c == ']') && !around.empty()) {
      path = std::move(around.back());
      around.pop_back();
    }
    if (c != '"') continue;
    const size_t end = closingQuote(document, i + 1);
    const size_t next = document.find_first_not_of(" \t\r\n", std::min(end + 1, document.size()));
    if (next != std::string_view::npos && document[next] == ':' && !around.empty()) {
      path = joinedPath(around.back(), document.substr(i + 1, end - i - 1));
      if (path == wanted) found = line;
    }
    i = end;
  }
  return found;
}

JsonError atLine(std::string_view document, const std::string& path, const std::string& complaint) {
  return JsonError("Line " + std::to_string(lineOfKey(document, path)) + ": " + complaint);
}

// Reads the fields of one record from its object.
class BindSpecReader {
 public:
  BindSpecReader(const Json& object, std::string path, std::string_view document, bool isTolerant)
      : object_(object), path_(std::move(path)), document_(document), isTolerant_(isTolerant) {}

  template <typename Value>
  void operator()(const char* key, Value& value) {
    const auto found = object_.find(key);
    if (found != object_.end() && !found->is_null()) {
      read(key, *found, value);
    } else if (!isTolerant_ && !isOptional<Value>) {
      throw atLine(document_, path_, "\"" + path_ + "\" has no \"" + key + "\".");
    }
  }

 private:
  void require(bool holds, const char* key, const std::string& wanted) const {
    if (holds) return;
    const std::string path = joinedPath(path_, key);
    throw atLine(document_, path, "\"" + path + "\" is not " + wanted + ".");
  }

  void read(const char* key, const Json& json, std::string& value) const {
    require(json.is_string(), key, "a string");
    value = json.get<std::string>();
  }

  void read(const char* key, const Json& json, bool& value) const {
    require(json.is_boolean(), key, "true or false");
    value = json.get<bool>();
  }

  void read(const char* key, const Json& json, double& value) const {
    require(json.is_number(), key, "a number");
    value = json.get<double>();
  }

  void read(const char* key, const Json& json, int64_t& value) const {
    constexpr auto kLargest = static_cast<uint64_t>(std::numeric_limits<int64_t>::max());
    const bool fits = !json.is_number_unsigned() || json.get<uint64_t>() <= kLargest;
    require(json.is_number_integer() && fits, key, "an integer");
    value = json.get<int64_t>();
  }

  void read(const char* key, const Json& json, std::optional<std::string>& value) const {
    read(key, json, value.emplace());
  }

  // In whole seconds, and within the years that can be written again.
  void read(const char* key, const Json& json, std::optional<Instant>& value) const {
    if (json.is_string()) value = parseISO8601(json.get_ref<const std::string&>());
    if (value) value->nanoseconds = 0;
    require(value && parseISO8601(formatISO8601(*value)) == value, key, "an ISO 8601 date");
  }

  template <typename Value>
  void read(const char* key, const Json& json, Value& value) const {
    if constexpr (std::is_enum_v<Value>) {
      readChoice(key, json, value);
    } else {
      require(json.is_object(), key, "an object");
      BindSpecReader reader(json, joinedPath(path_, key), document_, takesDefaults<Value>);
      visitFields(reader, value);
    }
  }

  template <typename Choice>
  void readChoice(const char* key, const Json& json, Choice& choice) const {
    const BindWords words = bindWordsOf(choice);
    const auto found = json.is_string()
                           ? std::ranges::find(words, json.get_ref<const std::string&>())
                           : words.end();
    if (found == words.end()) {
      std::string wanted = "one of";
      for (const std::string_view word : words) {
        wanted += (word == words.front() ? " \"" : ", \"") + std::string(word) + "\"";
      }
      require(false, key, wanted);
    }
    choice = static_cast<Choice>(found - words.begin());
  }

  const Json& object_;
  std::string path_;  // "page.margin_in", empty for the whole
  std::string_view document_;
  bool isTolerant_;
};

// --- Writing -------------------------------------------------------------------------------------

// Gathers the fields of one record in an object.
class BindSpecWriter {
 public:
  template <typename Value>
  void operator()(const char* key, Value& value) {
    if constexpr (isOptional<Value>) {
      if (value) object[key] = jsonOfField(*value);
    } else {
      object[key] = jsonOfField(value);
    }
  }

  Json object = Json::object();

 private:
  template <typename Value>
  static Json jsonOfField(Value& value) {
    if constexpr (std::is_enum_v<Value>) {
      return bindWordsOf(value).at(static_cast<size_t>(value));
    } else if constexpr (std::is_same_v<Value, double>) {
      return numberJson(value);
    } else if constexpr (std::is_same_v<Value, Instant>) {
      return formatISO8601(value);
    } else if constexpr (std::is_same_v<Value, std::string> || std::is_arithmetic_v<Value>) {
      return value;
    } else {
      BindSpecWriter writer;
      visitFields(writer, value);
      return std::move(writer.object);
    }
  }
};

}  // namespace

LKBindSpec LKBindSpec::decode(std::string_view bytes) {
  const Json object = parseJson(bytes);
  if (!object.is_object()) throw JsonError("The bind spec is not an object.");
  LKBindSpec spec;
  BindSpecReader reader(object, "", bytes, takesDefaults<LKBindSpec>);
  visitFields(reader, spec);
  if (spec.schemaVersion > kSupportedSchemaVersion) {
    throw LKBindSpecError::unsupportedSchemaVersion(spec.schemaVersion, kSupportedSchemaVersion);
  }
  return spec;
}

std::string LKBindSpec::encodedJSON() const {
  LKBindSpec fields = *this;  // a visitor may write to what it is shown
  BindSpecWriter writer;
  visitFields(writer, fields);
  return printJson(writer.object);
}

}  // namespace lk
