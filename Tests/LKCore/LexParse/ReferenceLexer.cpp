#include "ReferenceLexer.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>

#include "LKCore/Base/LinkDetector.h"
#include "LKCore/Base/Text.h"

namespace lk::testing {

namespace {

const std::u32string kDelimiters = U"`~*:[#(!=@";
const std::u32string kLineStart = U"`>-*#+|123456789";
constexpr char32_t kSentinel = 0xFFFF;

bool isDelimiter(char32_t c) {
  return kDelimiters.find(c) != std::u32string::npos;
}
bool isLineEnd(char32_t c) {
  return text::isNewline(c);
}
bool isSpace(char32_t c) {
  return text::isWhitespaceOrNewline(c);
}
bool isPunctuation(char32_t c) {
  return text::isPunctuation(c) && c != U'*';
}
bool isTagCharacter(char32_t c) {
  return text::isLetter(c) || text::isDecimalDigit(c) || c == U'-' || c == U'/';
}

class Reference {
 public:
  Reference(std::string_view text, const LKProjectTermsSnapshot& terms)
      : text_(text), terms_(terms) {
    for (size_t i = 0; i < text.size();) {
      const text::Decoded d = text::decode(text, i);
      bytes_.push_back(i);
      s_.push_back(d.scalar);
      i += d.length;
    }
    bytes_.push_back(text.size());
  }

  std::vector<LToken> all() {
    std::vector<LToken> tokens;
    do {
      const size_t start = i_;
      LToken token = next();
      token.range = {bytes_[start], bytes_[i_]};
      if (token.kind == LTokenKind::string) token.text = token.range.of(text_);
      if (token.kind != LTokenKind::tabLevel && token.kind != LTokenKind::eol) startLine_ = false;
      tokens.push_back(token);
    } while (tokens.back().kind != LTokenKind::end);
    return tokens;
  }

 private:
  using Kind = LTokenKind;

  char32_t at(size_t i) const { return i < s_.size() ? s_[i] : kSentinel; }
  bool over(size_t i) const { return i >= s_.size() || isLineEnd(s_[i]); }
  bool begins(size_t i, std::u32string_view what) const {
    return i <= s_.size() && std::u32string_view(s_).substr(i).starts_with(what);
  }
  std::string_view cut(size_t a, size_t b) const {
    return text_.substr(bytes_[a], bytes_[b] - bytes_[a]);
  }
  LToken make(Kind kind, size_t scalars, std::string_view payload = {}, int64_t number = 0) {
    i_ += scalars;
    return {kind, {}, payload, {}, number};
  }
  LToken text(size_t scalars) { return make(Kind::string, scalars); }

  LToken next() {
    if (i_ == s_.size()) return make(Kind::end, 0);
    if (!tabScanned_) return indent();
    const char32_t c = at(i_);
    if (startLine_) {
      if (kLineStart.find(c) != std::u32string::npos) {
        if (auto token = lineStart(c)) return *token;
      }
    }
    if (isLineEnd(c)) {
      startLine_ = true;
      tabScanned_ = false;
      task_ = false;
      left_.clear();
      return make(Kind::eol, 1);
    }
    if (c == U'<') {
      if (auto token = comment()) return *token;
    }
    if (isDelimiter(c)) {
      auto token = special(c);
      return token ? *token : text(1);
    }
    if (task_ && isWordStart(i_)) {
      if (auto token = taskMeta()) return *token;
    }
    auto token = run(0);
    return token ? *token : text(1);
  }

  LToken indent() {
    size_t tabs = 0;
    size_t spaces = 0;
    size_t i = i_;
    for (; i < s_.size() && text::isBlank(s_[i]); ++i) s_[i] == U'\t' ? ++tabs : ++spaces;
    tabScanned_ = true;
    indented_ = tabs + spaces > 0;
    size_t level = 0;
    if (tabs == 0) level = spaces / 4 + (spaces % 4 != 0 ? 1 : 0);
    if (tabs > 0) level = tabs;
    if (tabs > 0 && spaces > 0) level += (spaces < 4 ? 4 : spaces) / 4;
    return make(Kind::tabLevel, i - i_, {}, static_cast<int64_t>(level > 22 ? 22 : level));
  }

