#pragma once

// The passes over cmark's HTML, in their order. LKMarkdownToHTML.h tells the whole. Each one looks
// first for what it is about and gives HTML without it back as it came.

#include <string>

#include "LKCore/Rendering/LKMarkdownToHTML.h"

namespace lk::LKMarkdownToHTML {

enum class Checkboxes { still, interactive };

// The markers of task identifiers move into the boxes before them; one without a box goes.
std::string bindTaskIDs(std::string html, Checkboxes boxes);

// "a.png#400" in a source becomes a style.
std::string applySourceFragments(std::string html);

// "alt|400" within a table's cells becomes a style; the alt stays.
std::string applyTableImageSizes(std::string html);

// "alt|400" and "alt|hide" become the alt alone.
std::string stripImageSizeQualifiers(std::string html);

enum class Attachments { known, any };  // the types of LKAttachmentTypes, or all but pictures

// A picture whose file is no picture becomes a link.
std::string demoteNonImageImages(std::string html, Attachments types);

std::string renderAttachmentLinks(std::string html, SharingOptions::AttachmentHandling handling);

// A picture alone in its paragraph, with an alt, becomes a figure.
std::string promoteCaptionedFigures(std::string html);

}  // namespace lk::LKMarkdownToHTML
