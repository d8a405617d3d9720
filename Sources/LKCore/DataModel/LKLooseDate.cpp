#include "LKCore/DataModel/LKLooseDate.h"

#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <memory>

#include "LKCore/Base/Text.h"

namespace lk::LKLooseDate {

namespace {

constexpr size_t kLongestDate = 24;  // bytes; a date has ASCII alone
constexpr size_t kLongestPiece = 4;
constexpr int kFirstYearOfLastCentury = 30;

using Pieces = std::array<std::string_view, 3>;

std::optional<Pieces> piecesOf(std::string_view text) {
  Pieces pieces;
  size_t count = 0;
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, text.find_first_of("-/."));
    text.remove_prefix(std::min(text.size(), piece.size() + 1));
    if (piece.empty()) continue;
    if (count == pieces.size()) return std::nullopt;
    pieces[count++] = piece;
  }
  if (count < pieces.size()) return std::nullopt;
  return pieces;
}

std::optional<int> numberOf(std::string_view piece) {
  const bool isNumber = piece.size() <= kLongestPiece &&
                        std::ranges::all_of(piece, [](char c) { return c >= '0' && c <= '9'; });
  int number = 0;
  if (!isNumber || !text::parseInteger(piece, number)) return std::nullopt;
  return number;
}

int fullYear(int year, std::string_view written) {
  if (written.size() > 2) return year;
  return year + (year >= kFirstYearOfLastCentury ? 1900 : 2000);
}

}  // namespace

std::optional<Day> parse(std::string_view text, std::optional<bool> dayFirst) {
  text = text::trimmed(text);
  if (text.empty() || text.size() > kLongestDate) return std::nullopt;
  const auto pieces = piecesOf(text);
  if (!pieces) return std::nullopt;
  const auto first = numberOf((*pieces)[0]);
  const auto second = numberOf((*pieces)[1]);
  const auto third = numberOf((*pieces)[2]);
  if (!first || !second || !third) return std::nullopt;
  if ((*pieces)[0].size() == kLongestPiece) return Day::make(*first, *second, *third);
  const int year = fullYear(*third, (*pieces)[2]);
  if (*first > 12 && *second > 12) return std::nullopt;
  const bool firstIsDay =
      *first > 12 || (*second <= 12 && (dayFirst ? *dayFirst : regionPutsDayFirst()));
  return firstIsDay ? Day::make(year, *second, *first) : Day::make(year, *first, *second);
}

bool isDateColumn(const std::vector<std::string>& cells) {
  size_t filled = 0;
  size_t dates = 0;
  for (const std::string& cell : cells) {
    if (text::trimmed(cell).empty()) continue;
    ++filled;
    if (parse(cell, std::nullopt)) ++dates;
  }
  return filled >= 2 && dates * 10 >= filled * 6;
}

bool regionPutsDayFirst() {
  static const bool isFirst = [] {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(icu::Locale::getDefault(), status));
    if (U_FAILURE(status) || !generator) return true;
    std::string pattern;
    generator->getBestPattern(icu::UnicodeString::fromUTF8("yMd"), status).toUTF8String(pattern);
    return U_FAILURE(status) || putsDayFirst(pattern);
  }();
  return isFirst;
}

bool putsDayFirst(std::string_view pattern) {
  const size_t day = pattern.find('d');
  const size_t month = pattern.find('M');
  if (day == std::string_view::npos || month == std::string_view::npos) return true;
  return day < month;
}

}  // namespace lk::LKLooseDate
