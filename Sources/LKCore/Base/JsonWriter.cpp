#include "LKCore/Base/JsonWriter.h"

#include <array>

#include "LKCore/Base/Text.h"

namespace lk {

namespace {

// True for the bytes that stand in a JSON string as they are and need no decoding.
constexpr std::array<bool, 256> kPlainJsonBytes = [] {
  std::array<bool, 256> plain{};
  for (size_t byte = 0x20; byte < 0x80; ++byte) plain[byte] = true;
  for (const char special : {'"', '\\', '/'}) plain[static_cast<unsigned char>(special)] = false;
  return plain;
}();

size_t endOfPlain(std::string_view text, size_t from) {
  while (from < text.size() && kPlainJsonBytes[static_cast<unsigned char>(text[from])]) ++from;
  return from;
}

void appendEscaped(std::string& out, char32_t scalar) {
  static constexpr std::string_view kLetters = "\"\\/\b\f\n\r\t";
  static constexpr std::string_view kEscapes = "\"\\/bfnrt";
  static constexpr std::string_view kHexDigits = "0123456789abcdef";
  const size_t letter =
      scalar < 0x80 ? kLetters.find(static_cast<char>(scalar)) : std::string_view::npos;
  if (letter != std::string_view::npos) {
    out.push_back('\\');
    out.push_back(kEscapes[letter]);
  } else if (scalar < 0x20) {
    out += "\\u00";
    out.push_back(kHexDigits[scalar >> 4U]);
    out.push_back(kHexDigits[scalar & 0x0FU]);
  } else {
    text::append(out, scalar);
  }
}

void appendJsonString(std::string& out, std::string_view value) {
  out.push_back('"');
  for (size_t i = 0; i < value.size();) {
    const size_t end = endOfPlain(value, i);
    out.append(value.substr(i, end - i));
    if (end == value.size()) break;
    const text::Decoded next = text::decode(value, end);
    appendEscaped(out, next.scalar);
    i = end + next.length;
  }
  out.push_back('"');
}

}  // namespace

void JsonWriter::beginObject() {
  begin('{');
}
void JsonWriter::endObject() {
  end('}');
}
void JsonWriter::beginArray() {
  begin('[');
}
void JsonWriter::endArray() {
  end(']');
}

JsonWriter& JsonWriter::key(std::string_view name) {
  beginValue();
  appendJsonString(out_, name);
  out_ += " : ";
  afterKey_ = true;
  return *this;
}

void JsonWriter::string(std::string_view value) {
  beginValue();
  appendJsonString(out_, value);
}

void JsonWriter::boolean(bool value) {
  raw(value ? "true" : "false");
}

void JsonWriter::integer(int64_t value) {
  raw(std::to_string(value));
}

void JsonWriter::raw(std::string_view json) {
  beginValue();
  out_ += json;
}

void JsonWriter::begin(char bracket) {
  beginValue();
  out_.push_back(bracket);
  hasMembers_.push_back(false);
}

void JsonWriter::end(char bracket) {
  const bool hadMembers = hasMembers_.back();
  hasMembers_.pop_back();
  if (hadMembers) newLine();
  out_.push_back(bracket);
}

// What stands between the value before and this one.
void JsonWriter::beginValue() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (hasMembers_.empty()) return;
  if (hasMembers_.back()) out_.push_back(',');
  hasMembers_.back() = true;
  newLine();
}

void JsonWriter::newLine() {
  out_.push_back('\n');
  out_.append(hasMembers_.size() * 2, ' ');
}

}  // namespace lk
