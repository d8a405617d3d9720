#pragma once

// Which of many attachments a text uses. The rule is plain: the text holds the file's name, as it
// is, percent-encoded or with the escapes of Markdown, anywhere. It errs on the side of keeping
// files: of the text as it stands, of the text with every "%20" decoded, and of both without "\("
// and "&amp;", the bytes and the composed form all count, so that an accent may be written in
// either of its two ways.
//
//     const AttachmentUses uses({"bed.png", "Garden plan.pdf"});
//     uses.in("See [the plan](.attachments/Garden%20plan.pdf)")    // {1}

#include <bitset>
#include <compare>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

class AttachmentUses {
 public:
  // Names below `.attachments`; none is empty.
  explicit AttachmentUses(const std::vector<std::string>& names);

  // The positions of the used names, ascending. One pass over each form of the text for all names
  // together, which looks closer only where a name may begin. The text may be no valid UTF-8.
  std::vector<size_t> in(std::string_view text) const;

 private:
  struct Form {
    std::string text;
    size_t name = 0;  // whose form it is

    auto operator<=>(const Form&) const = default;
  };

  static constexpr size_t kStarts = size_t{1} << 16U;

  size_t startKey(std::string_view text, size_t at) const;
  // In the text, and in the text percent-decoded.
  void findDecoded(std::string_view text, std::vector<bool>& isUsed) const;
  void findInBothForms(std::string_view text, std::vector<bool>& isUsed) const;
  void find(std::string_view text, std::vector<bool>& isUsed) const;
  void findAt(std::string_view text, size_t at, std::vector<bool>& isUsed) const;

  size_t count_ = 0;             // of the names
  std::vector<Form> forms_;      // sorted
  size_t startSize_ = 0;         // bytes that every form has, at most 4
  std::bitset<kStarts> starts_;  // the keys of what forms begin with
};

}  // namespace lk
