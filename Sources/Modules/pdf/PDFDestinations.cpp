// The pages and the named destinations of a PDF, by qpdf.

#include <qpdf/QPDFNameTreeObjectHelper.hh>

#include <map>
#include <string>

#include "Modules/PartGuard.h"
#include "Modules/pdf/PDFFile.h"

namespace lk::part {

namespace {

class DestinationReader {
 public:
  DestinationReader(QPDF& pdf, PartDestinationSink sink) : sink_(sink), pages_(pagesOf(pdf)) {
    for (size_t i = 0; i < pages_.size(); ++i) pageNumbers_[pages_[i].getObjGen()] = i;
  }

  // False when the sink takes no more. A destination that leads to no page here is left out.
  bool read(const std::string& name, QPDFObjectHandle target) {
    if (target.isDictionary()) target = target.getKey("/D");
    if (!target.isArray() || target.getArrayNItems() < 2) return true;
    const auto page = pageNumbers_.find(target.getArrayItem(0).getObjGen());
    if (page == pageNumbers_.end()) return true;
    const PageBox box = pageBox(pages_[page->second]);
    const std::string kind =
        target.getArrayItem(1).isName() ? target.getArrayItem(1).getName() : "";
    PartDestination destination = {page->second, 0, 0};
    if (kind == "/XYZ") {
      destination.left = number(target, 2, box.left) - box.left;
      destination.top = box.top - number(target, 3, box.top);
    } else if (kind == "/FitH" || kind == "/FitBH") {
      destination.top = box.top - number(target, 2, box.top);
    }
    return sink_.take(sink_.target, {name.data(), name.size()}, destination);
  }

 private:
  static double number(QPDFObjectHandle& array, int place, double otherwise) {
    const bool isThere = place < array.getArrayNItems() && array.getArrayItem(place).isNumber();
    return isThere ? array.getArrayItem(place).getNumericValue() : otherwise;
  }

  PartDestinationSink sink_;
  std::vector<QPDFObjectHandle> pages_;
  std::map<QPDFObjGen, size_t> pageNumbers_;
};

// Older files keep them in a dictionary of the catalog, newer ones in a tree.
PartResult putDestinations(PartBytes bytes, PartDestinationSink sink, PartSink error) {
  QPDF pdf;
  openPDF(pdf, bytes);
  DestinationReader reader(pdf, sink);
  QPDFObjectHandle listed = pdf.getRoot().getKey("/Dests");
  if (listed.isDictionary()) {
    for (const std::string& name : listed.getKeys()) {
      if (!reader.read(name.substr(1), listed.getKey(name))) return failed(error, "out of memory");
    }
  }
  QPDFObjectHandle names = pdf.getRoot().getKey("/Names");
  if (!names.isDictionary() || !names.getKey("/Dests").isDictionary()) return PartResult::done;
  QPDFNameTreeObjectHelper tree(names.getKey("/Dests"), pdf, false);
  for (const auto& [name, target] : tree) {
    if (!reader.read(name, target)) return failed(error, "out of memory");
  }
  return PartResult::done;
}

}  // namespace

}  // namespace lk::part

PartResult larkspirePDFPageCount(PartBytes pdf, size_t* count, PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] {
    QPDF file;
    openPDF(file, pdf);
    *count = file.getAllPages().size();
    return PartResult::done;
  });
}

PartResult larkspirePDFDestinations(PartBytes pdf, PartDestinationSink destinations,
                                    PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] { return putDestinations(pdf, destinations, error); });
}
