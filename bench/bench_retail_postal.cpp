// The EAN/UPC family, GS1-128 and the Japan Post customer barcode through the C interface:
// each to PNG (JAN-13 and GS1-128 also to SVG). JAN-13 against Zint is in bench_png.
#include <benchmark/benchmark.h>

#include <string>

#include "barcode_ffi.h"

namespace {

void DrawPng(benchmark::State& state, int type, const char* text, int width, int height,
             int (*draw)(BarcodeHandle*, const char*, int, int) = barcode_draw_1d) {
  BarcodeHandle* handle = barcode_create(type);
  for (auto _ : state) {
    if (draw(handle, text, width, height) == 0) {
      state.SkipWithError("draw failed");
      break;
    }
    uint32_t size = 0;
    benchmark::DoNotOptimize(barcode_get_image_data(handle, &size));
  }
  barcode_destroy(handle);
}

void DrawSvg(benchmark::State& state, int type, const char* text, int width, int height) {
  BarcodeHandle* handle = barcode_create(type);
  barcode_set_output_format(handle, "svg");
  for (auto _ : state) {
    if (barcode_draw_1d(handle, text, width, height) == 0) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}

constexpr const char* kJan13 = "4901234567894";
constexpr const char* kGs1 = "(01)04912345678904(10)ABC123(17)251231";

void BM_Jan13Png(benchmark::State& state) { DrawPng(state, BARCODE_JAN13, kJan13, 300, 100); }
BENCHMARK(BM_Jan13Png);
void BM_Jan13AddOnPng(benchmark::State& state) { DrawPng(state, BARCODE_JAN13, "4901234567894+12345", 400, 100); }
BENCHMARK(BM_Jan13AddOnPng);
void BM_Jan13Svg(benchmark::State& state) { DrawSvg(state, BARCODE_JAN13, kJan13, 300, 100); }
BENCHMARK(BM_Jan13Svg);
void BM_Jan8Png(benchmark::State& state) { DrawPng(state, BARCODE_JAN8, "4912345", 200, 100); }
BENCHMARK(BM_Jan8Png);
void BM_UpcAPng(benchmark::State& state) { DrawPng(state, BARCODE_UPCA, "036000291452", 300, 100); }
BENCHMARK(BM_UpcAPng);
void BM_UpcEPng(benchmark::State& state) { DrawPng(state, BARCODE_UPCE, "01234565", 200, 100); }
BENCHMARK(BM_UpcEPng);
void BM_Gs1128Png(benchmark::State& state) { DrawPng(state, BARCODE_GS1_128, kGs1, 500, 100); }
BENCHMARK(BM_Gs1128Png);
void BM_Gs1128Svg(benchmark::State& state) { DrawSvg(state, BARCODE_GS1_128, kGs1, 500, 100); }
BENCHMARK(BM_Gs1128Svg);
void BM_ConveniencePng(benchmark::State& state) {
  DrawPng(state, BARCODE_GS1_128, "9191234512345678901234567890123425013102500", 600, 240, barcode_draw_convenience);
}
BENCHMARK(BM_ConveniencePng);
void BM_YubinPng(benchmark::State& state) {
  DrawPng(state, BARCODE_YUBIN_CUSTOMER, "10000131-3-2-503", 0, 30, barcode_draw_yubin_with_width);
}
BENCHMARK(BM_YubinPng);

}  // namespace
