#include "LKCore/Attachments/AttachmentUses.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "LKCore/Base/PercentDecoding.h"
#include "LKCore/Base/Text.h"

namespace lk {

namespace {

constexpr size_t kLongestStart = 4;

unsigned char byteOf(std::string_view text, size_t at) {
  return static_cast<unsigned char>(text[at]);
}

bool isEscapable(char c) {
  static constexpr std::string_view kEscapable = "!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";
  return kEscapable.find(c) != std::string_view::npos;
}

// As Markdown reads a reference: without the backslashes that escape, and "&" for "&amp;".
std::string withoutEscapes(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < text.size(); ++i) {
    const bool escapes = text[i] == '\\' && i + 1 < text.size() && isEscapable(text[i + 1]);
    if (escapes) ++i;
    result.push_back(text[i]);
  }
  return text::replacingAll(result, "&amp;", "&");
}

}  // namespace

AttachmentUses::AttachmentUses(const std::vector<std::string>& names) : count_(names.size()) {
  startSize_ = kLongestStart;
  for (size_t i = 0; i < names.size(); ++i) {
    forms_.push_back({names[i], i});
    std::string composed = text::composed(names[i]);
    if (composed != names[i]) forms_.push_back({std::move(composed), i});
  }
  std::ranges::sort(forms_);
  for (const Form& form : forms_) startSize_ = std::min(startSize_, form.text.size());
  for (const Form& form : forms_) starts_.set(startKey(form.text, 0));
}

size_t AttachmentUses::startKey(std::string_view text, size_t at) const {
  uint32_t key = 0;
  for (size_t i = 0; i < startSize_; ++i) key = key * 257U + byteOf(text, at + i);
  return ((key * 2'654'435'761U) >> 16U) % kStarts;
}

std::vector<size_t> AttachmentUses::in(std::string_view text) const {
  std::vector<bool> isUsed(count_);
  findDecoded(text, isUsed);
  if (text.find('\\') != std::string_view::npos || text.find("&amp;") != std::string_view::npos) {
    findDecoded(withoutEscapes(text), isUsed);
  }
  std::vector<size_t> used;
  for (size_t i = 0; i < count_; ++i) {
    if (isUsed[i]) used.push_back(i);
  }
  return used;
}

void AttachmentUses::findDecoded(std::string_view text, std::vector<bool>& isUsed) const {
  findInBothForms(text, isUsed);
  if (text.find('%') != std::string_view::npos) findInBothForms(percentDecoded(text), isUsed);
}

void AttachmentUses::findInBothForms(std::string_view text, std::vector<bool>& isUsed) const {
  find(text, isUsed);
  const std::string composed = text::composed(text);
  if (composed != text) find(composed, isUsed);
}

void AttachmentUses::find(std::string_view text, std::vector<bool>& isUsed) const {
  for (size_t at = 0; at + startSize_ <= text.size(); ++at) {
    if (starts_.test(startKey(text, at))) findAt(text, at, isUsed);
  }
}

// Narrows the forms, byte by byte, to those that the text goes on with.
void AttachmentUses::findAt(std::string_view text, size_t at, std::vector<bool>& isUsed) const {
  auto first = forms_.begin();
  auto last = forms_.end();
  for (size_t depth = 0;; ++depth) {
    // Shorter forms come first, so those that end here stand in front.
    for (; first != last && first->text.size() == depth; ++first) isUsed[first->name] = true;
    if (first == last || at + depth == text.size()) return;
    const auto byteHere = [depth](const Form& form) { return byteOf(form.text, depth); };
    const unsigned char wanted = byteOf(text, at + depth);
    if (byteHere(*first) == wanted && byteHere(*(last - 1)) == wanted) continue;
    first = std::ranges::lower_bound(first, last, wanted, {}, byteHere);
    last = std::ranges::upper_bound(first, last, wanted, {}, byteHere);
  }
}

}  // namespace lk
