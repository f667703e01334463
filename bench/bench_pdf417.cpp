// The PDF417 encoder alone on 200 bytes of mixed text at ten columns, Zint's encoder
// beside it where installed (drawing is timed in bench_draw).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "twod/pdf417_encoder.h"

namespace {

std::string Payload() {
  std::string text;
  while (text.size() < 200) text += "Invoice 2026-0042, total EUR 1234.56; ship to: 1 Main St. ";
  text.resize(200);
  return text;
}

void BM_Pdf417Encode(benchmark::State& state) {
  const std::string text = Payload();
  const std::vector<uint8_t> data(text.begin(), text.end());
  barcode_orv::internal_pdf417::Settings settings;
  settings.columns = 10;
  for (auto _ : state) {
    const auto symbol = barcode_orv::internal_pdf417::EncodePdf417(data, settings);
    benchmark::DoNotOptimize(symbol.rows);
  }
}
BENCHMARK(BM_Pdf417Encode)->Unit(benchmark::kMicrosecond);

}  // namespace

#ifdef BARCODE_ORV_HAVE_ZINT
#include <zint.h>

namespace {

// Zint's encoder on the same data and columns.
void BM_ZintPdf417Encode(benchmark::State& state) {
  const std::string text = Payload();
  for (auto _ : state) {
    zint_symbol* symbol = ZBarcode_Create();
    symbol->symbology = BARCODE_PDF417;
    symbol->option_2 = 10;
    symbol->input_mode = DATA_MODE;
    ZBarcode_Encode(symbol, reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    benchmark::DoNotOptimize(symbol->rows);
    ZBarcode_Delete(symbol);
  }
}
BENCHMARK(BM_ZintPdf417Encode)->Unit(benchmark::kMicrosecond);

}  // namespace
#endif
