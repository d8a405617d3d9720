#include "LKCore/Navigation/LKProjectDisplay.h"

#include <algorithm>

#include "LKCore/Base/Text.h"
#include "LKCore/Terminology/LKProjectTerms.h"

namespace lk::LKProjectDisplay {

namespace {

std::string capitalised(std::string_view word) {
  if (word.empty()) return {};
  const size_t first = text::decode(word, 0).length;
  return text::uppercased(word.substr(0, first)).append(word.substr(first));
}

}  // namespace

std::string_view leaf(std::string_view name) {
  const size_t slash = name.rfind('/');
  return slash == std::string_view::npos ? name : name.substr(slash + 1);
}

std::optional<std::string_view> parentPrefix(std::string_view name) {
  const size_t slash = name.rfind('/');
  if (slash == std::string_view::npos) return std::nullopt;
  return name.substr(0, slash);
}

size_t depth(std::string_view name) {
  return static_cast<size_t>(std::ranges::count(name, '/'));
}

std::string termTitle() {
  return capitalised(LKProjectTerms::snapshot()->singular);
}

std::string termsTitle() {
  return capitalised(LKProjectTerms::snapshot()->plural);
}

}  // namespace lk::LKProjectDisplay
