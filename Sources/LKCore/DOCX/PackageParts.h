#pragma once

// The parts of a Word document beside its text.

#include <string>
#include <vector>

#include "LKCore/Bind/LKBindSpec.h"
#include "LKCore/Bind/LKBindSubject.h"
#include "LKCore/DOCX/BlockWriter.h"
#include "LKCore/DOCX/FootnotePool.h"
#include "LKCore/DOCX/ImageRegistry.h"

namespace lk::word {

// Which of the parts that not every document has.
struct OptionalParts {
  bool hasHeader = false;
  bool hasFooter = false;
  bool hasFootnotes = false;
  bool hasEndnotes = false;
};

// What the book says of itself; plain text without forbidden characters.
struct BookNames {
  std::string title;
  std::string author;    // empty: unknown
  std::string language;  // "de-DE"
};

std::string contentTypesXML(const OptionalParts& parts, const std::vector<MediaPart>& media);
std::string packageRelationshipsXML();
std::string documentRelationshipsXML(const OptionalParts& parts,
                                     const std::vector<MediaPart>& media);
std::string stylesXML(const LKBindSpec& spec, const std::string& language);
std::string numberingXML(const std::vector<NumberedRun>& runs);
std::string settingsXML(const LKBindSpec& spec, const OptionalParts& parts);
std::string headerXML(const BookNames& names);
std::string footerXML();
std::string notesXML(const FootnotePool& notes);
std::string corePropertiesXML(const BookNames& names, Instant date);
std::string appPropertiesXML();

}  // namespace lk::word
