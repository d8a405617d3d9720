#pragma once

// The places in a note of a vault that show a file, found in one pass over a line.
//
//     forEachWikiEmbed("![[photo.png|300]]", ...)   // target "photo.png"
//
// For the importer's own sources.

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "LKCore/Base/TextRange.h"

namespace lk::LKObsidianImporter {

struct Reference {
  TextRange whole;   // with all of its brackets
  TextRange target;  // what it names
};

using ReferenceVisit = std::function<void(const Reference&)>;

// "![[target]]" and "![[target|...]]", left to right. A backslash before the bar, as tables need
// it, is no part of the target.
void forEachWikiEmbed(std::string_view line, const ReferenceVisit& visit);

// "[[target|shown]]", likewise.
void forEachAliasedLink(std::string_view line, const ReferenceVisit& visit);

// "![...](target)", but for targets that begin with "http://" or "https://".
void forEachStandardImage(std::string_view line, const ReferenceVisit& visit);

}  // namespace lk::LKObsidianImporter