  std::optional<LToken> lineStart(char32_t c) {
    const char32_t n = at(i_ + 1);
    if (c == U'#') return hash();
    if (c == U'|') return text(1);
    if (c == U'*' && n == U' ') return make(Kind::unordered, 2, "*");
    if (c == U'-') return dash();
    if (c == U'>') return quote();
    if (c == U'`' && n == U'`' && !(i_ > 0 && s_[i_ - 1] == U'\t')) {
      if (at(i_ + 2) != U'`') return text(2);
      size_t end = i_;
      while (!over(end)) ++end;
      return make(Kind::codeBlockFence, end - i_, cut(i_ + 3, end));
    }
    if (c >= U'1' && c <= U'9') return ordered();
    return {};
  }

  LToken hash() {
    const auto ends = [&](size_t i) { return i >= s_.size() || s_[i] == U'\n'; };
    if (!indented_) {
      if (ends(i_ + 1)) return text(1);
      if (at(i_ + 1) == U' ' && ends(i_ + 2)) return *run(2);
      if (at(i_ + 1) == U' ') return make(Kind::heading, 2, {}, 1);
      if (at(i_ + 1) == U'#') {
        size_t count = 0;
        while (count < 6 && at(i_ + count) == U'#') ++count;
        if (at(i_ + count) != U' ') return text(count);
        if (over(i_ + count + 1)) return text(count + 1);
        return make(Kind::heading, count + 1, {}, static_cast<int64_t>(count));
      }
    }
    return i_ + 1 < s_.size() && text::isLetter(s_[i_ + 1]) ? tag() : *run(1);
  }

  LToken dash() {
    if (at(i_ + 1) != U' ') return text(1);
    if (at(i_ + 2) != U'[') return make(Kind::unordered, 2, "-");
    const std::u32string statuses = U" xX/-";
    const Kind kinds[] = {Kind::task, Kind::doneTask, Kind::doneTask, Kind::inProgressTask,
                          Kind::cancelledTask};
    const size_t which = i_ + 3 < s_.size() ? statuses.find(s_[i_ + 3]) : std::u32string::npos;
    if (which == std::u32string::npos || at(i_ + 4) != U']') return text(1);
    if (at(i_ + 5) != U' ' && !over(i_ + 5)) return text(1);
    task_ = true;
    return make(kinds[which], at(i_ + 5) == U' ' ? 6 : 5);
  }

  LToken ordered() {
    size_t i = i_;
    uint64_t value = 0;
    bool fits = true;
    for (; at(i) >= U'0' && at(i) <= U'9'; ++i) {
      if (fits) value = value * 10 + (at(i) - U'0');
      if (value > INT64_MAX) fits = false;
    }
    if (!fits || !begins(i, U". ")) return *run(1);
    return make(Kind::ordered, i + 2 - i_, {}, static_cast<int64_t>(value));
  }

  LToken quote() {
    size_t i = i_ + 1;
    while (at(i) == U'>' || begins(i, U" >")) ++i;
    const std::string_view marks = cut(i_, i);
    if (at(i) != U' ' && !over(i)) return text(i - i_);
    if (begins(i, U" [!")) {
      size_t end = i + 3;
      while (!over(end) && at(end) != U']') ++end;
      if (!over(end)) {
        const std::string word = text::uppercased(cut(i + 3, end));
        for (const char* kind : {"NOTE", "TIP", "IMPORTANT", "WARNING", "CAUTION"}) {
          if (word != kind) continue;
          LToken token = make(Kind::admonition, end + 1 - i_, marks);
          token.key = kind;
          return token;
        }
      }
    }
    return make(Kind::blockQuote, i - i_, marks);
  }

  bool isWordStart(size_t i) const { return i == 0 || s_[i - 1] == U' ' || isLineEnd(s_[i - 1]); }

  bool opensMeta(size_t i) const {
    if (i + 1 >= s_.size()) return false;
    for (const char32_t* pair : {U"co", U"pr", U"do", U"du"}) {
      if (s_[i] == pair[0] && s_[i + 1] == pair[1]) return true;
    }
    const auto& pairs = terms_.keywordBreakPairs;
    return std::ranges::find(pairs, std::pair{s_[i], s_[i + 1]}) != pairs.end();
  }

  std::optional<LToken> run(size_t include) {
    size_t i = i_ + include;
    for (; i < s_.size(); ++i) {
      if (isDelimiter(s_[i]) || isLineEnd(s_[i]) || begins(i, U"<!-")) break;
      if (task_ && isWordStart(i) && opensMeta(i)) break;
    }
    if (i == i_) return {};
    return text(i - i_);
  }

