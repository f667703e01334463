// Code 128 in automatic mode through the C interface: a 20- and a 200-character text
// with digit runs, upper and lower case and a control byte, drawn to PNG and to SVG.
#include <benchmark/benchmark.h>

#include <string>

#include "barcode_ffi.h"

namespace {

std::string MixedText(size_t length) {
  const std::string piece = "Lot 4711-0815 ab\tCD 20240131 xyz ";
  std::string text;
  while (text.size() < length) text += piece;
  text.resize(length);
  return text;
}

// Box width for about 2 pixels a module (11 modules a character at most, plus start,
// check and stop).
int BoxWidth(size_t length) { return static_cast<int>(2 * (11 * length + 40)); }

void BM_Code128AutoPng(benchmark::State& state) {
  const std::string text = MixedText(static_cast<size_t>(state.range(0)));
  BarcodeHandle* handle = barcode_create(BARCODE_CODE128);
  for (auto _ : state) {
    if (barcode_draw_1d(handle, text.c_str(), BoxWidth(text.size()), 100) == 0) {
      state.SkipWithError("draw failed");
      break;
    }
    uint32_t size = 0;
    benchmark::DoNotOptimize(barcode_get_image_data(handle, &size));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Code128AutoPng)->Arg(20)->Arg(200);

void BM_Code128AutoSvg(benchmark::State& state) {
  const std::string text = MixedText(static_cast<size_t>(state.range(0)));
  BarcodeHandle* handle = barcode_create(BARCODE_CODE128);
  barcode_set_output_format(handle, "svg");
  for (auto _ : state) {
    if (barcode_draw_1d(handle, text.c_str(), BoxWidth(text.size()), 100) == 0) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Code128AutoSvg)->Arg(20)->Arg(200);

}  // namespace
