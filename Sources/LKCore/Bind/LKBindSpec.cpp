#include "LKCore/Bind/LKBindSpec.h"

#include <utility>

namespace lk {

LKBindHeading LKBindHeading::defaultPart() {
  return {
      .treatment = LKBindHeadingTreatment::part,
      .pageBreakBefore = true,
      .numbering = LKBindHeadingNumbering::romanUpper,
      .prefix = "Part {part_n_roman_upper}\n{title}",
      .suffix = "",
      .alignment = LKBindAlignment::center,
      .sizePt = 24,
      .weight = LKBindFontWeight::bold,
      .spacingBeforePt = 200,
      .spacingAfterPt = 60,
      .includeInToc = true,
  };
}

LKBindHeading LKBindHeading::defaultH1() {
  return {
      .treatment = LKBindHeadingTreatment::chapter,
      .pageBreakBefore = true,
      .numbering = LKBindHeadingNumbering::arabic,
      .prefix = "Chapter {n}\n{title}",
      .suffix = "",
      .alignment = LKBindAlignment::center,
      .sizePt = 18,
      .weight = LKBindFontWeight::bold,
      .spacingBeforePt = 144,
      .spacingAfterPt = 48,
      .includeInToc = true,
  };
}

LKBindHeading LKBindHeading::defaultH2() {
  LKBindHeading heading;
  heading.treatment = LKBindHeadingTreatment::section;
  heading.sizePt = 14;
  heading.spacingBeforePt = 24;
  heading.spacingAfterPt = 12;
  heading.includeInToc = true;
  return heading;
}

LKBindHeading LKBindHeading::defaultH3() {
  LKBindHeading heading;
  heading.treatment = LKBindHeadingTreatment::subsection;
  return heading;
}

LKBindSpecError::LKBindSpecError(std::string description, int64_t found, int64_t supported)
    : Error(std::move(description)), found_(found), supported_(supported) {}

LKBindSpecError LKBindSpecError::unsupportedSchemaVersion(int64_t found, int64_t supported) {
  return {"Bind spec uses schema version " + std::to_string(found) + "; this app supports up to " +
              std::to_string(supported) + ". Upgrade Larkspire to read this spec.",
          found, supported};
}

LKBindSpec LKBindSpec::iOSStandardManuscript() {
  LKBindSpec spec;
  spec.name = "Standard Manuscript";
  spec.specDescription = "Times 12pt, double-spaced. Agent/editor submission format.";
  return spec;
}

LKBindSpec LKBindSpec::iOSPaperback() {
  LKBindSpec spec;
  spec.name = "Paperback";
  spec.specDescription = "6×9 trim, Garamond 11pt single-spaced. Self-publishing default.";
  spec.page.size = LKBindPageSize::tradePaperback6x9;
  spec.page.widthIn = 6;
  spec.page.heightIn = 9;
  spec.typography.bodyFont = "Garamond";
  spec.typography.bodySizePt = 11;
  spec.typography.headingFont = "Garamond";
  spec.typography.lineSpacing = LKBindLineSpacing::single;
  spec.typography.firstLineIndentIn = 0.25;
  spec.typography.justifyBody = true;
  return spec;
}

LKBindSpec LKBindSpec::iOSPlain() {
  LKBindSpec spec;
  spec.name = "Plain";
  spec.specDescription = "System font, single-spaced. General-purpose PDF.";
  spec.typography.bodyFont = "-apple-system";
  spec.typography.headingFont = "-apple-system";
  spec.typography.lineSpacing = LKBindLineSpacing::single;
  spec.typography.firstLineIndentIn = 0;
  spec.typography.paragraphSpacingPt = 8;
  spec.sceneBreak.rendering = LKBindSceneBreakRendering::horizontalRule;
  spec.sceneBreak.text = "";
  spec.headings.h1 = LKBindHeading{};
  spec.headings.h1.sizePt = 16;
  return spec;
}

std::array<LKBindSpec, 3> LKBindSpec::iOSStyles() {
  return {iOSStandardManuscript(), iOSPaperback(), iOSPlain()};
}

}  // namespace lk
