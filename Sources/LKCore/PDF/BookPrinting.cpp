#include "LKCore/PDF/BookPrinting.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

#include "LKCore/Base/Text.h"
#include "LKCore/Bind/CSSText.h"
#include "LKCore/Bind/LKBindCSSGenerator.h"
#include "LKCore/Bind/LKBindTokenResolver.h"
#include "LKCore/Modules/PDFPages.h"
#include "LKCore/PDF/LKBindPDFOutline.h"
#include "LKCore/PDF/PrintedPage.h"

namespace lk {

namespace {

using BookHeadings = std::vector<LKBindPDFOutline::Heading>;
using HeadingPlaces = std::vector<std::optional<PDFDestination>>;

constexpr double kPointsPerInch = 72;
constexpr int kMoreWholePrints = 2;  // for contents that grow when their numbers are set

std::string printedNumber(size_t number, LKBindPageNumberStyle style) {
  if (style != LKBindPageNumberStyle::arabic) {
    if (const auto roman = LKBindTokenResolver::romanNumeral(static_cast<int64_t>(number))) {
      return style == LKBindPageNumberStyle::romanUpper ? *roman : text::lowercased(*roman);
    }
  }
  return std::to_string(number);
}

bool isListed(const LKBindPDFOutline::Heading& heading) {
  return heading.identifier.starts_with("bind-toc-");
}

struct Contents {
  size_t firstPage = 0;  // from 0
  size_t pageCount = 0;
  std::vector<std::string>
      numbers;  // by heading, as values of `content`; empty where none is known

  // "3-4", counted from 1.
  std::string range() const {
    return std::to_string(firstPage + 1) + "-" + std::to_string(firstPage + pageCount);
  }
};

// One book on its way through one engine.
class BookPrint {
 public:
  BookPrint(PrintedPage::Document document, const LKBindSpec& spec, PrintJob job,
            PrintEngine& engine, PrintEngine::Deadline deadline)
      : document_(std::move(document)),
        spec_(spec),
        job_(std::move(job)),
        engine_(engine),
        deadline_(deadline) {}

  const BookHeadings& headings() const { return document_.headings; }

  // The pages of the book, contents without numbers yet where the engine does not set them.
  std::string wholeBook() {
    if (engine_.fillsPageNumbers()) sheet_ = PrintedPage::numbersSheet(headings(), counters());
    return print("");
  }

  HeadingPlaces places(std::string_view pdf) const {
    const LKBindMargins& margin = spec_.page.marginIn;
    return LKBindPDFOutline::locations(
        pdf, headings(), {margin.topIn * kPointsPerInch, margin.bottomIn * kPointsPerInch});
  }

  bool wantsNumbers() const {
    return !engine_.fillsPageNumbers() && std::ranges::any_of(headings(), isListed);
  }

  // The book with numbers in its contents. The contents alone are printed again, and the whole book
  // when they then take more or fewer pages.
  std::string withNumbers(std::string pdf) {
    for (int i = 0;; ++i) {
      const std::optional<Contents> contents = contentsOf(places(pdf));
      if (!contents) return pdf;
      const std::string sheet = PrintedPage::numbersSheet(headings(), contents->numbers);
      if (sheet == sheet_) return pdf;
      const bool marksEnd = pdfDestinations(pdf).contains(document_.contentsEnd);
      sheet_ = sheet;
      const std::string pages = print(contents->range());
      if (fits(pages, contents->pageCount, marksEnd)) {
        return pdfWithPages(pdf, contents->firstPage, pages);
      }
      if (i == kMoreWholePrints) break;
      pdf = print("");
    }
    throw LKBindPDFError::pdfGenerationFailed(
        "The contents take another number of pages each time their page numbers are set.");
  }

 private:
  std::string print(const std::string& pages) {
    if (std::chrono::steady_clock::now() >= deadline_) throw LKBindPDFError::timeout();
    PrintJob job = job_;
    job.html =
        PrintedPage::withSheet(document_.html, PrintedPage::paperSheet() + ownSheet() + sheet_);
    return engine_.print(job, pages, deadline_);
  }

  // The typesetter knows no centring in flexible boxes.
  std::string ownSheet() const {
    if (!engine_.fillsPageNumbers()) return {};
    const LKBindMargins& margin = spec_.page.marginIn;
    return PrintedPage::plainTitlePageSheet(spec_.frontMatter.titlePage,
                                            job_.heightIn - margin.topIn - margin.bottomIn);
  }

