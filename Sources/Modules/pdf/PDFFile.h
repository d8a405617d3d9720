#pragma once

// What the functions on the objects of a PDF file share.

#include <qpdf/QPDF.hh>
#include <qpdf/QPDFObjectHandle.hh>
#include <vector>

#include "LKCore/Modules/ModuleInterface.h"

namespace lk::part {

// Reads a whole PDF; a damaged one is not repaired. The bytes must outlive `pdf`.
void openPDF(QPDF& pdf, PartBytes bytes);

// The file's bytes, which follow from its objects alone.
PartResult writePDF(QPDF& pdf, PartSink result, PartSink error);

// The visible area of a page.
struct PageBox {
  double left = 0;
  double top = 0;  // from the lower edge of the sheet, as everything in a PDF
};

PageBox pageBox(const QPDFObjectHandle& page);

// The pages, each of them with what the tree of pages says for several.
std::vector<QPDFObjectHandle> pagesOf(QPDF& pdf);

}  // namespace lk::part
