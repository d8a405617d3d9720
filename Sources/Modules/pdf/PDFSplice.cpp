// Pages of one PDF put in the place of pages of another, by qpdf.

#include <map>
#include <string>

#include "Modules/PartGuard.h"
#include "Modules/pdf/PDFFile.h"

namespace lk::part {

namespace {

// The array of a destination that an annotation gives by page and not by name; else null.
QPDFObjectHandle explicitDestination(QPDFObjectHandle annotation) {
  QPDFObjectHandle target = annotation.getKey("/Dest");
  QPDFObjectHandle action = annotation.getKey("/A");
  if (action.isDictionary()) target = action.getKey("/D");
  const bool isExplicit = target.isArray() && target.getArrayNItems() > 0;
  return isExplicit ? target : QPDFObjectHandle::newNull();
}

template <typename Visit>
void forEachAnnotation(QPDFObjectHandle page, const Visit& visit) {
  QPDFObjectHandle annotations = page.getKey("/Annots");
  if (!annotations.isArray()) return;
  for (QPDFObjectHandle& annotation : annotations.getArrayAsVector()) {
    if (annotation.isDictionary()) visit(annotation);
  }
}

// Objects are copied with all that they refer to, pages excepted; so the annotations of the pages
// to copy name pages by number on the way.
void numberDestinations(const std::vector<QPDFObjectHandle>& pages) {
  std::map<QPDFObjGen, int> numbers;
  for (const QPDFObjectHandle& page : pages) {
    numbers.emplace(page.getObjGen(), static_cast<int>(numbers.size()));
  }
  for (const QPDFObjectHandle& page : pages) {
    forEachAnnotation(page, [&](QPDFObjectHandle& annotation) {
      annotation.removeKey("/P");
      // Numbers in the outline of the old file's structure.
      annotation.removeKey("/StructParent");
      QPDFObjectHandle target = explicitDestination(annotation);
      if (target.isNull()) return;
      const auto number = numbers.find(target.getArrayItem(0).getObjGen());
      if (number == numbers.end()) return;
      target.setArrayItem(0, QPDFObjectHandle::newInteger(number->second));
    });
  }
}

// The page's object stays, and with it every destination on the page and its place in the
// structure; what it shows comes from the other file.
void replacePage(QPDF& pdf, QPDFObjectHandle page, QPDF& otherFile, QPDFObjectHandle other) {
  for (const std::string& key : page.getKeys()) {
    if (key != "/Type" && key != "/Parent" && key != "/StructParents") page.removeKey(key);
  }
  QPDFObjectHandle shown = QPDFObjectHandle::newDictionary();
  for (const std::string& key : other.getKeys()) {
    const bool stays = key == "/Type" || key == "/Parent" || key == "/StructParents" ||
                       key == "/B" || key == "/AA" || key == "/PieceInfo" || key == "/Thumb";
    if (!stays) shown.replaceKey(key, other.getKey(key));
  }
  QPDFObjectHandle copied = pdf.copyForeignObject(otherFile.makeIndirectObject(shown));
  for (const auto& [key, value] : copied.getDictAsMap()) page.replaceKey(key, value);
}

void resolveNumbers(QPDFObjectHandle page, const std::vector<QPDFObjectHandle>& pages,
                    size_t first) {
  forEachAnnotation(page, [&](QPDFObjectHandle& annotation) {
    annotation.replaceKey("/P", page);
    QPDFObjectHandle target = explicitDestination(annotation);
    if (target.isNull() || !target.getArrayItem(0).isInteger()) return;
    const auto number = static_cast<size_t>(target.getArrayItem(0).getIntValue());
    if (first + number < pages.size()) target.setArrayItem(0, pages[first + number]);
  });
}

PartResult splice(PartBytes bytes, size_t first, PartBytes replacement, PartSink result,
                  PartSink error) {
  QPDF pdf;
  QPDF otherFile;
  openPDF(pdf, bytes);
  openPDF(otherFile, replacement);
  const std::vector<QPDFObjectHandle> pages = pagesOf(pdf);
  const std::vector<QPDFObjectHandle> others = pagesOf(otherFile);
  if (first > pages.size() || others.size() > pages.size() - first) {
    return failed(error, "there are fewer pages than are to be replaced");
  }
  numberDestinations(others);
  for (size_t i = 0; i < others.size(); ++i)
    replacePage(pdf, pages[first + i], otherFile, others[i]);
  for (size_t i = 0; i < others.size(); ++i) resolveNumbers(pages[first + i], pages, first);
  return writePDF(pdf, result, error);
}

}  // namespace

}  // namespace lk::part

PartResult larkspirePDFWithPages(PartBytes pdf, size_t first, PartBytes replacement,
                                 PartSink result, PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] { return splice(pdf, first, replacement, result, error); });
}
