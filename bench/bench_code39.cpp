// Code 39 "ABC-1234" at 300 x 100 through the C interface: PNG bytes, data URI, SVG.
#include <benchmark/benchmark.h>

#include "barcode_ffi.h"

namespace {

void BM_Code39Png(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(BARCODE_CODE39);
  for (auto _ : state) {
    barcode_draw_1d(handle, "ABC-1234", 300, 100);
    uint32_t size = 0;
    benchmark::DoNotOptimize(barcode_get_image_data(handle, &size));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Code39Png);

void BM_Code39DataUri(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(BARCODE_CODE39);
  for (auto _ : state) {
    barcode_draw_1d(handle, "ABC-1234", 300, 100);
    benchmark::DoNotOptimize(barcode_get_base64(handle));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Code39DataUri);

void BM_Code39Svg(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(BARCODE_CODE39);
  barcode_set_output_format(handle, "svg");
  for (auto _ : state) {
    barcode_draw_1d(handle, "ABC-1234", 300, 100);
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Code39Svg);

}  // namespace
