// The words of the pages, by poppler.

#include <poppler-document.h>
#include <poppler-global.h>
#include <poppler-page.h>

#include <algorithm>
#include <climits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "Modules/PartGuard.h"

namespace lk::part {

namespace {

void dropMessage(const std::string& /*message*/, void* /*closure*/) {}

std::unique_ptr<poppler::document> openDocument(PartBytes pdf) {
  if (pdf.size > INT_MAX) throw std::runtime_error("too large");
  // It would go to standard error.
  poppler::set_debug_error_function(dropMessage, nullptr);
  std::unique_ptr<poppler::document> document(
      poppler::document::load_from_raw_data(pdf.data, static_cast<int>(pdf.size)));
  if (document == nullptr || document->is_locked()) throw std::runtime_error("not a PDF");
  return document;
}

// Whether a word stands on another line than the one before it.
bool startsLine(const poppler::rectf& before, const poppler::rectf& word) {
  const double overlap =
      std::min(before.bottom(), word.bottom()) - std::max(before.top(), word.top());
  return overlap < 0.5 * std::min(before.height(), word.height()) || word.left() < before.left();
}

bool putWords(const poppler::page& page, PartPageSink pages) {
  const std::vector<poppler::text_box> boxes = page.text_list();
  for (size_t i = 0; i < boxes.size(); ++i) {
    const poppler::rectf place = boxes[i].bbox();
    const bool endsLine = i + 1 == boxes.size() || startsLine(place, boxes[i + 1].bbox());
    const poppler::byte_array text = boxes[i].text().to_utf8();
    const PartWord word = {{text.data(), text.size()},
                           place.left(),
                           place.top(),
                           place.right(),
                           place.bottom(),
                           endsLine,
                           boxes[i].has_space_after()};
    if (!pages.word(pages.target, &word)) return false;
  }
  return true;
}

PartResult putPages(PartBytes pdf, PartPageSink pages, PartSink error) {
  const std::unique_ptr<poppler::document> document = openDocument(pdf);
  for (int i = 0; i < document->pages(); ++i) {
    const std::unique_ptr<poppler::page> page(document->create_page(i));
    if (page == nullptr) return failed(error, "page " + std::to_string(i + 1) + " is damaged");
    const poppler::rectf area = page->page_rect();
    const bool isTaken =
        pages.page(pages.target, area.width(), area.height()) && putWords(*page, pages);
    if (!isTaken) return failed(error, "out of memory");
  }
  return PartResult::done;
}

}  // namespace

}  // namespace lk::part

PartResult larkspirePDFPages(PartBytes pdf, PartPageSink pages, PartSink error) noexcept {
  using namespace lk::part;
  return guarded(error, [&] { return putPages(pdf, pages, error); });
}
