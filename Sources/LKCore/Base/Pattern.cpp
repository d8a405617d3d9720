#include "LKCore/Base/Pattern.h"

#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <algorithm>
#include <array>

#include "LKCore/Base/Text.h"

namespace lk {

struct Pattern::Compiled {
  pcre2_code* code = nullptr;

  ~Compiled() { pcre2_code_free(code); }
};

namespace {

struct MatchDataDeleter {
  void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

PCRE2_SPTR units(std::string_view text) {
  return reinterpret_cast<PCRE2_SPTR>(text.data());
}

std::string engineMessage(int code) {
  std::array<PCRE2_UCHAR, 256> message{};
  pcre2_get_error_message(code, message.data(), message.size());
  return reinterpret_cast<const char*>(message.data());
}

}  // namespace

Pattern::Pattern(std::string_view source, Case letters) : compiled_(std::make_unique<Compiled>()) {
  // PCRE2_MATCH_INVALID_UTF keeps a search over unchecked bytes in bounds.
  const uint32_t options = PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF |
                           (letters == Case::insensitive ? PCRE2_CASELESS : 0U);
  int code = 0;
  PCRE2_SIZE offset = 0;
  compiled_->code = pcre2_compile(units(source), source.size(), options, &code, &offset, nullptr);
  if (compiled_->code == nullptr) {
    throw PatternError(engineMessage(code) + " at offset " + std::to_string(offset));
  }
  pcre2_jit_compile(compiled_->code, PCRE2_JIT_COMPLETE);
}

Pattern::~Pattern() = default;
Pattern::Pattern(Pattern&&) noexcept = default;
Pattern& Pattern::operator=(Pattern&&) noexcept = default;

std::optional<Pattern::Match> Pattern::find(std::string_view text, size_t from) const {
  const std::unique_ptr<pcre2_match_data, MatchDataDeleter> data(
      pcre2_match_data_create_from_pattern(compiled_->code, nullptr));
  const int count =
      pcre2_match(compiled_->code, units(text), text.size(), from, 0, data.get(), nullptr);
  if (count <= 0) return std::nullopt;
  const PCRE2_SIZE* bounds = pcre2_get_ovector_pointer(data.get());
  Match match(pcre2_get_ovector_count(data.get()));
  for (size_t group = 0; group < static_cast<size_t>(count); ++group) {
    const PCRE2_SIZE start = bounds[2 * group];
    // \K in a lookahead can put a match's start after its end.
    if (start != PCRE2_UNSET && start <= bounds[2 * group + 1]) {
      match[group] = TextRange{start, bounds[2 * group + 1]};
    }
  }
  if (!match[0]) return std::nullopt;
  return match;
}

std::vector<Pattern::Match> Pattern::findAll(std::string_view text, size_t from) const {
  std::vector<Match> matches;
  while (from <= text.size()) {
    std::optional<Match> match = find(text, from);
    if (!match) break;
    const TextRange whole = *match->front();
    if (whole.start < from) break;  // \K again: no progress
    from = whole.end;
    if (whole.length() == 0) from += from < text.size() ? text::decode(text, from).length : 1;
    matches.push_back(std::move(*match));
  }
  return matches;
}

std::string Pattern::replacingAll(std::string_view text, std::string_view replacement) const {
  std::string result;
  size_t start = 0;
  for (const Match& match : findAll(text)) {
    result.append(text.substr(start, match[0]->start - start)).append(replacement);
    start = match[0]->end;
  }
  return result.append(text.substr(start));
}

std::string Pattern::escaped(std::string_view text) {
  static constexpr std::string_view kMeaning = "\\^$.|?*+()[]{}-#";
  std::string result;
  for (const char c : text) {
    if (kMeaning.find(c) != std::string_view::npos) result.push_back('\\');
    result.push_back(c);
  }
  return result;
}

struct PatternSearcher::Memory {
  // Some milliseconds' work, where an honest pattern needs a fraction of one for a line.
  static constexpr uint32_t kMatchLimit = 1'000'000;
  static constexpr size_t kFirstStack = size_t{32} * 1024;
  static constexpr size_t kLargestStack = size_t{1024} * 1024;

  pcre2_match_data* data = nullptr;
  pcre2_match_context* context = pcre2_match_context_create(nullptr);
  pcre2_jit_stack* stack = pcre2_jit_stack_create(kFirstStack, kLargestStack, nullptr);

  explicit Memory(const pcre2_code* code)
      : data(pcre2_match_data_create_from_pattern(code, nullptr)) {
    pcre2_set_match_limit(context, kMatchLimit);
    pcre2_jit_stack_assign(context, nullptr, stack);
  }
  Memory(const Memory&) = delete;
  Memory& operator=(const Memory&) = delete;
  ~Memory() {
    pcre2_match_data_free(data);
    pcre2_match_context_free(context);
    pcre2_jit_stack_free(stack);
  }
};

PatternSearcher::PatternSearcher(const Pattern& pattern)
    : pattern_(pattern), memory_(std::make_unique<Memory>(pattern.compiled_->code)) {}

PatternSearcher::~PatternSearcher() = default;

std::optional<TextRange> PatternSearcher::first(std::string_view text, size_t from) {
  const int count = pcre2_match(pattern_.compiled_->code, units(text), text.size(), from, 0,
                                memory_->data, memory_->context);
  if (count == PCRE2_ERROR_NOMATCH) return std::nullopt;
  if (count < 0) throw PatternError(engineMessage(count));
  const PCRE2_SIZE* bounds = pcre2_get_ovector_pointer(memory_->data);
  // \K in a lookahead can put a match's start after its end.
  return TextRange{std::min(bounds[0], bounds[1]), bounds[1]};
}

}  // namespace lk
