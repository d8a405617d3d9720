#include "LKCore/Base/LocaleText.h"

#include <unicode/locid.h>
#include <unicode/rbnf.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>

namespace lk {

namespace {

icu::Locale languageNamed(std::string_view name) {
  if (name.empty()) return icu::Locale::getDefault();
  if (name.size() >= ULOC_FULLNAME_CAPACITY) return icu::Locale::getRoot();
  const icu::Locale locale = icu::Locale::createCanonical(std::string(name).c_str());
  return locale.isBogus() ? icu::Locale::getRoot() : locale;
}

}  // namespace

std::string capitalised(std::string_view text, std::string_view locale) {
  auto words = icu::UnicodeString::fromUTF8({text.data(), static_cast<int32_t>(text.size())});
  words.toTitle(nullptr, languageNamed(locale));
  std::string result;
  return words.toUTF8String(result);
}

std::string spelledOut(int64_t number, std::string_view locale) {
  UErrorCode status = U_ZERO_ERROR;
  const auto format = std::make_unique<icu::RuleBasedNumberFormat>(icu::URBNF_SPELLOUT,
                                                                   languageNamed(locale), status);
  if (U_FAILURE(status)) return std::to_string(number);
  icu::UnicodeString words;
  static_cast<const icu::NumberFormat&>(*format).format(number, words);
  // A soft hyphen is where a word may break; a title is broken elsewhere.
  words.findAndReplace(icu::UnicodeString(static_cast<UChar>(0xAD)), icu::UnicodeString());
  std::string result;
  return words.toUTF8String(result);
}

std::string userLocale() {
  return icu::Locale::getDefault().getName();
}

std::string languageTag(std::string_view locale) {
  std::string tag(locale.substr(0, locale.find_first_of(".@")));
  std::ranges::replace(tag, '_', '-');
  const bool isLanguage = tag.size() >= 2 && !tag.starts_with("C") && !tag.starts_with("POSIX") &&
                          !tag.ends_with("-POSIX");
  const bool isPlain = std::ranges::all_of(tag, [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
  });
  return isLanguage && isPlain ? tag : std::string();
}

}  // namespace lk
