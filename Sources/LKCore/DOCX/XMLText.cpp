#include "LKCore/DOCX/XMLText.h"

#include "LKCore/Base/Text.h"

namespace lk::word {

std::string withoutForbidden(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (size_t i = 0; i < text.size();) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x80) {
      if (byte >= 0x20 || byte == '\t' || byte == '\n') result.push_back(text[i]);
      ++i;
      continue;
    }
    const text::Decoded decoded = text::decode(text, i);
    if (decoded.scalar != 0xFFFE && decoded.scalar != 0xFFFF) {
      text::append(result, decoded.scalar);
    }
    i += decoded.length;
  }
  return result;
}

void appendEscaped(std::string& xml, std::string_view text) {
  size_t copied = 0;
  for (size_t i = text.find_first_of("&<>\""); i != std::string_view::npos;
       i = text.find_first_of("&<>\"", copied)) {
    xml.append(text.substr(copied, i - copied));
    switch (text[i]) {
      case '&':
        xml.append("&amp;");
        break;
      case '<':
        xml.append("&lt;");
        break;
      case '>':
        xml.append("&gt;");
        break;
      default:
        xml.append("&quot;");
    }
    copied = i + 1;
  }
  xml.append(text.substr(copied));
}

std::string escapedXML(std::string_view text) {
  std::string xml;
  appendEscaped(xml, text);
  return xml;
}

}  // namespace lk::word
