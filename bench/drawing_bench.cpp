// Loading, saving, painting and exporting long lists of figures; each must be linear in the length.

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "graphics/document/drawing_file.h"
#include "graphics/document/painting.h"
#include "graphics/figures/boxes.h"
#include "graphics/figures/curves.h"
#include "graphics/figures/lines.h"
#include "graphics/figures/texts.h"
#include "graphics/surfaces/blank_surface.h"
#include "graphics/view/pictures.h"

namespace vexa {
namespace {

// Lines, arrows, filled boxes, polygons of eight points and texts in turn, all on the page.
void fillDrawing(CMiniDrawDoc& drawing, std::int64_t count) {
  drawing.emptyDrawing();
  drawing.settings().fillStyle = fillSolid;
  for (std::int32_t i = 0; i < count; ++i) {
    const Point from{i % 1300, i / 7 % 1700};
    const Point to{from.x + 9 + i % 50, from.y + 30 - i % 60};
    switch (i % 5) {
      case 0:
        drawing.append(CLine(drawing, from, to));
        break;
      case 1:
        drawing.append(CLineArrow(drawing, from, to));
        break;
      case 2:
        drawing.append(CRectFill(drawing, from, to));
        break;
      case 3:
        drawing.append(CPolygon(drawing, from, to, 8));
        break;
      default:
        drawing.append(CText(drawing, from, to, "label " + std::to_string(i)));
    }
  }
}

void appendFigures(benchmark::State& state) {
  for (auto _ : state) {
    CMiniDrawDoc drawing;
    fillDrawing(drawing, state.range(0));
    benchmark::DoNotOptimize(drawing.figureCount());
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(appendFigures)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void saveFigures(benchmark::State& state) {
  CMiniDrawDoc drawing;
  fillDrawing(drawing, state.range(0));
  std::string bytes;
  for (auto _ : state) bytes = writeDrawing(drawing);
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(saveFigures)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void loadFigures(benchmark::State& state) {
  CMiniDrawDoc drawing;
  fillDrawing(drawing, state.range(0));
  const std::string bytes = writeDrawing(drawing);
  for (auto _ : state) {
    CMiniDrawDoc loaded;
    if (!readDrawing(bytes, loaded).complete()) state.SkipWithError("not loaded");
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}
BENCHMARK(loadFigures)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void paintFigures(benchmark::State& state) {
  CMiniDrawDoc drawing;
  fillDrawing(drawing, state.range(0));
  BlankSurface surface;
  for (auto _ : state) paintDrawing(drawing, surface);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(paintFigures)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void exportSvg(benchmark::State& state) {
  CMiniDrawDoc drawing;
  fillDrawing(drawing, state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(drawingAsSvg(drawing, {}).size());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(exportSvg)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

void exportMetafile(benchmark::State& state) {
  CMiniDrawDoc drawing;
  fillDrawing(drawing, state.range(0));
  for (auto _ : state) benchmark::DoNotOptimize(drawingAsMetafile(drawing, {})->size());
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(exportMetafile)->Arg(20000)->Arg(200000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace vexa
