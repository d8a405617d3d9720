#pragma once

// Text on its way into XML.

#include <string>
#include <string_view>

namespace lk::word {

inline constexpr std::string_view kXMLDeclaration =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

// The text without what XML forbids: control characters but tab and line feed, U+FFFE, U+FFFF. Bytes
// that are no UTF-8 are U+FFFD. Carriage returns go too.
std::string withoutForbidden(std::string_view text);

// Appends for a text or a value in double quotes.
void appendEscaped(std::string& xml, std::string_view text);
std::string escapedXML(std::string_view text);

}  // namespace lk::word