  std::optional<LToken> taskMeta() {
    std::vector<std::string> keys = {"contexts:", "context:", "priority:", "due:", "done:"};
    for (const auto& word : terms_.keywordScalars) keys.push_back(word.withColon);
    for (const std::string& key : keys) {
      const size_t count = text::scalarCount(key);
      if (!text_.substr(bytes_[i_]).starts_with(key)) continue;
      size_t end = i_ + count;
      while (end < s_.size() && !isSpace(s_[end])) ++end;
      if (end == i_ + count) return {};
      const std::string_view name = cut(i_, i_ + count - 1);
      LToken token = make(Kind::taskMeta, end - i_, cut(i_ + count, end));
      token.key = name;
      return token;
    }
    return {};
  }

  std::optional<LToken> special(char32_t c) {
    const char32_t n = at(i_ + 1);
    const bool last = i_ + 1 == s_.size();
    const bool afterBlank = i_ > 0 && text::isBlank(s_[i_ - 1]);
    if (c == U'#') {
      if (last) return text(1);
      if (!startLine_ && !afterBlank && !isDelimiter(s_[i_ - 1])) return {};
      if (!text::isLetter(n)) return {};
      return tag();
    }
    if (c == U'@') {
      if (last) return text(1);
      if ((!startLine_ && !afterBlank) || text::isBlank(n)) return {};
      return date();
    }
    if (c == U'!') return n == U'[' ? upTo(Kind::image, 2, true) : std::nullopt;
    if (c == U'(') return i_ > 0 && s_[i_ - 1] == U']' ? url() : std::nullopt;
    if (c == U'[') {
      if (n == U'^') {
        if (auto token = footnote()) return token;
      }
      return n == U'[' ? backLink() : upTo(Kind::bracket, 1, false);
    }
    if (c == U'`') return code();
    if (c == U'*') return star();
    return doubled(c);
  }

  bool tagEnds(size_t i) const {
    return i + 1 >= s_.size() || isSpace(s_[i]) || isDelimiter(s_[i]);
  }

  LToken tag() {
    size_t i = i_ + 1;
    while (i < s_.size() && isTagCharacter(s_[i])) ++i;
    return tagEnds(i) ? make(Kind::tag, i - i_, cut(i_, i)) : text(i - i_);
  }

  LToken date() {
    size_t i = i_ + 1;
    while (i < s_.size() && isTagCharacter(s_[i])) ++i;
    const bool numeric =
        std::all_of(s_.begin() + static_cast<std::ptrdiff_t>(i_) + 1,
                    s_.begin() + static_cast<std::ptrdiff_t>(i), text::isDecimalDigit);
    if (i - i_ != 9 || !numeric || !tagEnds(i)) return text(i - i_);
    return make(Kind::dateRef, 9, cut(i_, i));
  }

  std::optional<LToken> upTo(Kind kind, size_t skip, bool mayBeEmpty) {
    size_t i = i_ + skip;
    while (!over(i) && s_[i] != U']') ++i;
    if (over(i) || at(i + 1) != U'(' || (i == i_ + skip && !mayBeEmpty)) return {};
    return make(kind, i + 1 - i_, cut(i_ + skip, i));
  }

  std::optional<LToken> url() {
    size_t i = i_ + 1;
    while (!over(i) && s_[i] != U')') ++i;
    if (over(i) || i == i_ + 1) return {};
    return make(Kind::url, i + 1 - i_, cut(i_ + 1, i));
  }

  std::optional<LToken> backLink() {
    size_t i = i_ + 2;
    while (!over(i) && !begins(i, U"]]")) {
      if (s_[i] == U'[') return {};
      ++i;
    }
    if (over(i) || i == i_ + 2) return {};
    return make(Kind::backLink, i + 2 - i_, cut(i_ + 2, i));
  }

  std::optional<LToken> footnote() {
    size_t i = i_ + 2;
    while (!over(i) && s_[i] != U']') {
      if (s_[i] == U'[') return {};
      ++i;
    }
    if (over(i) || i == i_ + 2) return {};
    return make(Kind::footnoteRef, i + 1 - i_, cut(i_ + 2, i));
  }

  std::optional<LToken> code() {
    if (over(i_ + 1)) return text(1);
    if (at(i_ + 1) == U'`') return text(2);
    size_t i = i_ + 1;
    while (!over(i) && s_[i] != U'`') ++i;
    if (over(i)) return {};
    return make(Kind::inlineCode, i + 1 - i_, cut(i_ + 1, i));
  }

  std::optional<LToken> comment() {
    if (!begins(i_, U"<!--")) return {};
    size_t i = i_ + 4;
    while (!over(i) && !begins(i, U"-->")) ++i;
    if (over(i)) return {};
    return make(Kind::htmlComment, i + 3 - i_, cut(i_ + 4, i));
  }

  // --- Styles ---

