// The grid of printed pages.

#include <gtest/gtest.h>

#include <limits>

#include "graphics/view/print_pages.h"

namespace vexa {
namespace {

TEST(PrintPages, CoverTheDrawingRowByRow) {
  const PrintPages pages = printPagesFor({1000, 1000});
  EXPECT_EQ(pages.columns, 2);
  EXPECT_EQ(pages.rows, 2);
  EXPECT_EQ(pages.area(2), (Rect{1000, 0, 2000, 1000}));
  EXPECT_EQ(pages.area(3), (Rect{0, 1000, 1000, 2000}));

  constexpr auto most = std::numeric_limits<std::int32_t>::max();
  struct Case {
    DeviceSize page;
    int count;
  };
  for (const auto& [page, count] :
       {Case{{1390, 1800}, 1}, Case{{1389, 1800}, 2}, Case{{1390, 1799}, 2}, Case{{most, most}, 1},
        Case{{1, 1}, 1390 * 1800}, Case{{0, 100}, 0}, Case{{100, -1}, 0}})
    EXPECT_EQ(printPagesFor(page).count(), count) << page.width << " x " << page.height;
}

}  // namespace
}  // namespace vexa
