#include "LKCore/Base/LinkDetector.h"

#include <algorithm>
#include <array>
#include <string>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

// Country codes that are better known as file endings are left out.
constexpr std::string_view kTopLevels[] = {
    "ac",      "ad",      "ae",       "aero",    "af",         "ag",     "agency", "ai",
    "al",      "am",      "app",      "ar",      "art",        "asia",   "at",     "au",
    "az",      "ba",      "bb",       "bd",      "be",         "berlin", "bg",     "bh",
    "biz",     "blog",    "bo",       "br",      "bt",         "bw",     "by",     "bz",
    "ca",      "cat",     "cd",       "ch",      "ci",         "cl",     "cloud",  "club",
    "cm",      "cn",      "co",       "com",     "coop",       "cr",     "cu",     "cv",
    "cy",      "cz",      "de",       "design",  "dev",        "dk",     "dm",     "do",
    "dz",      "ec",      "edu",      "ee",      "eg",         "es",     "et",     "eu",
    "example", "fi",      "fj",       "fm",      "fo",         "fr",     "ga",     "ge",
    "gg",      "gi",      "gl",       "gov",     "gr",         "gt",     "gy",     "health",
    "hk",      "hn",      "hr",       "ht",      "hu",         "ie",     "il",     "im",
    "info",    "int",     "io",       "ir",      "is",         "it",     "je",     "jm",
    "jo",      "jobs",    "jp",       "ke",      "kg",         "kh",     "kr",     "kw",
    "kz",      "la",      "land",     "lb",      "lc",         "li",     "life",   "link",
    "live",    "lk",      "london",   "lt",      "lu",         "lv",     "ly",     "ma",
    "mc",      "me",      "media",    "mg",      "mil",        "mk",     "mn",     "mobi",
    "moe",     "mt",      "mu",       "museum",  "mv",         "mx",     "my",     "mz",
    "na",      "name",    "net",      "network", "news",       "ng",     "ni",     "nl",
    "no",      "np",      "nu",       "nz",      "om",         "online", "org",    "pa",
    "page",    "pe",      "ph",       "pk",      "pm",         "post",   "pr",     "press",
    "pro",     "pt",      "qa",       "re",      "ro",         "ru",     "rw",     "sa",
    "sc",      "school",  "science",  "se",      "sg",         "shop",   "si",     "site",
    "sk",      "social",  "software", "space",   "store",      "studio", "su",     "sv",
    "sy",      "systems", "tech",     "team",    "tel",        "th",     "tn",     "to",
    "today",   "tools",   "top",      "tr",      "travel",     "tt",     "tv",     "tw",
    "tz",      "ua",      "ug",       "uk",      "university", "us",     "uy",     "uz",
    "va",      "ve",      "vn",       "wiki",    "work",       "world",  "xxx",    "xyz",
    "ye",      "za",      "zm",       "zone",    "zw"};

