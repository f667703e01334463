// The Data Matrix encoder alone on 23 characters and on a 144 x 144 payload, Zint's
// encoder beside it where it is installed (drawing is timed in bench_draw).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "twod/datamatrix_encoder.h"

namespace {

const std::string kText = "Lot 4711/0815 2026-1122";  // 23 characters

std::string LongText() {
  std::string text;
  while (text.size() < 2000) text += "DATA MATRIX 0123456789 abc ";
  text.resize(2000);
  return text;
}

void EncodeOurs(benchmark::State& state, const std::string& text) {
  const std::vector<uint8_t> data(text.begin(), text.end());
  for (auto _ : state) {
    const auto symbol = barcode_orv::internal::EncodeDataMatrix(data, barcode_orv::internal::kAutoSize,
                                                                barcode_orv::internal::Encodation::kAuto);
    benchmark::DoNotOptimize(symbol.size_index);
  }
}

void BM_DataMatrixEncode23(benchmark::State& state) { EncodeOurs(state, kText); }
BENCHMARK(BM_DataMatrixEncode23)->Unit(benchmark::kMicrosecond);

void BM_DataMatrixEncode2000(benchmark::State& state) { EncodeOurs(state, LongText()); }
BENCHMARK(BM_DataMatrixEncode2000)->Unit(benchmark::kMicrosecond);

}  // namespace

#ifdef BARCODE_ORV_HAVE_ZINT
#include <zint.h>

namespace {

// Zint's encoder with its default (minimal) encodation, square sizes only.
void EncodeZint(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    zint_symbol* symbol = ZBarcode_Create();
    symbol->symbology = BARCODE_DATAMATRIX;
    symbol->option_3 = DM_SQUARE;
    symbol->input_mode = DATA_MODE;
    ZBarcode_Encode(symbol, reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    benchmark::DoNotOptimize(symbol->width);
    ZBarcode_Delete(symbol);
  }
}

void BM_ZintDataMatrixEncode23(benchmark::State& state) { EncodeZint(state, kText); }
BENCHMARK(BM_ZintDataMatrixEncode23)->Unit(benchmark::kMicrosecond);

void BM_ZintDataMatrixEncode2000(benchmark::State& state) { EncodeZint(state, LongText()); }
BENCHMARK(BM_ZintDataMatrixEncode2000)->Unit(benchmark::kMicrosecond);
}  // namespace
#endif
