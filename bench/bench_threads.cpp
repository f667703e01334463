// Throughput with 1 and 2 threads, each on its own handles (the supported way to use
// the library from several threads): Code 128 with its text line and a QR Code, both to
// PNG. items_per_second at 2 threads over 1 thread is the scaling.
#include <benchmark/benchmark.h>

#include "barcode_ffi.h"

namespace {

void BM_ThroughputSeparateHandles(benchmark::State& state) {
  barcode_set_quiet(1);  // progress lines would go to the table's standard output
  BarcodeHandle* code128 = barcode_create(BARCODE_CODE128);
  BarcodeHandle* qr = barcode_create(BARCODE_QR);
  for (auto _ : state) {
    uint32_t size = 0;
    if (barcode_draw_1d(code128, "Lot 4711-0815", 300, 100) == 0 ||
        barcode_draw_2d(qr, "https://example.com/p/4711", 300) == 0) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(barcode_get_image_data(code128, &size));
    benchmark::DoNotOptimize(barcode_get_image_data(qr, &size));
  }
  state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * 2);
  barcode_destroy(qr);
  barcode_destroy(code128);
}
BENCHMARK(BM_ThroughputSeparateHandles)->Threads(1)->Threads(2)->UseRealTime();

}  // namespace