bool isLetterByte(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isAlphanumeric(char c) {
  return isLetterByte(c) || (c >= '0' && c <= '9');
}

bool isSchemeByte(char c) {
  return isAlphanumeric(c) || c == '+' || c == '.' || c == '-';
}

// The characters of the stretches between which a link can begin.
bool isAtomByte(char c) {
  return isSchemeByte(c) || c == '_' || c == '%';
}

char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool equalsASCII(std::string_view text, std::string_view lower) {
  return std::ranges::equal(text, lower, {}, lowered);
}

bool isKnownTopLevel(std::string_view label) {
  constexpr size_t kLongest = 10;
  if (label.size() > kLongest) return false;
  std::string lower(label);
  std::ranges::transform(lower, lower.begin(), lowered);
  return std::ranges::find(kTopLevels, lower) != std::end(kTopLevels);
}

// --- Tails -----------------------------------------------------------------------------------------

bool endsTail(char32_t scalar) {
  constexpr std::string_view kExcluded = "<>\"`{}|\\^";
  if (scalar < 0x80) {
    return scalar <= 0x20 || scalar == 0x7F ||
           kExcluded.find(static_cast<char>(scalar)) != std::string_view::npos;
  }
  return text::isWhitespaceOrNewline(scalar) || text::isPunctuation(scalar);
}

// One kind of bracket in a tail.
struct Brackets {
  char open;
  char close;
  std::optional<size_t> opened = {};  // where one stands open

  // False when the tail cannot go on behind this byte.
  bool take(char c, size_t at) {
    if (c == open) {
      if (opened) return false;
      opened = at;
    } else if (c == close) {
      if (!opened) return false;
      opened.reset();
    }
    return true;
  }
};

bool isSentenceMark(char c) {
  constexpr std::string_view kMarks = ".,;:!?'*_~";
  return kMarks.find(c) != std::string_view::npos;
}

// The end of the tail that begins at `start`: see the header's rules.
size_t tailEnd(std::string_view text, size_t start) {
  std::array<Brackets, 2> kinds = {{{'(', ')'}, {'[', ']'}}};
  size_t at = start;
  while (at < text.size()) {
    const text::Decoded d = text::decode(text, at);
    if (endsTail(d.scalar)) break;
    if (!kinds[0].take(text[at], at) || !kinds[1].take(text[at], at)) break;
    at += d.length;
  }
  for (const Brackets& kind : kinds) at = std::min(at, kind.opened.value_or(at));
  while (at > start && isSentenceMark(text[at - 1])) --at;
  return at;
}

// --- Domains ---------------------------------------------------------------------------------------

// The end of the letters, digits, dots and inner hyphens from `start`, without a last dot.
size_t hostEnd(std::string_view text, size_t start) {
  size_t at = start;
  while (at < text.size() && (isAlphanumeric(text[at]) || text[at] == '.' || text[at] == '-')) ++at;
  while (at > start && !isAlphanumeric(text[at - 1])) --at;
  return at;
}

bool isHost(std::string_view host) {
  const std::vector<std::string_view> labels = text::split(host, '.');
  return labels.size() >= 2 && std::ranges::all_of(labels, [](std::string_view label) {
           return !label.empty() && label.front() != '-' && label.back() != '-';
         });
}

std::string_view lastLabel(std::string_view host) {
  return host.substr(host.rfind('.') + 1);
}

// A port and a tail behind a host that ends at `at`.
size_t domainEnd(std::string_view text, size_t at) {
  if (at + 1 < text.size() && text[at] == ':' && text[at + 1] >= '0' && text[at + 1] <= '9') {
    ++at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') ++at;
  }
  const bool hasTail = at < text.size() && (text[at] == '/' || text[at] == '?' || text[at] == '#');
  return hasTail ? std::max(at, tailEnd(text, at)) : at;
}

// --- One stretch of word characters ------------------------------------------------------------------

// The URL whose scheme is the end of the atom.
std::optional<DetectedLink> urlAt(std::string_view text, const TextRange& atom) {
  size_t scheme = atom.end;
  while (scheme > atom.start && isSchemeByte(text[scheme - 1])) --scheme;
  while (scheme < atom.end && !isLetterByte(text[scheme])) ++scheme;
  if (scheme == atom.end) return {};
  const size_t tail = atom.end + 3;
  if (tail == text.size()) return {};
  // A tail that begins well is never empty, so that no search runs to the text's end in vain.
  const char first = text[tail];
  if (first == '(' || first == '[' || isSentenceMark(first)) return {};
  const size_t end = tailEnd(text, tail);
  if (end == tail) return {};
  return DetectedLink{LinkKind::url, {scheme, end}};
}

// The address whose name is the atom and whose "@" follows it.
std::optional<DetectedLink> emailAt(std::string_view text, const TextRange& atom) {
  size_t start = atom.start;
  while (start < atom.end && !isAlphanumeric(text[start])) ++start;
  if (start == atom.end || text[atom.end - 1] == '.') return {};
  const size_t hostStart = atom.end + 1;
  const size_t end = hostEnd(text, hostStart);
  const std::string_view host = text.substr(hostStart, end - hostStart);
  if (!isHost(host)) return {};
  const std::string_view last = lastLabel(host);
  if (last.size() < 2 || !std::ranges::all_of(last, isLetterByte)) return {};
  return DetectedLink{LinkKind::email, {start, end}};
}

std::optional<DetectedLink> domainAt(std::string_view text, const TextRange& atom) {
  size_t start = atom.start;
  while (start < atom.end && !isAlphanumeric(text[start])) ++start;
  const size_t end = hostEnd(text, start);
  // What else stands in the atom would make the host the half of a word.
  for (size_t at = end; at < atom.end; ++at) {
    if (text[at] != '.' && text[at] != '-') return {};
  }
  const std::string_view host = text.substr(start, end - start);
  if (!isHost(host)) return {};
  const bool isWeb = equalsASCII(host.substr(0, host.find('.')), "www");
  if (!isWeb && !isKnownTopLevel(lastLabel(host))) return {};
  return DetectedLink{LinkKind::domain, {start, domainEnd(text, end)}};
}

// Where a stretch of atom bytes that begins at `start` ends.
size_t atomEnd(std::string_view text, size_t start) {
  size_t at = start;
  while (at < text.size() && isAtomByte(text[at])) ++at;
  return at;
}

std::optional<DetectedLink> mailtoAt(std::string_view text, const TextRange& atom) {
  const TextRange name{atom.end + 1, atomEnd(text, atom.end + 1)};
  if (name.length() == 0 || name.end >= text.size() || text[name.end] != '@') return {};
  auto link = emailAt(text, name);
  if (!link || link->range.start != name.start) return {};
  return DetectedLink{LinkKind::url, {atom.start, link->range.end}};
}

std::optional<DetectedLink> linkAt(std::string_view text, const TextRange& atom) {
  const std::string_view rest = text.substr(atom.end);
  if (rest.starts_with("://")) return urlAt(text, atom);
  // A word that began in other letters is no name of the net.
  if (atom.start > 0 && text::isLetter(text::decodeBefore(text, atom.start).scalar)) return {};
  if (rest.starts_with("@")) return emailAt(text, atom);
  if (rest.starts_with(":") && equalsASCII(atom.of(text), "mailto")) return mailtoAt(text, atom);
  return domainAt(text, atom);
}

}  // namespace

std::optional<DetectedLink> firstLink(std::string_view text, size_t from) {
  for (size_t at = from; at < text.size();) {
    if (!isAtomByte(text[at])) {
      ++at;
      continue;
    }
    const TextRange atom{at, atomEnd(text, at)};
    if (auto link = linkAt(text, atom)) return link;
    at = atom.end;
  }
  return {};
}

std::vector<DetectedLink> links(std::string_view text) {
  std::vector<DetectedLink> found;
  for (auto link = firstLink(text); link; link = firstLink(text, link->range.end)) {
    found.push_back(*link);
  }
  return found;
}

bool isValidURL(std::string_view text) {
  const auto link = firstLink(text);
  return link && link->range == TextRange{0, text.size()};
}

}  // namespace lk
