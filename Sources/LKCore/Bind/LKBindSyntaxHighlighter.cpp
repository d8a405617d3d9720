#include "LKCore/Bind/LKBindSyntaxHighlighter.h"

#include <algorithm>
#include <array>
#include <optional>
#include <unordered_set>

#include "LKCore/Base/Text.h"
#include "LKCore/Rendering/HTMLText.h"

namespace lk::LKBindSyntaxHighlighter {

namespace {

struct Syntax {
  std::string_view names;     // of the language, with a blank on both sides of each
  std::string_view keywords;  // likewise, between single blanks
  std::array<std::string_view, 2> lineComments;
  std::string_view commentStart;
  std::string_view commentEnd;
  std::string_view quotes;
  bool ignoresCase = false;  // of keywords
};

constexpr std::array<Syntax, 9> kSyntaxes = {{
    {" c cpp c++ h hpp objc cc ",
     "auto bool break case catch char class const constexpr continue default delete do double else "
     "enum explicit extern false float for friend if inline int long namespace new noexcept "
     "nullptr "
     "operator private protected public return short signed sizeof static struct switch template "
     "this throw true try typedef typename union unsigned using virtual void volatile while",
     {"//", ""},
     "/*",
     "*/",
     "\"'"},
    {" swift ",
     "actor as async await break case catch class continue default defer do else enum extension "
     "false for func guard if import in init inout is let nil private protocol public repeat "
     "rethrows "
     "return self some static struct super switch throw throws true try typealias var where while",
     {"//", ""},
     "/*",
     "*/",
     "\""},
    {" java kotlin kt scala csharp cs c# dart ",
     "abstract bool boolean break byte case catch char class const continue data default do double "
     "else enum extends false final finally float for fun if implements import in int interface is "
     "long namespace new null object override package private protected public return short static "
     "string super switch this throw throws trait true try using val var void when while",
     {"//", ""},
     "/*",
     "*/",
     "\"'"},
    {" javascript js jsx typescript ts tsx ",
     "as async await break case catch class const continue debugger default delete do else enum "
     "export extends false finally for from function if implements import in instanceof interface "
     "let new null of return static super switch this throw true try type typeof undefined var "
     "void "
     "while with yield",
     {"//", ""},
     "/*",
     "*/",
     "\"'`"},
    {" rust rs go golang ",
     "as async await break case chan const continue crate default defer else enum extern "
     "fallthrough "
     "false fn for func go goto if impl import in interface let loop map match mod move mut nil "
     "package pub range ref return select self static struct super switch trait true type unsafe "
     "use "
     "var where while",
     {"//", ""},
     "/*",
     "*/",
     "\"`"},
    {" python py ruby rb ",
     "and as assert async await begin break class continue def del do elif else elsif end ensure "
     "except false False finally for from global if import in is lambda module nil None nonlocal "
     "not "
     "or pass raise require rescue return self then true True try unless until while with yield",
     {"#", ""},
     "",
     "",
     "\"'"},
    {" bash sh shell zsh fish console ",
     "case do done elif else esac export fi for function if in local readonly return select set "
     "then "
     "until while",
     {"#", ""},
     "",
     "",
     "\"'"},
    {" sql ",
     "all alter and as asc between by case create cross delete desc distinct drop else end exists "
     "from full group having in index inner insert into is join key left like limit not null on or "
     "order outer primary right select set table then union unique update using values view when "
     "where with",
     {"--", ""},
     "/*",
     "*/",
     "'\"",
     true},
    {" json yaml yml toml ini ", "true false null yes no on off", {"#", "//"}, "", "", "\"'"},
}};

const Syntax* syntaxNamed(std::string_view language) {
  const std::string name = " " + text::lowercased(text::trimmed(language)) + " ";
  if (name.size() <= 2) return nullptr;
  for (const Syntax& syntax : kSyntaxes) {
    if (syntax.names.find(name) != std::string_view::npos) return &syntax;
  }
  return nullptr;
}

bool isWordCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool isDigitCharacter(char c) {
  return c >= '0' && c <= '9';
}

class CodeReader {
 public:
  CodeReader(std::string_view code, const Syntax& syntax) : code_(code), syntax_(syntax) {
    for (const std::string_view keyword : text::split(syntax.keywords, ' ')) {
      keywords_.insert(keyword);
    }
  }

  std::vector<Token> read() {
    while (place_ < code_.size()) {
      const size_t start = place_;
      const std::optional<TokenKind> kind = next();
      if (kind) tokens_.push_back({{start, place_}, *kind});
    }
    return std::move(tokens_);
  }