  char32_t leftOf(size_t i) const {
    while (i > 0 && isDelimiter(s_[i - 1])) --i;
    return i == 0 ? U'\n' : s_[i - 1];
  }

  bool validLeft(size_t i) const {
    const char32_t left = leftOf(i);
    while (i < s_.size() && isDelimiter(s_[i])) ++i;
    if (i == s_.size() || isSpace(s_[i])) return false;
    return !isPunctuation(s_[i]) || isPunctuation(left) || isSpace(left);
  }

  bool validRight(size_t i) const { return !isSpace(leftOf(i)); }

  // Behind the construct that opens at i, or i where none does.
  size_t jumped(size_t i) const {
    const auto to = [&](size_t from, std::u32string_view mark) -> std::optional<size_t> {
      for (size_t k = from; !over(k); ++k) {
        if (begins(k, mark)) return k;
      }
      return {};
    };
    std::optional<size_t> end;
    if (begins(i, U"![") || (begins(i, U"[") && !begins(i, U"[["))) {
      if (const auto middle = to(i + 1, U"](")) end = to(*middle + 2, U")");
      return end ? *end + 1 : i;
    }
    if (begins(i, U"[[")) {
      end = to(i + 2, U"]]");
      return end ? *end + 2 : i;
    }
    if (at(i) == U'`') end = to(i + 1, U"`");
    if (at(i) == U'(') {
      end = to(i + 1, U")");
      if (end && !isValidURL(cut(i + 1, *end))) end.reset();
    }
    return end ? *end + 1 : i;
  }

  bool finds(size_t from, char32_t c, bool isEmphasis) const {
    int depth = 0;
    for (size_t i = from; !over(i);) {
      if (const size_t behind = jumped(i); behind != i) {
        i = behind;
        continue;
      }
      const bool isPair = at(i) == c && at(i + 1) == c;
      if (isEmphasis && isPair) {
        i += 2;
        continue;
      }
      if (isPair || (isEmphasis && at(i) == c)) {
        if (validRight(i)) {
          if (depth == 0) return true;
          --depth;
        } else if (validLeft(i)) {
          ++depth;
        }
      }
      ++i;
    }
    return false;
  }

  std::optional<LToken> close(Kind left, Kind right, size_t scalars) {
    const auto open = left_.find(left);
    if (open == left_.end() || !validRight(i_)) return {};
    left_.erase(open);
    return make(right, scalars);
  }

  std::optional<LToken> open(Kind left, size_t scalars, size_t skip, char32_t c) {
    if (!validLeft(i_) || !finds(i_ + skip, c, scalars == 1)) return {};
    left_.insert(left);
    return make(left, scalars);
  }

  std::optional<LToken> star() {
    std::optional<LToken> token;
    if (begins(i_, U"***")) {
      token = close(Kind::leftBold, Kind::rightBold, 2);
      if (!token) token = close(Kind::leftEmphasis, Kind::rightEmphasis, 1);
      if (!token) token = open(Kind::leftEmphasis, 1, 3, U'*');
    } else if (begins(i_, U"**")) {
      token = close(Kind::leftBold, Kind::rightBold, 2);
      if (!token) token = open(Kind::leftBold, 2, 2, U'*');
    } else {
      token = close(Kind::leftEmphasis, Kind::rightEmphasis, 1);
      if (!token) token = open(Kind::leftEmphasis, 1, 1, U'*');
    }
    return token ? token : run(1);
  }

  std::optional<LToken> doubled(char32_t c) {
    if (at(i_ + 1) != c) return text(1);
    const Kind left = c == U'~'   ? Kind::leftStrikethrough
                      : c == U'=' ? Kind::leftHighlight
                                  : Kind::legacyLeftHighlight;
    const Kind right = c == U'~'   ? Kind::rightStrikethrough
                       : c == U'=' ? Kind::rightHighlight
                                   : Kind::legacyRightHighlight;
    auto token = close(left, right, 2);
    if (!token) token = open(left, 2, 2, c);
    return token ? token : run(1);
  }

  std::string_view text_;
  const LKProjectTermsSnapshot& terms_;
  std::u32string s_;
  std::vector<size_t> bytes_;
  size_t i_ = 0;
  bool startLine_ = true;
  bool tabScanned_ = false;
  bool indented_ = false;
  bool task_ = false;
  std::multiset<Kind> left_;
};

}  // namespace

std::vector<LToken> referenceTokens(std::string_view text, const LKProjectTermsSnapshot& terms) {
  return Reference(text, terms).all();
}

}  // namespace lk::testing
