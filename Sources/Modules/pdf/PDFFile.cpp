#include "Modules/pdf/PDFFile.h"

#include <qpdf/Buffer.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <memory>

#include "Modules/PartGuard.h"

namespace lk::part {

void openPDF(QPDF& pdf, PartBytes bytes) {
  pdf.setSuppressWarnings(true);
  pdf.setAttemptRecovery(false);
  pdf.processMemoryFile("PDF", bytes.data, bytes.size);
}

PartResult writePDF(QPDF& pdf, PartSink result, PartSink error) {
  // The first half of an identifier would come from the program that drew the pages.
  pdf.getTrailer().removeKey("/ID");
  QPDFWriter writer(pdf);
  writer.setOutputMemory();
  writer.setObjectStreamMode(qpdf_o_generate);
  writer.setDeterministicID(true);
  writer.write();
  const std::shared_ptr<Buffer> buffer = writer.getBufferSharedPointer();
  const bool isTaken =
      put(result, {reinterpret_cast<const char*>(buffer->getBuffer()), buffer->getSize()});
  return isTaken ? PartResult::done : failed(error, "out of memory");
}

PageBox pageBox(const QPDFObjectHandle& page) {
  QPDFPageObjectHelper helper(page);
  const QPDFObjectHandle::Rectangle box = helper.getCropBox().getArrayAsRectangle();
  return {box.llx, box.ury};
}

std::vector<QPDFObjectHandle> pagesOf(QPDF& pdf) {
  QPDFPageDocumentHelper(pdf).pushInheritedAttributesToPage();
  return pdf.getAllPages();
}

}  // namespace lk::part
