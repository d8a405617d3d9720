#include "LKCore/PDF/LKBindPDFOutline.h"

#include <algorithm>
#include <utility>

#include "LKCore/Base/Text.h"

namespace lk::LKBindPDFOutline {

namespace {

// What remains of a text when typesetting is taken out of it: ligatures, case, accents, hyphens.
std::string searchForm(std::string_view word) {
  std::string plain(word);
  static constexpr std::pair<std::string_view, std::string_view> kLigatures[] = {
      {"\uFB00", "ff"},  {"\uFB01", "fi"},  {"\uFB02", "fl"},
      {"\uFB03", "ffi"}, {"\uFB04", "ffl"}, {"\u00AD", ""}};
  for (const auto& [from, to] : kLigatures) {
    if (plain.find(from) != std::string::npos) plain = text::replacingAll(plain, from, to);
  }
  return text::folded(plain);
}

std::string withoutBlanks(std::string_view text) {
  std::string result;
  for (size_t i = 0; i < text.size();) {
    const auto [scalar, length] = text::decode(text, i);
    if (!text::isWhitespaceOrNewline(scalar)) result.append(text.substr(i, length));
    i += length;
  }
  return result;
}

// Searches go forward through the book, over the contents list at a stride.
class ForwardSearch {
 public:
  explicit ForwardSearch(PageTexts texts) : texts_(std::move(texts)) {}

  std::optional<PDFDestination> next(const Heading& heading) {
    if (heading.text.empty()) return {};
    bool isWhole = true;
    for (const std::string& query : searchQueries(heading.text)) {
      if (const auto found = texts_.locate(query, from_, isWhole)) {
        from_ = found->behind;
        const PDFWord& word = texts_.word(found->first);
        return PDFDestination{found->first.page, word.left, word.top};
      }
      isWhole = false;
    }
    return {};
  }

  // Behind the list that names these headings: it ends a page.
  void passContents(const std::vector<Heading>& headings, size_t firstListed) {
    Place last = from_;
    for (size_t i = firstListed; i < headings.size(); ++i) {
      if (!headings[i].identifier.starts_with("bind-toc-")) continue;
      const auto entry = texts_.locate(headings[i].text, last, false);
      if (!entry || entry->first.page > last.page + 1) break;
      last = entry->behind;
    }
    from_ = {last.page + 1, 0};
  }

  void moveTo(size_t page) { from_ = std::max(from_, Place{page, 0}); }

 private:
  PageTexts texts_;
  Place from_;
};

}  // namespace

std::vector<std::string> searchQueries(std::string_view text) {
  std::vector<std::string> queries = {std::string(text)};
  const std::vector<std::string_view> words = text::split(text, ' ');
  for (const size_t count : {size_t{8}, size_t{4}}) {
    if (words.size() <= count) continue;
    std::string query(words.front());
    for (size_t i = 1; i < count; ++i) query.append(" ").append(words[i]);
    queries.push_back(std::move(query));
  }
  return queries;
}

PageTexts::PageTexts(std::vector<PDFPage> pages, MarginBands bands) {
  pages_.reserve(pages.size());
  for (PDFPage& page : pages) {
    Page made;
    for (PDFWord& word : page.words) {
      const bool isHead = word.bottom <= bands.top || word.top >= page.height - bands.bottom;
      if (isHead) continue;
      made.offsets.push_back(made.joined.size());
      made.joined.append(searchForm(word.text));
      made.words.push_back(std::move(word));
    }
    made.offsets.push_back(made.joined.size());
    pages_.push_back(std::move(made));
  }
}

std::optional<FoundText> PageTexts::locate(std::string_view query, Place from,
                                           bool wholeLines) const {
  const std::string wanted = searchForm(withoutBlanks(query));
  if (wanted.empty()) return {};
  for (size_t number = from.page; number < pages_.size(); ++number) {
    const Page& page = pages_[number];
    const size_t firstWord = number == from.page ? from.word : 0;
    if (firstWord >= page.words.size()) continue;
    for (size_t at = page.joined.find(wanted, page.offsets[firstWord]); at != std::string::npos;
         at = page.joined.find(wanted, at + 1)) {
      const auto first = std::ranges::lower_bound(page.offsets, at);
      const auto behind = std::ranges::lower_bound(page.offsets, at + wanted.size());
      if (*first != at || behind == page.offsets.end() || *behind != at + wanted.size()) continue;
      const auto word = static_cast<size_t>(first - page.offsets.begin());
      const auto end = static_cast<size_t>(behind - page.offsets.begin());
      const bool beginsLine = word == 0 || page.words[word - 1].endsLine;
      const bool endsLine = end == page.words.size() || page.words[end - 1].endsLine;
      if (beginsLine && (endsLine || !wholeLines)) return FoundText{{number, word}, {number, end}};
    }
  }
  return {};
}

std::vector<std::optional<PDFDestination>> locations(std::string_view pdf,
                                                     const std::vector<Heading>& headings,
                                                     MarginBands bands) {
  const auto named = pdfDestinations(pdf);
  std::vector<std::optional<PDFDestination>> result;
  std::optional<ForwardSearch> search;  // reads the words of all pages: not without need
  for (size_t i = 0; i < headings.size(); ++i) {
    const auto known = named.find(headings[i].identifier);
    if (known != named.end()) {
      result.emplace_back(known->second);
      if (search) search->moveTo(known->second.page);
      continue;
    }
    if (!search) {
      search.emplace(PageTexts(pdfPages(pdf), bands));
      const auto last = std::find_if(result.rbegin(), result.rend(),
                                     [](const auto& place) { return place.has_value(); });
      if (last != result.rend()) search->moveTo((*last)->page);
    }
    result.push_back(search->next(headings[i]));
    if (headings[i].opensContents && result.back()) search->passContents(headings, i + 1);
  }
  return result;
}

std::vector<PDFOutlineEntry> entries(const std::vector<Heading>& headings,
                                     const std::vector<std::optional<PDFDestination>>& locations) {
  std::vector<PDFOutlineEntry> result;
  for (size_t i = 0; i < headings.size(); ++i) {
    if (headings[i].text.empty() || !locations[i]) continue;
    result.push_back({headings[i].text, headings[i].level, *locations[i]});
  }
  return result;
}

std::string addingOutline(std::string_view pdf, const std::vector<Heading>& headings,
                          MarginBands bands) {
  const std::vector<PDFOutlineEntry> outline = entries(headings, locations(pdf, headings, bands));
  return outline.empty() ? std::string(pdf) : finishedPDF(pdf, outline, {});
}

}  // namespace lk::LKBindPDFOutline
