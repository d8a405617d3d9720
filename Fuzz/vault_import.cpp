// Any bytes as a note of a vault, and as what a bundle says of itself: the block ends where the
// body begins, rewriting keeps lines and what it has no business with, links are what patterns find.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "LKCore/Base/Error.h"
#include "LKCore/Base/Pattern.h"
#include "LKCore/Base/Text.h"
#include "LKCore/Import/LKImportEngine.h"
#include "LKCore/Import/LKObsidianImporter.h"
#include "LKCore/Tags/LKTagNameRules.h"

namespace {

namespace engine = lk::LKImportEngine;
namespace vault = lk::LKObsidianImporter;

void require(bool holds) {
  if (!holds) std::abort();
}

auto lineFeeds(std::string_view text) {
  return std::ranges::count(text, '\n');
}

void checkBlock(std::string_view text) {
  const auto [block, body] = vault::parseFile(text);
  require(text.ends_with(body));
  require(block || body == text);
  if (!block) return;
  for (const std::string& tag : block->tags) require(!tag.empty());
  if (block->date) vault::parseDate(*block->date);
}

void checkLinks(std::string_view text) {
  require(vault::convertImageEmbeds(text, {}) == text);
  require(vault::rewriteStandardImagePaths(text, {}) == text);
  const vault::ImageMapping mapping = {{"a", "stored"}};
  const std::string embeds = vault::convertImageEmbeds(text, mapping);
  const std::string images = vault::rewriteStandardImagePaths(embeds, mapping);
  const std::string links = vault::convertAliasedLinks(text);
  require(lineFeeds(embeds) == lineFeeds(text) && lineFeeds(images) == lineFeeds(text));
  require(lk::text::isValidUTF8(images) && lk::text::isValidUTF8(links));
  const bool isPlainLine = text.size() < 2000 && text.find('\n') == std::string_view::npos &&
                           text.find("```") == std::string_view::npos &&
                           text.find('\\') == std::string_view::npos;
  static const lk::Pattern alias(R"((?s)\[\[([^\]\|]+)\|[^\]]+\]\])");
  if (isPlainLine) require(links == alias.replacingAllByTemplate(text, "[[$1]]"));
}

void checkTags(std::string_view text) {
  const std::string prefixed = engine::prefixInlineTags(text, "p/");
  require(lineFeeds(prefixed) == lineFeeds(text) && lk::text::isValidUTF8(prefixed));
  const std::string tag = engine::readableTag(text);
  require(engine::readableTag(tag) == tag);
  require(tag.empty() || !lk::LKTagNameRules::problem("p/" + tag));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto decoded = engine::decoded(bytes);
  if (decoded) {
    require(lk::text::isValidUTF8(*decoded) && decoded->find('\r') == std::string::npos);
    checkBlock(*decoded);
    checkLinks(*decoded);
    checkTags(*decoded);
  }
  try {
    for (const std::string& tag : engine::tagsOfBundleInfo(bytes)) require(!tag.empty());
  } catch (const lk::Error&) {
    return 0;  // no JSON
  }
  return 0;
}
