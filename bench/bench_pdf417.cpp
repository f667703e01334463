// PDF417: 200 bytes of mixed text to PNG and to SVG through the C interface at about
// two pixels a module, and the encoder alone; Zint's encoder beside it where installed.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "twod/pdf417_encoder.h"

namespace {

// zint.h defines its own BARCODE_PDF417 macro (55); ours is taken before it is seen.
constexpr int kPdf417 = BARCODE_PDF417;

std::string Payload() {
  std::string text;
  while (text.size() < 200) text += "Invoice 2026-0042, total EUR 1234.56; ship to: 1 Main St. ";
  text.resize(200);
  return text;
}

// Ten columns: 239 modules wide; about 30 rows of 3 modules.
constexpr int kWidth = 480;
constexpr int kHeight = 200;

void BM_Pdf417Png(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(kPdf417);
  barcode_set_columns(handle, 10);
  const std::string text = Payload();
  for (auto _ : state) {
    barcode_draw_2d_rect(handle, text.c_str(), kWidth, kHeight);
    uint32_t bytes = 0;
    benchmark::DoNotOptimize(barcode_get_image_data(handle, &bytes));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Pdf417Png);

void BM_Pdf417Svg(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(kPdf417);
  barcode_set_columns(handle, 10);
  barcode_set_output_format(handle, "svg");
  const std::string text = Payload();
  for (auto _ : state) {
    barcode_draw_2d_rect(handle, text.c_str(), kWidth, kHeight);
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_Pdf417Svg);

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
