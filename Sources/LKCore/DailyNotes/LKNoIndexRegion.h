#pragma once

// The generated regions of a note's body: from a line "<!--lk:noindex-->" to the next line
// "<!--/lk:noindex-->", both included. They are the same that the tag extractor leaves out. A
// marker with other words on its line is none.
//
//     LKNoIndexRegion::removingRegions(
//         "a\n<!--lk:noindex-->\n[[Work]]\n<!--/lk:noindex-->\nb")    // "a\n\nb"
//
// Lines end at line feeds. Time is linear in the text.

#include <string>
#include <string_view>
#include <vector>

#include "LKCore/Base/TextRange.h"

namespace lk::LKNoIndexRegion {

// A line that is a marker.
struct Marker {
  TextRange line;  // without its line feed
  bool opens = false;

  bool operator==(const Marker&) const = default;
};

// In their order, those without a partner among them.
std::vector<Marker> markers(std::string_view text);

// In their order; the line feed behind the closing marker is not part of its region. A region that
// is not closed reaches to the end of the text, and an opening marker inside a region is part of it.
std::vector<TextRange> ranges(std::string_view text);

// The text without its regions; the line feeds around them stay.
std::string removingRegions(std::string_view text);

// True when the text links to the title, in any case, inside regions and nowhere else.
bool isOnlyGenerated(std::string_view linkTitle, std::string_view text);

}  // namespace lk::LKNoIndexRegion
