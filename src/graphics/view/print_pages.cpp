#include "graphics/view/print_pages.h"

namespace vexa {

PrintPages printPagesFor(DeviceSize page) {
  if (page.width <= 0 || page.height <= 0) return {};
  return {(printedWidth - 1) / page.width + 1, (printedHeight - 1) / page.height + 1, page};
}

Rect PrintPages::area(int number) const {
  const int column = (number - 1) % columns;
  const int row = (number - 1) / columns;
  const int left = column * page.width;
  const int top = row * page.height;
  return {left, top, left + page.width, top + page.height};
}

}  // namespace vexa
