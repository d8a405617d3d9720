#include "LKCore/Base/Words.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <array>
#include <cstdint>
#include <memory>

namespace lk {

namespace {

enum WordTrait : uint8_t {
  kWordLetter = 1,   // an ASCII letter or digit
  kWordGap = 2,      // ASCII white space, at which words never hang together
  kWordJoiner = 4,   // may hold two letters or digits together, by rules that are ICU's
  kWordForeign = 8,  // not ASCII
};

constexpr std::array<uint8_t, 256> wordTraits() {
  std::array<uint8_t, 256> traits{};
  for (unsigned c = '0'; c <= '9'; ++c) traits[c] = kWordLetter;
  for (unsigned c = 'a'; c <= 'z'; ++c) traits[c] = traits[c - 'a' + 'A'] = kWordLetter;
  for (unsigned c = 0x09; c <= 0x0D; ++c) traits[c] = kWordGap;
  traits[' '] = kWordGap;
  for (const char c : {'\'', '"', '.', ',', ':', ';', '_'}) {
    traits[static_cast<unsigned char>(c)] = kWordJoiner;
  }
  for (unsigned c = 0x80; c < 256; ++c) traits[c] = kWordForeign;
  return traits;
}

constexpr std::array<uint8_t, 256> kWordTraits = wordTraits();

uint8_t wordTrait(char c) {
  return kWordTraits[static_cast<unsigned char>(c)];
}

// A run between white space. Its words are counted here when they are ASCII and need no rules.
struct WordRun {
  size_t size = 0;   // bytes
  size_t words = 0;  // when plain
  bool isPlain = true;
};

WordRun takeRun(std::string_view text) {
  WordRun run;
  uint8_t before = kWordGap;
  uint8_t beforeJoiner = kWordGap;
  for (; run.size < text.size(); ++run.size) {
    const uint8_t trait = wordTrait(text[run.size]);
    if (trait == kWordGap) break;
    const bool isJoined = before == kWordJoiner && beforeJoiner != kWordGap;
    if (trait == kWordForeign || text[run.size] == '_' || (trait == kWordLetter && isJoined)) {
      run.isPlain = false;
    }
    if (trait == kWordLetter && before != kWordLetter) ++run.words;
    if (trait == kWordJoiner && before != kWordJoiner) beforeJoiner = before;
    before = trait;
  }
  return run;
}

size_t wordCountByICU(std::string_view text) {
  UErrorCode status = U_ZERO_ERROR;
  thread_local const std::unique_ptr<icu::BreakIterator> iterator(
      icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
  if (!iterator) return 0;
  UText utext = UTEXT_INITIALIZER;
  utext_openUTF8(&utext, text.data(), static_cast<int64_t>(text.size()), &status);
  iterator->setText(&utext, status);
  size_t words = 0;
  iterator->first();
  while (iterator->next() != icu::BreakIterator::DONE) {
    if (iterator->getRuleStatus() >= UBRK_WORD_NONE_LIMIT) ++words;
  }
  utext_close(&utext);
  return words;
}

}  // namespace

size_t wordCount(std::string_view text) {
  static constexpr size_t kNone = std::string_view::npos;
  size_t words = 0;
  size_t stretch = kNone;  // where runs for ICU begin; those that follow each other go together
  for (size_t at = 0; at < text.size();) {
    if (wordTrait(text[at]) == kWordGap) {
      ++at;
      continue;
    }
    const WordRun run = takeRun(text.substr(at));
    if (!run.isPlain) {
      if (stretch == kNone) stretch = at;
    } else {
      if (stretch != kNone) words += wordCountByICU(text.substr(stretch, at - stretch));
      stretch = kNone;
      words += run.words;
    }
    at += run.size;
  }
  return stretch == kNone ? words : words + wordCountByICU(text.substr(stretch));
}

}  // namespace lk