  std::vector<std::string> counters() const {
    std::vector<std::string> values;
    for (const LKBindPDFOutline::Heading& heading : headings()) {
      values.push_back(
          "target-counter(" + css::quoted("#" + heading.identifier) + ", page, " +
          std::string(LKBindCSSGenerator::counterStyleName(spec_.headerFooter.pageNumberStyle)) +
          ")");
    }
    return values;
  }

  // The contents end where the heading behind their title stands, which begins a page.
  std::optional<Contents> contentsOf(const HeadingPlaces& places) const {
    const auto title =
        std::ranges::find(headings(), true, &LKBindPDFOutline::Heading::opensContents);
    const auto index = static_cast<size_t>(title - headings().begin());
    if (index + 1 >= headings().size() || !places[index] || !places[index + 1]) return {};
    const size_t first = places[index]->page;
    const size_t book = places[index + 1]->page;
    if (book <= first) return {};
    Contents contents{first, book - first, {}};
    const LKBindHeaderFooter& heads = spec_.headerFooter;
    const size_t before = LKBindCSSGenerator::countsFrontMatterApart(heads) ? book : 0;
    for (size_t i = 0; i < headings().size(); ++i) {
      const bool isKnown = places[i] && places[i]->page >= before;
      contents.numbers.push_back(
          isKnown ? css::quoted(printedNumber(places[i]->page - before + 1, heads.pageNumberStyle))
                  : std::string());
    }
    return contents;
  }

  // Whether the contents' last line stands on the last page that was printed again. What comes
  // behind that page would be missing there.
  bool fits(std::string_view pages, size_t pageCount, bool marksEnd) const {
    if (pdfPageCount(pages) != pageCount) return false;
    if (!marksEnd) return true;
    const auto named = pdfDestinations(pages);
    const auto end = named.find(document_.contentsEnd);
    return end != named.end() && end->second.page + 1 == pageCount;
  }

  PrintedPage::Document document_;
  const LKBindSpec& spec_;
  PrintJob job_;
  PrintEngine& engine_;
  PrintEngine::Deadline deadline_;
  std::string sheet_;  // of the numbers
};

PrintJob emptyJob(const LKBindPage& page, const std::filesystem::path& collectionRoot) {
  PrintJob job{.html = {},
               .collectionRoot = collectionRoot,
               .widthIn = page.widthIn,
               .heightIn = page.heightIn};
  if (page.orientation == LKBindOrientation::landscape) std::swap(job.widthIn, job.heightIn);
  return job;
}

std::string languageOf(const LKBindSubject& subject) {
  const std::string language = LKBindEngine::bookLanguage(subject);
  return language.empty() ? "en" : language;
}

// "D:20260314092653Z"; a book of no date has none.
std::string dateOf(Instant date) {
  if (date == Instant{}) return {};
  std::string digits = "D:";
  for (const char c : formatISO8601(date)) {
    if ((c >= '0' && c <= '9') || c == 'Z') digits.push_back(c);
  }
  return digits;
}

}  // namespace

std::string printedBook(std::string_view html, const LKBindSpec& spec, const LKBindSubject& subject,
                        const std::filesystem::path& collectionRoot, PrintEngine& engine,
                        PrintEngine::Deadline deadline, const LKBindPDFRenderer::Stage& stage) {
  const auto begin = [&](std::string_view words) {
    if (stage) stage(words);
  };
  const std::string language = languageOf(subject);
  BookPrint book(PrintedPage::document(html, language), spec, emptyJob(spec.page, collectionRoot),
                 engine, deadline);
  begin("Laying out pages");
  std::string pdf = book.wholeBook();
  try {
    if (book.wantsNumbers()) {
      begin("Setting page numbers");
      pdf = book.withNumbers(std::move(pdf));
    }
    begin("Writing the outline");
    const PDFProperties properties = {.title = LKBindEngine::bookTitle(spec, subject),
                                      .author = subject.author,
                                      .language = language,
                                      .date = dateOf(subject.date)};
    pdf =
        finishedPDF(pdf, LKBindPDFOutline::entries(book.headings(), book.places(pdf)), properties);
  } catch (const PDFPagesError& error) {
    throw LKBindPDFError::pdfGenerationFailed("Could not read generated PDF: " +
                                              error.description());
  }
  if (std::chrono::steady_clock::now() >= deadline) throw LKBindPDFError::timeout();
  return pdf;
}

}  // namespace lk
