// The example programs that draw: what they paint, stroke by stroke.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "graphics/document/painting.h"
#include "graphics/figures/paint_state.h"
#include "graphics/surfaces/recording_surface.h"
#include "support/scripted_shell.h"

namespace vexa {
namespace {

const std::string examples = VEXA_TEST_DATA "/../../examples/";

std::string contents(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.is_open()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

class DrawingExamples : public testing::TestWithParam<std::string> {};

TEST_P(DrawingExamples, PaintTheExpectedStrokes) {
  paintState() = {};
  ScriptedSession session;
  ASSERT_TRUE(session.run(contents(examples + GetParam() + ".vxp")));
  ASSERT_EQ(session.shell.drawings().size(), 1u);
  RecordingSurface surface;
  paintDrawing(*session.shell.drawings()[0], surface);
  EXPECT_EQ(surface.listing(), contents(examples + "expected/" + GetParam() + ".strokes"));
}

INSTANTIATE_TEST_SUITE_P(, DrawingExamples,
                         testing::Values("truss_drawing", "bar_chart", "ellipse_pattern"),
                         [](const auto& test) { return test.param; });

}  // namespace
}  // namespace vexa
