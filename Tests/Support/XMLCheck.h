#pragma once

// Whether a text is one whole well-formed XML document, read strictly and by itself: for tests and
// fuzzers of what writes XML.
//
//     EXPECT_EQ(xmlError("<p a=\"1\">&lt;</p>"), std::nullopt);
//     EXPECT_EQ(xmlError("<p>&nbsp;</p>"), "unknown entity &nbsp; at byte 3");
//
// Wanted are valid UTF-8, the characters that XML 1.0 allows, one root element, names, nesting,
// attributes in quotes and once each, prefixes that are declared, of the entities the five of XML
// and numbers. A document type has a name and at most an identifier, no rules of its own.

#include <optional>
#include <string>
#include <string_view>

namespace lk::test {

// Nothing for a well-formed document, else the first fault and its byte. Time is linear but for
// prefixes, of which documents declare a handful.
std::optional<std::string> xmlError(std::string_view document);

}  // namespace lk::test
