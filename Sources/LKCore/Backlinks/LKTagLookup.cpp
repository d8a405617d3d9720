#include "LKCore/Backlinks/LKTagLookup.h"

#include "LKCore/Base/Text.h"

namespace lk::LKTagLookup {

LKTag* existingTag(std::string_view text, LKContext& context, LKParts parts) {
  const std::vector<std::string> spellings = {std::string(text), text::composed(text),
                                              text::decomposed(text)};
  const auto tags = context.tags().fetch({.where = tagsWithText(spellings), .parts = parts});
  return tags.empty() ? nullptr : tags.back();
}

LKTag newTag(std::string_view text, const std::optional<LKTagIcon>& icon, const UUID& id,
             Instant created) {
  LKTag tag;
  tag.id = id;
  tag.text = text;
  tag.createdDate = created;
  if (icon) {
    tag.symbolName = icon->symbolName;
    tag.tintColorName = icon->tintColorName;
  }
  return tag;
}

}  // namespace lk::LKTagLookup
