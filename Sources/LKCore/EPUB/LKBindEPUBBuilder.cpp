#include "LKCore/EPUB/LKBindEPUBBuilder.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <set>
#include <utility>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/LKBindEngine.h"
#include "LKCore/EPUB/EPUBStyle.h"
#include "LKCore/EPUB/HTMLTags.h"
#include "LKCore/EPUB/XHTML.h"
#include "LKCore/EPUB/XHTMLElements.h"
#include "LKCore/Modules/Zip.h"
#include "LKCore/Platform/Files.h"

namespace lk {

LKBindEPUBError LKBindEPUBError::zipCreationFailed(const std::string& message) {
  return LKBindEPUBError("Bind EPUB: could not build the EPUB archive — " + message);
}

LKBindEPUBError LKBindEPUBError::xhtmlConversionFailed(const std::string& message) {
  return LKBindEPUBError("Bind EPUB: content failed XHTML conversion — " + message);
}

LKBindEPUBError LKBindEPUBError::missingHTMLBody() {
  return LKBindEPUBError("Bind EPUB: the engine HTML had no <body> section to extract.");
}

namespace LKBindEPUBBuilder {

namespace {

constexpr std::string_view kXMLDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

constexpr std::string_view kContainer =
    "<container version=\"1.0\" xmlns=\"urn:oasis:names:tc:opendocument:xmlns:container\">\n"
    "<rootfiles>\n<rootfile full-path=\"OEBPS/content.opf\" "
    "media-type=\"application/oebps-package+xml\"/>\n</rootfiles>\n</container>\n";

// What a reader shows that cannot draw a picture's format.
constexpr std::string_view kFallbackPicture =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 320 120\" width=\"320\" "
    "height=\"120\">\n<rect width=\"320\" height=\"120\" fill=\"#eeeeee\" stroke=\"#888888\"/>\n"
    "<text x=\"160\" y=\"66\" text-anchor=\"middle\" font-size=\"16\">Picture</text>\n</svg>\n";

constexpr uint64_t kStandardBasis = 14695981039346656037U;
constexpr uint64_t kOtherBasis = 1469598103934665603U;
constexpr uint64_t kPrime = 1099511628211U;

uint64_t fnvHash(std::string_view text, uint64_t hash) {
  for (const char c : text) {
    hash ^= static_cast<unsigned char>(c);
    hash *= kPrime;
  }
  return hash;
}

void appendHex(std::string& text, uint64_t number) {
  static constexpr std::string_view kDigits = "0123456789abcdef";
  for (int shift = 60; shift >= 0; shift -= 4) text.push_back(kDigits[(number >> shift) & 15]);
}

// What every part of the package says of the book.
struct BookFacts {
  std::string title;
  std::string creator;
  std::string identifier;
  std::string language;
  std::string modified;
};

// As the HTML says it, else the subject's locale, else English.
std::string languageOf(std::string_view html, const LKBindSubject& subject) {
  static constexpr std::string_view kOpening = "<html lang=\"";
  const size_t place = html.find(kOpening);
  const size_t head = html.find("<head>");
  std::string tag = subject.locale.substr(0, subject.locale.find_first_of(".@"));
  std::ranges::replace(tag, '_', '-');
  if (place != std::string_view::npos && place < head) {
    const size_t start = place + kOpening.size();
    tag = html.substr(start, html.find('"', start) - start);
  }
  return xhtml::isLanguageTag(tag) ? tag : "en";
}

BookFacts factsOf(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject) {
  std::string title = LKBindEngine::bookTitle(spec, subject);
  const std::string identifier = stableUUID("larkspire-bind:" + subject.tagName + title);
  for (const std::string_view lineBreak : {"<br>", "<br/>"}) {
    title = text::replacingAll(title, lineBreak, " ");
  }
  const bool hasTitle = !text::trimmed(xmlEscape(title)).empty();
  const bool hasAuthor = !text::trimmed(xmlEscape(subject.author)).empty();
  return {hasTitle ? title : "Untitled", hasAuthor ? subject.author : "Unknown", identifier,
          languageOf(html, subject), formatISO8601({subject.date.seconds, 0})};
}

// Formats that every reader draws.
bool isCoreType(std::string_view type) {
  return type != "image/webp" && type != "image/tiff";
}

// The place of the cover among the pictures, where it is put if the book does not show it.
std::optional<size_t> addCover(std::vector<BundledImage>& images, std::string_view coverSource,
                               const std::filesystem::path& collectionRoot) {
  auto cover = resolveImage(coverSource, collectionRoot);
  if (!cover || !isCoreType(cover->mediaType)) return std::nullopt;
  const auto shown = std::ranges::find(images, cover->data, &BundledImage::bytes);
  const auto index = static_cast<size_t>(shown - images.begin());
  if (shown != images.end()) return index;
  const std::string id = "img" + std::to_string(index + 1);
  images.push_back(
      {id, "images/" + id + "." + cover->ext, cover->mediaType, std::move(cover->data)});
  return index;
}

struct Package {
  BookFacts facts;
  std::vector<BundledImage> images = {};
  std::optional<size_t> cover = {};
  bool hasHeadings = false;
  bool hasDrawings = false;
};

bool hasForeignImages(const Package& package) {
  return !std::ranges::all_of(package.images, isCoreType, &BundledImage::mediaType);
}

std::string accessibility(const Package& package) {
  const bool isVisual = package.hasDrawings || !package.images.empty();
  const bool mayMove = std::ranges::find(package.images, "image/gif", &BundledImage::mediaType) !=
                       package.images.end();
  std::string metas;
  const auto add = [&](std::string_view property, std::string_view value) {
    metas.append("<meta property=\"schema:").append(property).append("\">");
    metas.append(value).append("</meta>\n");
  };
  add("accessMode", "textual");
  if (isVisual) add("accessMode", "visual");
  add("accessModeSufficient", isVisual ? "textual,visual" : "textual");
  add("accessibilityFeature", "tableOfContents");
  if (package.hasHeadings) add("accessibilityFeature", "structuralNavigation");
  add("accessibilityHazard", mayMove ? "unknown" : "none");
  add("accessibilitySummary", isVisual
                                  ? "Text that can be read aloud and reflowed, with a table of "
                                    "contents, and pictures, some of which may lack a description."
                                  : "Text that can be read aloud and reflowed, with a table of "
                                    "contents.");
  return metas;
}

std::string metadata(const Package& package) {
  const BookFacts& facts = package.facts;
  std::string text = "<metadata xmlns:dc=\"http://purl.org/dc/elements/1.1/\">\n";
  text.append("<dc:identifier id=\"bookid\">urn:uuid:" + facts.identifier + "</dc:identifier>\n");
  text.append("<dc:title>" + xmlEscape(facts.title) + "</dc:title>\n");
  text.append("<dc:creator>" + xmlEscape(facts.creator) + "</dc:creator>\n");
  text.append("<dc:language>" + facts.language + "</dc:language>\n");
  text.append("<meta property=\"dcterms:modified\">" + facts.modified + "</meta>\n");
  text.append(accessibility(package));
  if (package.cover) {
    text.append("<meta name=\"cover\" content=\"" + package.images[*package.cover].id + "\"/>\n");
  }
  return text.append("</metadata>\n");
}

std::string imageItem(const BundledImage& image, bool isCover) {
  return "<item id=\"" + image.id + "\" href=\"" + image.path + "\" media-type=\"" +
         image.mediaType + "\"" +
         (isCoreType(image.mediaType) ? "" : " fallback=\"img-fallback\"") +
         (isCover ? " properties=\"cover-image\"" : "") + "/>\n";
}

std::string packageDocument(const Package& package) {
  std::string opf(kXMLDeclaration);
  opf.append("<package xmlns=\"http://www.idpf.org/2007/opf\" version=\"3.0\" ");
  opf.append("unique-identifier=\"bookid\" xml:lang=\"" + package.facts.language + "\">\n");
  opf.append(metadata(package)).append("<manifest>\n<item id=\"nav\" href=\"nav.xhtml\" ");
  opf.append("media-type=\"application/xhtml+xml\" properties=\"nav\"/>\n");
  opf.append("<item id=\"content\" href=\"content.xhtml\" media-type=\"application/xhtml+xml\"");
  opf.append(package.hasDrawings ? " properties=\"svg\"/>\n" : "/>\n");
  opf.append("<item id=\"style\" href=\"style.css\" media-type=\"text/css\"/>\n");
  for (size_t i = 0; i < package.images.size(); ++i) {
    opf.append(imageItem(package.images[i], package.cover == i));
  }
  if (hasForeignImages(package)) {
    opf.append("<item id=\"img-fallback\" href=\"images/fallback.svg\" ");
    opf.append("media-type=\"image/svg+xml\"/>\n");
  }
  return opf.append("</manifest>\n<spine>\n<itemref idref=\"content\"/>\n</spine>\n</package>\n");
}

std::string contentDocument(const BookFacts& facts, std::string_view body) {
  std::string page(kXMLDeclaration);
  page.reserve(body.size() + 1024);
  page.append("<!DOCTYPE html>\n<html xmlns=\"http://www.w3.org/1999/xhtml\" ");
  page.append("xmlns:epub=\"http://www.idpf.org/2007/ops\" lang=\"" + facts.language);
  page.append("\" xml:lang=\"" + facts.language + "\">\n<head>\n<meta charset=\"utf-8\"/>\n");
  page.append("<title>" + xmlEscape(facts.title) + "</title>\n<link rel=\"stylesheet\" ");
  page.append("type=\"text/css\" href=\"style.css\"/>\n</head>\n<body>\n");
  return page.append(body).append("\n</body>\n</html>\n");
}

// The body as the book has it, and the entries with the identifiers that its headings got.
xhtml::Body convertedBody(const BundledImages& bundled,
                          std::vector<StructuralTOCEntry>& structure) {
  if (bundled.body.size() >= std::numeric_limits<uint32_t>::max() / 2) {
    throw LKBindEPUBError::xhtmlConversionFailed("the book is larger than 2 GiB");
  }
  std::set<std::string, std::less<>> paths;
  for (const BundledImage& image : bundled.images) paths.insert(image.path);
  structure = extractStructuralTOC(bundled.body);
  const std::string html =
      escapeUnknownTags(wrapStructuralSections(addChapterAnchors(bundled.body)));
  xhtml::Body body = xhtml::xhtmlBody(html, paths);
  for (StructuralTOCEntry& entry : structure) {
    entry.id = body.identifiers.find(entry.id).value_or("");
  }
  return body;
}

std::vector<ZipEntry> archiveEntries(Package package, std::string nav, std::string content,
                                     std::string sheet) {
  std::vector<ZipEntry> entries;
  entries.push_back({"mimetype", "application/epub+zip", true});
  entries.push_back({"META-INF/container.xml", std::string(kXMLDeclaration).append(kContainer)});
  entries.push_back({"OEBPS/content.opf", packageDocument(package)});
  entries.push_back({"OEBPS/nav.xhtml", std::move(nav)});
  entries.push_back({"OEBPS/content.xhtml", std::move(content)});
  entries.push_back({"OEBPS/style.css", std::move(sheet)});
  const bool needsFallback = hasForeignImages(package);
  for (BundledImage& image : package.images) {
    entries.push_back({"OEBPS/" + image.path, std::move(image.bytes), true});
  }
  if (needsFallback) {
    entries.push_back({"OEBPS/images/fallback.svg", std::string(kFallbackPicture)});
  }
  return entries;
}

}  // namespace

void buildEPUB(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
               const std::filesystem::path& collectionRoot, std::string_view coverSource,
               const std::filesystem::path& outputURL) {
  const std::string book = epub(html, spec, subject, collectionRoot, coverSource);
  try {
    replaceFile(outputURL, book);
  } catch (const FileError& error) {
    throw LKBindEPUBError::zipCreationFailed("Archive create failed: " + error.description());
  }
}

std::string epub(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                 const std::filesystem::path& collectionRoot, std::string_view coverSource) {
  StyleAndBody parts = extractStyleAndBody(html);
  BundledImages bundled = bundleImages(parts.body, collectionRoot);
  parts.body.clear();
  std::vector<StructuralTOCEntry> structure;
  const xhtml::Body body = convertedBody(bundled, structure);

  Package package{factsOf(html, spec, subject), std::move(bundled.images)};
  package.cover = addCover(package.images, coverSource, collectionRoot);
  package.hasHeadings = !structure.empty();
  package.hasDrawings = body.hasDrawings;
  const BookFacts facts = package.facts;
  std::vector<ZipEntry> entries =
      archiveEntries(std::move(package),
                     makeNavXHTML(facts.title, structure, spec.frontMatter.tableOfContents.include,
                                  facts.language),
                     contentDocument(facts, body.markup),
                     xhtml::readerSheet(parts.css, spec.typography.bodySizePt));
  try {
    return zipArchive(entries, subject.date);
  } catch (const ZipError& error) {
    throw LKBindEPUBError::zipCreationFailed("Archive create failed: " + error.description());
  }
}

StyleAndBody extractStyleAndBody(std::string_view html) {
  const auto between = [&](std::string_view opening, size_t end) -> std::string {
    const size_t start = html.find(opening);
    if (start == std::string_view::npos || end == std::string_view::npos) return {};
    const size_t inside = start + opening.size();
    return std::string(html.substr(inside, std::max(inside, end) - inside));
  };
  const size_t body = html.find("<body>");
  const size_t bodyEnd = html.rfind("</body>");
  if (body == std::string_view::npos || bodyEnd == std::string_view::npos || bodyEnd < body) {
    throw LKBindEPUBError::missingHTMLBody();
  }
  const size_t styleEnd = html.substr(0, body).find("</style>");
  return {between("<style>", styleEnd), between("<body>", bodyEnd)};
}

std::string stableUUID(std::string_view text) {
  std::string digits;
  appendHex(digits, fnvHash(text, kStandardBasis));
  appendHex(digits, fnvHash(text, kOtherBasis));
  for (const size_t place : {20U, 16U, 12U, 8U}) digits.insert(place, 1, '-');
  return digits;
}

std::string escapeUnknownTags(std::string_view html) {
  const xhtml::TagEnds ends(html);
  std::string result;
  result.reserve(html.size() + html.size() / 16);
  size_t copied = 0;
  size_t foreign = 0;  // open drawings and formulas
  for (size_t place = html.find('<'); place != std::string_view::npos;) {
    const auto tag = xhtml::tagAt(html, place, ends);
    if (!tag) {
      place = html.find('<', place + 1);
      continue;
    }
    const bool opensForeign = tag->name == "svg" || tag->name == "math";
    if (opensForeign && !tag->isEnd && !tag->closesItself) ++foreign;
    if (opensForeign && tag->isEnd && foreign > 0) --foreign;
    const size_t inside = tag->range.end - 1;
    const bool isKnown = foreign > 0 || xhtml::elementNamed(tag->name) != nullptr;
    const bool isOpenVoid = !tag->isEnd && !tag->closesItself && xhtml::isVoid(tag->name);
    if (!isKnown) {
      result.append(html.substr(copied, place - copied)).append("&lt;");
      result.append(html.substr(place + 1, inside - place - 1)).append("&gt;");
      copied = tag->range.end;
    } else if (isOpenVoid) {
      result.append(html.substr(copied, inside - copied))
          .append(tag->attributes.empty() ? "/>" : " />");
      copied = tag->range.end;
    }
    place = html.find('<', tag->range.end);
  }
  return result.append(html.substr(copied));
}

std::string xmlEscape(std::string_view text) {
  return xhtml::escaped(text);
}

}  // namespace LKBindEPUBBuilder
}  // namespace lk
