// The QR Code encoder alone on a version 40 payload (drawing is timed in bench_draw).
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "twod/qr_encoder.h"

namespace {

std::string Payload(size_t length) {
  std::string text;
  for (size_t i = 0; i < length; ++i) text += static_cast<char>('!' + i % 90);
  return text;
}

// Encoding alone: 2,331 bytes fill version 40 at level M.
void BM_QrEncodeVersion40(benchmark::State& state) {
  const std::string text = Payload(2331);
  const std::vector<uint8_t> data(text.begin(), text.end());
  for (auto _ : state) {
    barcode_orv::qr_internal::QRJam jam;
    jam.SetErrorCorrectionIndex(barcode_orv::qr_internal::kLevelM);
    jam.qrcode_write_barcode(data);
    benchmark::DoNotOptimize(jam.matrix().cols());
  }
}
BENCHMARK(BM_QrEncodeVersion40)->Unit(benchmark::kMicrosecond);

}  // namespace