 private:
  // Steps over what begins here; its kind, if it has a colour.
  std::optional<TokenKind> next() {
    const std::string_view rest = code_.substr(place_);
    const bool isComment = std::ranges::any_of(syntax_.lineComments, [&](std::string_view mark) {
      return !mark.empty() && rest.starts_with(mark);
    });
    if (isComment) {
      place_ = std::min(code_.find('\n', place_), code_.size());
      return TokenKind::comment;
    }
    if (!syntax_.commentStart.empty() && rest.starts_with(syntax_.commentStart)) {
      skipBlockComment();
      return TokenKind::comment;
    }
    if (syntax_.quotes.find(rest.front()) != std::string_view::npos) {
      skipString();
      return TokenKind::string;
    }
    if (isWordCharacter(rest.front())) return word();
    ++place_;
    return std::nullopt;
  }

  void skipBlockComment() {
    const size_t inside = place_ + syntax_.commentStart.size();
    const size_t end = code_.find(syntax_.commentEnd, inside);
    place_ = end == std::string_view::npos ? code_.size() : end + syntax_.commentEnd.size();
  }

  // Up to its closing quote or the line's end.
  void skipString() {
    const char quote = code_[place_++];
    while (place_ < code_.size() && code_[place_] != '\n') {
      const char c = code_[place_++];
      if (c == quote) return;
      if (c == '\\' && place_ < code_.size() && code_[place_] != '\n') ++place_;
    }
  }

  std::optional<TokenKind> word() {
    const size_t start = place_;
    const bool isNumber = isDigitCharacter(code_[start]);
    while (place_ < code_.size() &&
           (isWordCharacter(code_[place_]) || (isNumber && code_[place_] == '.'))) {
      ++place_;
    }
    if (isNumber) return TokenKind::number;
    const std::string_view name = code_.substr(start, place_ - start);
    const bool isKeyword =
        syntax_.ignoresCase ? keywords_.contains(text::lowercased(name)) : keywords_.contains(name);
    return isKeyword ? std::optional(TokenKind::keyword) : std::nullopt;
  }

  std::string_view code_;
  const Syntax& syntax_;
  std::unordered_set<std::string_view> keywords_;
  std::vector<Token> tokens_;
  size_t place_ = 0;
};

std::string colouredCode(std::string_view html, std::string_view language) {
  const std::string code = html::unescaped(html);
  std::string result;
  result.reserve(html.size() * 2);
  size_t copied = 0;
  for (const Token& token : tokens(code, language)) {
    result.append(html::escaped(std::string_view(code).substr(copied, token.range.start - copied)));
    result.append("<span class=\"").append(className(token.kind)).append("\">");
    result.append(html::escaped(token.range.of(code))).append("</span>");
    copied = token.range.end;
  }
  return result.append(html::escaped(std::string_view(code).substr(copied)));
}

}  // namespace

std::vector<Token> tokens(std::string_view code, std::string_view language) {
  const Syntax* const syntax = syntaxNamed(language);
  if (syntax == nullptr) return {};
  return CodeReader(code, *syntax).read();
}

std::string applyToHTML(std::string_view html) {
  static constexpr std::string_view kOpening = "<pre><code class=\"language-";
  std::string result;
  size_t copied = 0;
  for (size_t start = html.find(kOpening); start != std::string_view::npos;
       start = html.find(kOpening, copied)) {
    const size_t language = start + kOpening.size();
    const size_t quote = html.find("\">", language);
    if (quote == std::string_view::npos) break;
    const size_t code = quote + 2;
    const size_t end = html.find("</code>", code);
    if (end == std::string_view::npos) break;
    result.append(html.substr(copied, code - copied));
    const std::string_view content = html.substr(code, end - code);
    const bool isText = content.find('<') == std::string_view::npos;
    result.append(isText ? colouredCode(content, html.substr(language, quote - language))
                         : std::string(content));
    copied = end;
  }
  return result.append(html.substr(copied));
}

std::string_view className(TokenKind kind) {
  switch (kind) {
    case TokenKind::keyword:
      return "hl-keyword";
    case TokenKind::string:
      return "hl-string";
    case TokenKind::comment:
      return "hl-comment";
    case TokenKind::number:
      break;
  }
  return "hl-number";
}

std::string_view lightColour(TokenKind kind) {
  switch (kind) {
    case TokenKind::keyword:
      return "8a1c7c";
    case TokenKind::string:
      return "9a2a1c";
    case TokenKind::comment:
      return "5d6b60";
    case TokenKind::number:
      break;
  }
  return "1c4fa0";
}

std::string_view lightSheet() {
  return R"(.hl-keyword { color: #8a1c7c; font-weight: bold; }
.hl-string { color: #9a2a1c; }
.hl-comment { color: #5d6b60; font-style: italic; }
.hl-number { color: #1c4fa0; }
)";
}

}  // namespace lk::LKBindSyntaxHighlighter
