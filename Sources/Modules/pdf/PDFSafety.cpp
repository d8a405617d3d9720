#include "Modules/pdf/PDFSafety.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <string_view>

#include "Modules/pdf/PDFFile.h"

namespace lk::part {

namespace {

constexpr std::array<std::string_view, 4> kHarmlessSchemes = {"http", "https", "mailto", "tel"};

// A relative address is none: readers look for it beside the file.
bool isHarmlessAddress(const std::string& address) {
  std::string scheme = address.substr(0, address.find(':'));
  if (scheme.size() == address.size()) return false;
  std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::find(kHarmlessSchemes.begin(), kHarmlessSchemes.end(), scheme) !=
         kHarmlessSchemes.end();
}

// Actions are chained by "/Next", which is left out with no question.
bool isHarmlessAction(QPDFObjectHandle action) {
  if (!action.isDictionary() || action.hasKey("/Next")) return false;
  QPDFObjectHandle kind = action.getKey("/S");
  if (!kind.isName()) return false;
  if (kind.getName() == "/GoTo") return true;
  QPDFObjectHandle address = action.getKey("/URI");
  return kind.getName() == "/URI" && address.isString() &&
         isHarmlessAddress(address.getStringValue());
}

bool isLink(QPDFObjectHandle annotation) {
  return annotation.isDictionaryOfType("", "/Link");
}

void cleanLink(QPDFObjectHandle annotation) {
  annotation.removeKey("/AA");
  annotation.removeKey("/PA");
  if (annotation.hasKey("/A") && !isHarmlessAction(annotation.getKey("/A"))) {
    annotation.removeKey("/A");
  }
}

void cleanPage(QPDFObjectHandle page) {
  page.removeKey("/AA");
  QPDFObjectHandle annotations = page.getKey("/Annots");
  if (!annotations.isArray()) return;
  QPDFObjectHandle kept = QPDFObjectHandle::newArray();
  for (const QPDFObjectHandle& annotation : annotations.getArrayAsVector()) {
    if (!isLink(annotation)) continue;
    cleanLink(annotation);
    kept.appendItem(annotation);
  }
  page.replaceKey("/Annots", kept);
}

}  // namespace

void removeActions(QPDF& pdf) {
  QPDFObjectHandle catalog = pdf.getRoot();
  for (const char* key : {"/AA", "/AF", "/AcroForm", "/Collection", "/OpenAction", "/URI"}) {
    catalog.removeKey(key);
  }
  QPDFObjectHandle names = catalog.getKey("/Names");
  if (names.isDictionary()) {
    for (const std::string& key : names.getKeys()) {
      if (key != "/Dests") names.removeKey(key);
    }
  }
  for (const QPDFObjectHandle& page : pdf.getAllPages()) cleanPage(page);
  // Links of pages that were replaced may still belong to the structure of the text.
  for (const QPDFObjectHandle& object : pdf.getAllObjects()) {
    if (isLink(object)) cleanLink(object);
  }
}

}  // namespace lk::part
