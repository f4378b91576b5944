// Names of picture files.

#include <gtest/gtest.h>

#include "cli/picture_file.h"

namespace vexa {
namespace {

TEST(PictureFile, FormatIsThatOfTheLastExtension) {
  EXPECT_EQ(pictureFormatOf("a.svg/b.PnG"), PictureFormat::png);
  EXPECT_EQ(pictureFormatOf(".drw"), PictureFormat::drw);
  for (const char* path : {"a.svg/b", "svg", "a.svg ", "a.", ""})
    EXPECT_FALSE(pictureFormatOf(path)) << path;
}

TEST(PictureFile, LaterPicturesAreNumbered) {
  EXPECT_EQ(numberedPath("a.b/c.d.svg", 1), "a.b/c.d.svg");
  EXPECT_EQ(numberedPath("a.b/c.d.svg", 2), "a.b/c.d-2.svg");
  EXPECT_EQ(numberedPath("o.emf", 10), "o-10.emf");
}

}  // namespace
}  // namespace vexa
