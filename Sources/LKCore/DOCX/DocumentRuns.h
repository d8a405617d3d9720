#pragma once

// Lines of Markdown as the runs of a paragraph.

#include <string>
#include <string_view>

#include "LKCore/DOCX/FootnotePool.h"
#include "LKCore/DOCX/ImageRegistry.h"

namespace lk::word {

struct RunFormat {
  bool isBold = false;
  bool isItalic = false;
  bool isStruck = false;
  bool isHighlighted = false;
  bool isUnderlined = false;
  bool isRaised = false;
  bool isLowered = false;
  int halfPoints = 0;            // 0: the paragraph's
  std::string_view colour = {};  // "8a1c7c"; empty: the paragraph's
};

enum class RunFont { paragraph, monospace };

// Appends a run; tabs and line feeds of the text are the document's own.
void appendRun(std::string& xml, std::string_view text, const RunFormat& format,
               RunFont font = RunFont::paragraph);

// Both may be missing: then references stay text, and a picture is its alt.
struct RunSources {
  FootnotePool* notes = nullptr;
  ImageRegistry* images = nullptr;
};

// Appends the runs of one line without control characters. "<br>" breaks it.
void appendMarkdownRuns(std::string& xml, std::string_view line, const RunFormat& format,
                        const RunSources& sources);

// The line's words alone.
std::string plainText(std::string_view line);

}  // namespace lk::word
