// The last touch to a PDF: outline, properties, no actions, by qpdf.

#include <qpdf/QUtil.hh>

#include <algorithm>
#include <climits>
#include <stdexcept>
#include <string>

#include "Modules/PartGuard.h"
#include "Modules/pdf/PDFFile.h"
#include "Modules/pdf/PDFSafety.h"

namespace lk::part {

namespace {

// Every reader program knows ASCII and UTF-16; a PDF's own 8-bit letters are often misread.
QPDFObjectHandle textObject(PartBytes bytes) {
  const std::string text(view(bytes));
  const bool isASCII = std::all_of(text.begin(), text.end(),
                                   [](char c) { return static_cast<unsigned char>(c) < 0x80; });
  return QPDFObjectHandle::newString(isASCII ? text : QUtil::utf8_to_utf16(text));
}

// An entry to which others can still be added, the outline itself being the first.
struct OpenEntry {
  int level;
  QPDFObjectHandle object;
  QPDFObjectHandle last;  // of its entries
  int count;              // of its entries
};

void append(OpenEntry& parent, QPDFObjectHandle entry) {
  entry.replaceKey("/Parent", parent.object);
  if (parent.count == 0) {
    parent.object.replaceKey("/First", entry);
  } else {
    parent.last.replaceKey("/Next", entry);
    entry.replaceKey("/Prev", parent.last);
  }
  parent.object.replaceKey("/Last", entry);
  parent.last = entry;
  ++parent.count;
  // Below zero: shown closed. The outline itself is open.
  const int shown = parent.level == INT_MIN ? parent.count : -parent.count;
  parent.object.replaceKey("/Count", QPDFObjectHandle::newInteger(shown));
}

QPDFObjectHandle destinationObject(const std::vector<QPDFObjectHandle>& pages,
                                   const PartDestination& destination) {
  if (destination.page >= pages.size()) throw std::runtime_error("an outline entry has no page");
  const QPDFObjectHandle& page = pages[destination.page];
  const PageBox box = pageBox(page);
  QPDFObjectHandle array = QPDFObjectHandle::newArray();
  array.appendItem(page);
  array.appendItem(QPDFObjectHandle::newName("/XYZ"));
  array.appendItem(QPDFObjectHandle::newReal(box.left + destination.left, 2));
  array.appendItem(QPDFObjectHandle::newReal(box.top - destination.top, 2));
  array.appendItem(QPDFObjectHandle::newNull());
  return array;
}

void setOutline(QPDF& pdf, const PartOutlineEntry* entries, size_t count) {
  QPDFObjectHandle catalog = pdf.getRoot();
  catalog.removeKey("/Outlines");
  catalog.removeKey("/PageMode");
  if (count == 0) return;
  const std::vector<QPDFObjectHandle> pages = pagesOf(pdf);
  QPDFObjectHandle outline = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
  outline.replaceKey("/Type", QPDFObjectHandle::newName("/Outlines"));
  std::vector<OpenEntry> open = {{INT_MIN, outline, QPDFObjectHandle::newNull(), 0}};
  for (size_t i = 0; i < count; ++i) {
    const int level = std::max(entries[i].level, 1);
    while (open.back().level >= level) open.pop_back();
    QPDFObjectHandle entry = pdf.makeIndirectObject(QPDFObjectHandle::newDictionary());
    entry.replaceKey("/Title", textObject(entries[i].title));
    entry.replaceKey("/Dest", destinationObject(pages, entries[i].destination));
    append(open.back(), entry);
    open.push_back({level, entry, QPDFObjectHandle::newNull(), 0});
  }
  catalog.replaceKey("/Outlines", outline);
  catalog.replaceKey("/PageMode", QPDFObjectHandle::newName("/UseOutlines"));
}

void setText(QPDFObjectHandle dictionary, const std::string& key, PartBytes text) {
  dictionary.removeKey(key);
  if (text.size > 0) dictionary.replaceKey(key, textObject(text));
}

void setProperties(QPDF& pdf, const PartPDFProperties& properties) {
  // Nothing of what the program that drew the pages says stays but its name: its times least.
  QPDFObjectHandle info = QPDFObjectHandle::newDictionary();
  QPDFObjectHandle trailer = pdf.getTrailer();
  QPDFObjectHandle old = trailer.getKey("/Info");
  if (old.isDictionary() && old.hasKey("/Producer")) {
    info.replaceKey("/Producer", old.getKey("/Producer"));
  }
  info.replaceKey("/Creator", QPDFObjectHandle::newString("Larkspire"));
  setText(info, "/Title", properties.title);
  setText(info, "/Author", properties.author);
  setText(info, "/CreationDate", properties.date);
  setText(info, "/ModDate", properties.date);
  trailer.replaceKey("/Info", pdf.makeIndirectObject(info));

  QPDFObjectHandle catalog = pdf.getRoot();
  catalog.removeKey("/Metadata");
  setText(catalog, "/Lang", properties.language);
  if (!catalog.getKey("/ViewerPreferences").isDictionary()) {
    catalog.replaceKey("/ViewerPreferences", QPDFObjectHandle::newDictionary());
  }
  catalog.getKey("/ViewerPreferences")
      .replaceKey("/DisplayDocTitle", QPDFObjectHandle::newBool(properties.title.size > 0));
}

}  // namespace

}  // namespace lk::part

PartResult larkspireFinishedPDF(PartBytes pdf, const PartOutlineEntry* entries, size_t count,
                                const PartPDFProperties* properties, PartSink result,
                                PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] {
    QPDF file;
    openPDF(file, pdf);
    removeActions(file);
    setOutline(file, entries, count);
    setProperties(file, *properties);
    return writePDF(file, result, error);
  });
}
