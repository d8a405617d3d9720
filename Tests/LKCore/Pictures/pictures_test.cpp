// Sizes by headers of any kind, and pictures that are found in the collection and nowhere else.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "LKCore/Base/Base64.h"
#include "LKCore/Pictures/CollectionPicture.h"
#include "LKCore/Pictures/SelfContainedSVG.h"
#include "Support/Growth.h"
#include "Support/TempFolder.h"

namespace lk {
namespace {

namespace fs = std::filesystem;

std::string seed(const std::string& name) {
  return test::readWhole(fs::path(LK_SOURCE_ROOT) / "Fuzz/corpus/picture_header" / name);
}

TEST(PictureHeaders, TellSizeDensityAndOrientation) {
  struct Row {
    std::string name;
    PictureFormat format;
    int width, height, orientation;
    double widthIn, heightIn;
  };
  for (const Row& row :
       std::vector<Row>{{"dense.png", PictureFormat::png, 300, 150, 1, 1, 0.5},
                        {"turned.jpg", PictureFormat::jpeg, 100, 200, 6, 1.0 / 3, 2.0 / 3},
                        {"small.gif", PictureFormat::gif, 7, 9, 1, 7 / 96.0, 9 / 96.0},
                        {"extended.webp", PictureFormat::webp, 50, 100, 6, 50 / 96.0, 100 / 96.0},
                        {"lossless.webp", PictureFormat::webp, 100, 50, 1, 100 / 96.0, 50 / 96.0},
                        {"plain.tiff", PictureFormat::tiff, 640, 480, 1, 640 / 96.0, 5},
                        {"shapes.svg", PictureFormat::svg, 192, 96, 1, 2, 1}}) {
    const std::string bytes = seed(row.name);
    const auto header = pictureHeader(bytes);
    ASSERT_TRUE(header) << row.name;
    EXPECT_EQ(header->format, row.format) << row.name;
    EXPECT_EQ(header->width, row.width) << row.name;
    EXPECT_EQ(header->height, row.height) << row.name;
    EXPECT_EQ(header->orientation, row.orientation) << row.name;
    EXPECT_NEAR(header->widthIn, row.widthIn, 0.001) << row.name;
    EXPECT_NEAR(header->heightIn, row.heightIn, 0.001) << row.name;
    EXPECT_TRUE(row.name.ends_with(extensionOf(row.format))) << row.name;
    EXPECT_FALSE(pictureHeader(std::string_view(bytes).substr(0, 8))) << row.name;
  }
}

TEST(PictureHeaders, ReadSVGSizes) {
  struct Row {
    std::string attributes;
    double widthIn, heightIn;  // 0: none
  };
  for (const Row& row : std::vector<Row>{{"width='25.4mm' height='72pt'", 1, 1},
                                         {"viewBox='0,0 96,192'", 1, 2},
                                         {"width='100%' viewBox='0 0 96 48'", 1, 0.5},
                                         {"width='50%'", 0, 0},
                                         {"width='1e999' height='1'", 0, 0},
                                         {"width=\"96px\"", 0, 0}}) {
    const auto header = pictureHeader("<svg " + row.attributes + "></svg>");
    EXPECT_NEAR(header ? header->widthIn : 0, row.widthIn, 0.001) << row.attributes;
    EXPECT_NEAR(header ? header->heightIn : 0, row.heightIn, 0.001) << row.attributes;
  }
  EXPECT_LE(test::growth("<!---->", 100'000, [](const std::string& text) { pictureHeader(text); }),
            8);
}

TEST(CollectionPictures, AreFoundBelowTheCollectionAlone) {
  const test::TempFolder folder;
  const fs::path root = folder / "notes";
  fs::create_directories(root / ".attachments");
  test::writeWhole(root / ".attachments/a b.gif", seed("small.gif"));
  test::writeWhole(folder / "secret.gif", seed("small.gif"));
  test::writeWhole(root / "text.png", "no picture");
  fs::create_symlink(folder / "secret.gif", root / "out.gif");
  fs::create_directory_symlink(folder.path(), root / "up");
  for (const std::string source :
       {"attachments/a b.gif", "./attachments/a%20b.gif", ".attachments/a b.gif", "a%20b.gif",
        "larkspire-asset:///a%20b.gif"}) {
    EXPECT_TRUE(collectionPicture(source, root)) << source;
  }
  EXPECT_TRUE(collectionPicture("file://" + (root / ".attachments/a b.gif").string(), root));
  EXPECT_TRUE(collectionPicture("data:image/x;base64," + base64Text(seed("small.gif")), root));
  for (const std::string source :
       {"../secret.gif", "%2e%2e/secret.gif", "attachments/../../secret.gif", "out.gif",
        "up/secret.gif", "text.png", "", ".", "missing.gif", "a b.gif%00.png", "/etc/passwd",
        "data:image/gif;base64,!!!!", "data:,x", "file:///etc/passwd"}) {
    EXPECT_FALSE(collectionPicture(source, root)) << source;
  }
  EXPECT_FALSE(collectionPicture("file://" + (folder / "secret.gif").string(), root));
}

TEST(SVGDocuments, AreEmbeddedOnlyWithoutReferences) {
  for (const std::string own : {"<svg><use href='#a'/><path style='fill:url(#b)'/></svg>",
                                "<svg><image xlink:href=\"data:image/png;base64,x\"/></svg>"}) {
    EXPECT_TRUE(isSelfContainedSVG(own)) << own;
  }
  for (const std::string other :
       {"<svg><SCRIPT/></svg>", "<svg onload = 'x'/>", "<svg><image href = 'http://a'/></svg>",
        "<svg><path style='fill:url( \"file:///a\")'/></svg>", "<!DOCTYPE svg [<!ENTITY a 'b'>]>",
        "<svg><style>@import 'a'</style></svg>"}) {
    EXPECT_FALSE(isSelfContainedSVG(other)) << other;
  }
}

}  // namespace
}  // namespace lk
