#include "LKCore/DOCX/LKBindDOCXBuilder.h"

#include <utility>

#include "LKCore/Base/LocaleText.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Bind/BookPieces.h"
#include "LKCore/Bind/TitlePageTexts.h"
#include "LKCore/DOCX/DocumentWriter.h"
#include "LKCore/DOCX/XMLText.h"
#include "LKCore/Modules/Zip.h"
#include "LKCore/Platform/Files.h"

namespace lk {

LKBindDOCXError LKBindDOCXError::zipCreationFailed(const std::string& message) {
  return LKBindDOCXError("DOCX zip failed: " + message);
}

LKBindDOCXError LKBindDOCXError::writeFailed(const std::string& message) {
  return LKBindDOCXError("DOCX write failed: " + message);
}

namespace LKBindDOCXBuilder {

namespace {

word::BookNames bookNames(const LKBindSpec& spec, const LKBindSubject& subject) {
  word::BookNames names;
  names.title = word::withoutForbidden(text::trimmed(LKBindEngine::bookTitle(spec, subject)));
  names.author = word::withoutForbidden(text::trimmed(subject.author));
  names.language = languageTag(subject.locale);
  if (names.language.empty()) names.language = "en-US";
  return names;
}

word::GeneratedTitlePage generatedTitlePage(const std::vector<LKBindNoteInput>& notes,
                                            const LKBindSpec& spec, const LKBindSubject& subject) {
  if (!spec.frontMatter.titlePage.include) return {};
  const TitlePageTexts texts = titlePageTexts(notes, spec, subject);
  return {word::withoutForbidden(texts.title), word::withoutForbidden(texts.subtitle),
          word::withoutForbidden(texts.author)};
}

word::PictureRoom pictureRoom(const LKBindPage& page) {
  constexpr double kTwipsPerInch = 1440;
  constexpr double kShareOfHeight = 0.9;  // the words around it want some too
  const word::PageMeasures measures = word::pageMeasures(page);
  return {measures.textWidth() / kTwipsPerInch,
          measures.textHeight() / kTwipsPerInch * kShareOfHeight};
}

}  // namespace

std::string docx(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
                 const LKBindSubject& subject, const std::filesystem::path& collectionRoot,
                 const LKBindDiagrams& mermaidRenders, const Warning& warning) {
  word::FootnotePool pool(spec.filters.footnotePlacement);
  word::ImageRegistry images(collectionRoot, pictureRoom(spec.page), warning);
  word::BlockWriter blocks(spec, mermaidRenders, pool, images);
  std::string document =
      word::DocumentWriter(spec, blocks, pool)
          .documentXML(bookPieces(notes, spec, subject), generatedTitlePage(notes, spec, subject));
  const word::BookNames names = bookNames(spec, subject);
  word::OptionalParts parts;
  parts.hasHeader = spec.headerFooter.style == LKBindHeaderFooterStyle::agentSubmission;
  parts.hasFooter = spec.headerFooter.style == LKBindHeaderFooterStyle::publishedBook;
  parts.hasFootnotes = !pool.bodies().empty() && !pool.areEndnotes();
  parts.hasEndnotes = !pool.bodies().empty() && pool.areEndnotes();

  std::vector<ZipEntry> entries = {
      {"[Content_Types].xml", word::contentTypesXML(parts, images.parts())},
      {"_rels/.rels", word::packageRelationshipsXML()},
      {"word/document.xml", std::move(document)},
      {"word/styles.xml", word::stylesXML(spec, names.language)},
      {"word/numbering.xml", word::numberingXML(blocks.numberedRuns())},
      {"word/settings.xml", word::settingsXML(spec, parts)},
      {"word/_rels/document.xml.rels", word::documentRelationshipsXML(parts, images.parts())},
      {"docProps/core.xml", word::corePropertiesXML(names, subject.date)},
      {"docProps/app.xml", word::appPropertiesXML()}};
  if (parts.hasHeader) entries.push_back({"word/header1.xml", word::headerXML(names)});
  if (parts.hasFooter) entries.push_back({"word/footer1.xml", word::footerXML()});
  if (parts.hasFootnotes) entries.push_back({"word/footnotes.xml", word::notesXML(pool)});
  if (parts.hasEndnotes) entries.push_back({"word/endnotes.xml", word::notesXML(pool)});
  for (const word::MediaPart& part : images.parts()) {
    entries.push_back({"word/" + part.name, part.bytes});
  }
  try {
    return zipArchive(entries, subject.date);
  } catch (const ZipError& error) {
    throw LKBindDOCXError::zipCreationFailed(error.description());
  }
}

void buildDOCX(const std::vector<LKBindNoteInput>& notes, const LKBindSpec& spec,
               const LKBindSubject& subject, const std::filesystem::path& collectionRoot,
               const LKBindDiagrams& mermaidRenders, const std::filesystem::path& outputURL,
               const Warning& warning) {
  const std::string bytes = docx(notes, spec, subject, collectionRoot, mermaidRenders, warning);
  try {
    replaceFile(outputURL, bytes);
  } catch (const FileError& error) {
    throw LKBindDOCXError::writeFailed(error.description());
  }
}

}  // namespace LKBindDOCXBuilder
}  // namespace lk
