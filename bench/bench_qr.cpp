// QR Code: a 45-byte URL at 300 x 300 to PNG and to SVG and 1,000 bytes at 600 x 600 to
// PNG through the C interface, and the encoder alone on a version 40 payload.
#include <benchmark/benchmark.h>

#include <string>
#include <string_view>
#include <vector>

#include "barcode_ffi.h"
#include "twod/qr_encoder.h"

namespace {

constexpr std::string_view kUrl = "https://example.com/products/item?id=12345678";
static_assert(kUrl.size() == 45, "the URL sample is 45 bytes");

std::string Payload(size_t length) {
  std::string text;
  for (size_t i = 0; i < length; ++i) text += static_cast<char>('!' + i % 90);
  return text;
}

void DrawPng(benchmark::State& state, const std::string& text, int size) {
  BarcodeHandle* handle = barcode_create(BARCODE_QR);
  for (auto _ : state) {
    barcode_draw_2d(handle, text.c_str(), size);
    uint32_t bytes = 0;
    benchmark::DoNotOptimize(barcode_get_image_data(handle, &bytes));
  }
  barcode_destroy(handle);
}

void BM_QrUrlPng300(benchmark::State& state) { DrawPng(state, std::string(kUrl), 300); }
BENCHMARK(BM_QrUrlPng300);

void BM_QrUrlSvg300(benchmark::State& state) {
  BarcodeHandle* handle = barcode_create(BARCODE_QR);
  barcode_set_output_format(handle, "svg");
  const std::string text(kUrl);
  for (auto _ : state) {
    barcode_draw_2d(handle, text.c_str(), 300);
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}
BENCHMARK(BM_QrUrlSvg300);

void BM_Qr1000BytesPng600(benchmark::State& state) { DrawPng(state, Payload(1000), 600); }
BENCHMARK(BM_Qr1000BytesPng600);

// Encoding alone: 2,331 bytes fill version 40 at level M.
void BM_QrEncodeVersion40(benchmark::State& state) {
  const std::string text = Payload(2331);
  const std::vector<uint8_t> data(text.begin(), text.end());
  for (auto _ : state) {
    barcode_orv::qr_internal::QRJam jam;
    jam.SetErrorCorrectionIndex(barcode_orv::qr_internal::kLevelM);
    jam.qrcode_write_barcode(data);
    benchmark::DoNotOptimize(jam.matrix().side());
  }
}
BENCHMARK(BM_QrEncodeVersion40)->Unit(benchmark::kMicrosecond);

}  // namespace
