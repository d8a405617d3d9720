// Any bytes as the body of a book: what comes out is well-formed, with unknown tags written as text
// first or not, and converting it again changes nothing of that.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/EPUB/EPUBStyle.h"
#include "LKCore/EPUB/LKBindEPUBBuilder.h"
#include "LKCore/EPUB/XHTML.h"
#include "Support/XMLCheck.h"

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

std::string converted(std::string_view html) {
  const lk::xhtml::Body body = lk::xhtml::xhtmlBody(html, {"images/img1.png"});
  require(
      !lk::test::xmlError("<body xmlns=\"http://www.w3.org/1999/xhtml\" "
                          "xmlns:epub=\"http://www.idpf.org/2007/ops\">" +
                          body.markup + "</body>"));
  require(body.markup.find("<script") == std::string::npos);
  return body.markup;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  namespace Builder = lk::LKBindEPUBBuilder;
  const std::string_view html(reinterpret_cast<const char*>(data), size);
  converted(converted(html));
  converted(Builder::escapeUnknownTags(
      Builder::wrapStructuralSections(Builder::addChapterAnchors(html))));
  require(!lk::test::xmlError(
      Builder::makeNavXHTML(html, Builder::extractStructuralTOC(html), true, "en")));
  lk::xhtml::readerSheet(html, 12);
  return 0;
}
