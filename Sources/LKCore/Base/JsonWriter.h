#pragma once

// Writes JSON piece by piece in the system's form (Json.h), for documents whose tree would cost
// more than their text: the rows of 10,000 notes, results that are printed as they come.
//
//     std::string out;
//     JsonWriter json(out);
//     json.beginObject();
//     json.key("title").string("Groceries");
//     json.key("tags").beginArray();
//     json.endArray();
//     json.endObject();    // {"title" : "Groceries", "tags" : []} on four lines

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace lk {

// The caller gives the keys of an object sorted by their bytes and ends what it begins; an object
// gets a key before each value. What is written so far may be taken from `out` at any time.
class JsonWriter {
 public:
  explicit JsonWriter(std::string& out) : out_(out) {}

  void beginObject();
  void endObject();
  void beginArray();
  void endArray();

  JsonWriter& key(std::string_view name);

  void string(std::string_view value);  // invalid UTF-8 is written as U+FFFD
  void boolean(bool value);
  void integer(int64_t value);
  // A value that is JSON text already, on one line.
  void raw(std::string_view json);

 private:
  void begin(char bracket);
  void end(char bracket);
  void beginValue();
  void newLine();

  std::string& out_;
  std::vector<bool> hasMembers_;  // of each object and array that is open
  bool afterKey_ = false;
};

}  // namespace lk
