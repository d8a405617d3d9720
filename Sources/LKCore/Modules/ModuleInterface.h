#pragma once

// What passes between the library and its parts, for the two sides of that door alone: everyone
// else uses the headers beside this one.
//
// The tool brings its own C++ library and a part uses the system's, so C structures alone go
// through. Each side catches what is thrown on it: the functions of a part give a PartResult and a
// text, the functions that a sink holds answer whether to go on.

#include <cstddef>
#include <cstdint>

extern "C" {

// Bytes that the callee reads during the call.
struct PartBytes {
  const char* data;
  size_t size;
};

// Where a part puts bytes, in pieces. `take` copies them; false ends the work.
struct PartSink {
  void* target;
  bool (*take)(void* target, const char* data, size_t size) noexcept;
};

// `nothing`: the input is none that the part knows. `failed`: the error sink has the reason.
enum class PartResult : int { done, nothing, failed };

struct PartZipEntry {
  PartBytes name;
  PartBytes bytes;
  bool isStored;
};

struct PartDownload {
  const char* url;
  long milliseconds;
  size_t limit;
  const char* ownServer;  // a numeric address reached although it is not public; may be empty
};

struct PartWord {
  PartBytes text;
  double left, top, right, bottom;  // points from the upper left corner
  bool endsLine;
  bool spaceAfter;
};

// Takes the pages in their order, each followed by its words.
struct PartPageSink {
  void* target;
  bool (*page)(void* target, double width, double height) noexcept;
  bool (*word)(void* target, const PartWord* word) noexcept;
};

struct PartDestination {
  size_t page;
  double left, top;  // points from the upper left corner
};

struct PartDestinationSink {
  void* target;
  bool (*take)(void* target, PartBytes name, PartDestination destination) noexcept;
};

struct PartOutlineEntry {
  PartBytes title;
  int level;
  PartDestination destination;
};

struct PartPDFProperties {
  PartBytes title, author, language, date;
};

enum class PartColour : int { keyword, string, comment, number };

struct PartColourSink {
  void* target;
  bool (*take)(void* target, size_t start, size_t end, PartColour colour) noexcept;
};

}  // extern "C"

namespace lk {

// Goes up with every change of this header; a part made for another one is not used.
inline constexpr int kPartVersion = 1;

}  // namespace lk

// What the parts export; the library asks for them by name and never links them.
#pragma GCC visibility push(default)
extern "C" {

int larkspirePartVersion() noexcept;

PartResult larkspireArchive(const PartZipEntry* entries, size_t count, uint16_t dosTime,
                            uint16_t dosDate, PartSink archive, PartSink error) noexcept;

PartResult larkspirePNGOfSVG(PartBytes svg, int width, int height, PartSink png,
                             PartSink error) noexcept;

// The content type goes to `contentType` as the server wrote it.
PartResult larkspireDownload(const PartDownload* request, PartSink content, PartSink contentType,
                             PartSink error) noexcept;
bool larkspireIsPublicAddress(const char* address) noexcept;

PartResult larkspirePDFPageCount(PartBytes pdf, size_t* count, PartSink error) noexcept;
PartResult larkspirePDFPages(PartBytes pdf, PartPageSink pages, PartSink error) noexcept;
PartResult larkspirePDFDestinations(PartBytes pdf, PartDestinationSink destinations,
                                    PartSink error) noexcept;
PartResult larkspirePDFWithPages(PartBytes pdf, size_t first, PartBytes replacement,
                                 PartSink result, PartSink error) noexcept;
PartResult larkspireFinishedPDF(PartBytes pdf, const PartOutlineEntry* entries, size_t count,
                                const PartPDFProperties* properties, PartSink result,
                                PartSink error) noexcept;

PartResult larkspireColouredCode(PartBytes code, PartBytes language, PartColourSink colours,
                                 PartSink error) noexcept;

}  // extern "C"
#pragma GCC visibility pop
