#include "LKCore/Base/DatePattern.h"

#include <unicode/locid.h>
#include <unicode/simpletz.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include <ctime>
#include <memory>

namespace lk {

namespace {

icu::UnicodeString patternText(std::string_view text) {
  return icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
}

icu::Locale localeNamed(const std::string& name) {
  if (name.empty()) return icu::Locale::getDefault();
  const bool isTooLong = name.size() >= ULOC_FULLNAME_CAPACITY;
  const icu::Locale locale =
      isTooLong ? icu::Locale::getRoot() : icu::Locale::createCanonical(name.c_str());
  return locale.isBogus() ? icu::Locale::getRoot() : locale;
}

// ICU's zone has the names; the C library's, which the rest of the system goes by, knows forms of
// TZ that ICU does not. Where they disagree the bare offset of the C library holds.
std::unique_ptr<icu::TimeZone> zoneAt(Instant instant, UDate date) {
  const std::time_t seconds = instant.seconds;
  std::tm parts{};
  localtime_r(&seconds, &parts);
  const auto offset = static_cast<int32_t>(parts.tm_gmtoff * 1000);
  std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::createDefault());
  int32_t raw = 0;
  int32_t saving = 0;
  UErrorCode status = U_ZERO_ERROR;
  if (zone) zone->getOffset(date, static_cast<UBool>(false), raw, saving, status);
  if (zone && U_SUCCESS(status) && raw + saving == offset) return zone;
  return std::make_unique<icu::SimpleTimeZone>(offset, icu::UnicodeString("GMT"));
}

// Reading a locale's names costs many times what a date costs, and a text asks for one locale.
struct LocaleFormat {
  std::string locale;
  std::unique_ptr<icu::SimpleDateFormat> format;
};

std::string textOf(icu::DateFormat& format, Instant instant) {
  const UDate date =
      static_cast<UDate>(instant.seconds) * 1000.0 + static_cast<UDate>(instant.nanoseconds) / 1e6;
  format.adoptTimeZone(zoneAt(instant, date).release());
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeString text;
  static_cast<const icu::DateFormat&>(format).format(date, text, nullptr, status);
  std::string result;
  return U_SUCCESS(status) ? text.toUTF8String(result) : result;
}

icu::SimpleDateFormat* formatFor(std::string_view locale) {
  thread_local LocaleFormat last;
  if (!last.format || last.locale != locale) {
    last.locale = locale;
    UErrorCode status = U_ZERO_ERROR;
    last.format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString("y"),
                                                          localeNamed(last.locale), status);
    if (U_FAILURE(status)) last.format.reset();
  }
  return last.format.get();
}

}  // namespace

std::string formatted(Instant instant, std::string_view icuPattern, std::string_view locale) {
  if (icuPattern.empty() || icuPattern.size() > kDatePatternLimit) return {};
  icu::SimpleDateFormat* const format = formatFor(locale);
  if (format == nullptr) return {};
  format->applyPattern(patternText(icuPattern));
  return textOf(*format, instant);
}

std::string formattedFullDate(Instant instant, std::string_view locale) {
  const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createDateInstance(
      icu::DateFormat::kFull, localeNamed(std::string(locale))));
  return format ? textOf(*format, instant) : std::string();
}

}  // namespace lk
