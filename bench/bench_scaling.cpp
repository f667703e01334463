// How the cost of a picture grows with the symbol: Code 128 of 10 to 1,000 characters, QR
// Code versions 1 to 40, the two largest PDF417 grids and a 10,000 x 10,000 canvas, each
// drawn as a PNG through the C interface beside Zint 2.11's encode-and-PNG-file-on-tmpfs
// of the same symbol at the same module size. Counters: pixels (the picture's), modules
// (the symbol's: width x height for 2D, PDF417 rows 3 modules tall; the total module width
// for linear), per_pixel and per_module (the time over each, in seconds: 2.1n is 2.1 ns).
// A table of the medians closes the run.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "barcode_ffi.h"
#include "support/median_reporter.h"
#include "support/zint_png.h"

namespace {

using barcode_orv::bench::ZintSettings;
using barcode_orv::bench::ZintSymbol;

struct Series {
  const char* name;
  int type;
  std::string text;
  bool show_text;
  // Pixels a module: the symbol at its natural size (barcode_set_xdim at 254 dpi, where a
  // pixel is 0.1 mm, and a 0 x 0 box). 0: the symbol drawn into a `box` x `box` canvas.
  int module_px;
  int box;
  std::optional<ZintSymbol> zint_symbol;  // none: Zint cannot draw it
  ZintSettings zint = {};                 // the same symbol, modules of the same pixels
  int qr_version = 0;                     // 0: the smallest that holds the text
  int pdf417_columns = 0;                 // 0: automatic
  int pdf417_rows = 0;                    // 0: automatic
  int pdf417_level = -1;                  // -1: the level recommended for the data
};

std::string Repeat(const std::string& piece, size_t length) {
  std::string text;
  while (text.size() < length) text += piece;
  text.resize(length);
  return text;
}

std::string Code128Text(size_t length) { return Repeat("Lot 4711 ab CD ", length); }

// Byte-mode text of `length` characters: QR Code at level M holds 14, 213, 997 and 2,331
// of them in versions 1, 10, 25 and 40 (ISO/IEC 18004, Table 7), so each version is full.
std::string FillText(size_t length) { return Repeat("Lorem ipsum dolor sit amet, 0123456789; ", length); }

const std::vector<Series>& AllSeries() {
  // Zint's scale 1 is 2 px a module. Zint refuses Code 128 beyond 60 symbol characters,
  // and a PDF417 grid beyond ISO/IEC 15438's 928 codewords (30 columns x 90 rows is 2,700):
  // the largest are 30 x 30 and 10 x 90 (900 codewords), filled at error level 5.
  static const std::vector<Series> series = {
      {"Code128_10", BARCODE_CODE128, Code128Text(10), false, 2, 0, ZintSymbol::kCode128,
       ZintSettings{1.0F, 50.0F, false}},
      {"Code128_10_text", BARCODE_CODE128, Code128Text(10), true, 2, 0, std::nullopt},
      {"Code128_100", BARCODE_CODE128, Code128Text(100), false, 2, 0, std::nullopt},
      {"Code128_100_text", BARCODE_CODE128, Code128Text(100), true, 2, 0, std::nullopt},
      {"Code128_1000", BARCODE_CODE128, Code128Text(1000), false, 2, 0, std::nullopt},
      {"Code128_1000_text", BARCODE_CODE128, Code128Text(1000), true, 2, 0, std::nullopt},
      {"QR_v1", BARCODE_QR, FillText(14), false, 4, 0, ZintSymbol::kQrCode, ZintSettings{2.0F, 0.0F, false, 2, 1}, 1},
      {"QR_v10", BARCODE_QR, FillText(213), false, 4, 0, ZintSymbol::kQrCode, ZintSettings{2.0F, 0.0F, false, 2, 10},
       10},
      {"QR_v25", BARCODE_QR, FillText(997), false, 4, 0, ZintSymbol::kQrCode, ZintSettings{2.0F, 0.0F, false, 2, 25},
       25},
      {"QR_v40", BARCODE_QR, FillText(2331), false, 4, 0, ZintSymbol::kQrCode, ZintSettings{2.0F, 0.0F, false, 2, 40},
       40},
      {"PDF417_30x30", BARCODE_PDF417, FillText(1500), false, 2, 0, ZintSymbol::kPdf417,
       ZintSettings{1.0F, 0.0F, false, 5, 30, 30}, 0, 30, 30, 5},
      {"PDF417_10x90", BARCODE_PDF417, FillText(1500), false, 2, 0, ZintSymbol::kPdf417,
       ZintSettings{1.0F, 0.0F, false, 5, 10, 90}, 0, 10, 90, 5},
      // 10,000 / 177 modules: 56 px a module, a 9,912 px symbol; Zint's scale 28 the same.
      {"QR_v40_10000x10000", BARCODE_QR, FillText(2331), false, 0, 10000, ZintSymbol::kQrCode,
       ZintSettings{28.0F, 0.0F, false, 2, 40}, 40},
  };
  return series;
}

BarcodeHandle* HandleFor(const Series& series, bool with_size) {
  BarcodeHandle* handle = barcode_create(series.type);
  barcode_set_show_text(handle, series.show_text ? 1 : 0);
  if (with_size && series.module_px > 0) barcode_set_xdim(handle, series.module_px * 0.1, 254);
  barcode_set_version(handle, series.qr_version);
  barcode_set_columns(handle, series.pdf417_columns);
  barcode_set_rows(handle, series.pdf417_rows);
  barcode_set_error_level(handle, series.pdf417_level);
  return handle;
}

bool Draw(BarcodeHandle* handle, const Series& series) {
  const int side = series.module_px > 0 ? 0 : series.box;
  if (series.type >= BARCODE_QR) return barcode_draw_2d_rect(handle, series.text.c_str(), side, side) != 0;
  return barcode_draw_1d(handle, series.text.c_str(), side, side) != 0;
}

// The symbol's modules, measured at 1 px a module without its text line.
double Modules(const Series& series) {
  BarcodeHandle* handle = HandleFor(series, false);
  barcode_set_show_text(handle, 0);
  int width = 0;
  int height = 0;
  const bool measured = barcode_measure(handle, series.text.c_str(), &width, &height) != 0;
  barcode_destroy(handle);
  if (!measured) return 0;
  return series.type >= BARCODE_QR ? static_cast<double>(width) * height : width;
}

// Width x height from the PNG's IHDR chunk, which follows the 8-byte signature.
double PngPixels(const uint8_t* png, uint32_t size) {
  if (size < 24) return 0;
  auto read32 = [png](int at) {
    return static_cast<uint32_t>(png[at]) << 24 | static_cast<uint32_t>(png[at + 1]) << 16 |
           static_cast<uint32_t>(png[at + 2]) << 8 | png[at + 3];
  };
  return static_cast<double>(read32(16)) * read32(20);
}

void SetCounters(benchmark::State& state, double pixels, double modules) {
  const auto per_unit = benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert;
  state.counters["pixels"] = pixels;
  state.counters["modules"] = modules;
  state.counters["per_pixel"] = benchmark::Counter(pixels, per_unit);
  state.counters["per_module"] = benchmark::Counter(modules, per_unit);
}

void BM_Ours(benchmark::State& state, const Series& series) {
  BarcodeHandle* handle = HandleFor(series, true);
  // One draw before the clock: the handle keeps its canvas from one picture to the next,
  // and the first draw of a 10,000 x 10,000 canvas is mostly the system handing over its
  // 400 MB, several times the cost of the ones after it.
  Draw(handle, series);
  const uint8_t* png = nullptr;
  uint32_t size = 0;
  for (auto _ : state) {
    png = Draw(handle, series) ? barcode_get_image_data(handle, &size) : nullptr;
    if (png == nullptr) {
      state.SkipWithError(barcode_get_last_error(handle));
      break;
    }
    benchmark::DoNotOptimize(png);
  }
  if (png != nullptr) SetCounters(state, PngPixels(png, size), Modules(series));
  barcode_destroy(handle);
}

// The modules are ours: Zint draws the same symbol (version, columns and rows fixed; the
// same Code 128 width).
void BM_Zint(benchmark::State& state, const Series& series) {
  const std::string path = barcode_orv::bench::ZintScratchPath();
  barcode_orv::bench::ZintResult result;
  for (auto _ : state) {
    result = barcode_orv::bench::ZintPng(*series.zint_symbol, series.text, series.zint, path);
    if (!result.ok) {
      state.SkipWithError(result.error.c_str());
      break;
    }
  }
  if (result.ok) SetCounters(state, static_cast<double>(result.width) * result.height, Modules(series));
  unlink(path.c_str());
}

void RegisterSeries() {
  for (const Series& series : AllSeries()) {
    benchmark::RegisterBenchmark((std::string("Ours/") + series.name).c_str(), BM_Ours, series)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    if (series.zint_symbol && barcode_orv::bench::ZintAvailable()) {
      benchmark::RegisterBenchmark((std::string("Zint/") + series.name).c_str(), BM_Zint, series)
          ->Unit(benchmark::kMicrosecond)
          ->UseRealTime();
    }
  }
}

// Prints one line a series after the console table.
class GrowthReporter : public barcode_orv::bench::MedianReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-20s %10s %10s %9s %11s %10s %10s %10s\n", "series (medians)", "ours us", "Zint us", "ours/Zint",
                "pixels", "ns/px", "Zint ns/px", "ns/module");
    for (const Series& series : AllSeries()) {
      const Result* ours = Find("Ours/", series.name);
      if (ours == nullptr) continue;
      const Result* zint = Find("Zint/", series.name);
      std::printf("%-20s %10.1f %10s %9s %11.0f %10.3f %10s %10.2f\n", series.name, ours->microseconds,
                  zint ? Format("%.1f", zint->microseconds).c_str() : "-",
                  zint ? Format("%.2f", ours->microseconds / zint->microseconds).c_str() : "-", ours->Counter("pixels"),
                  PerUnit(ours->microseconds, ours->Counter("pixels")),
                  zint ? Format("%.3f", PerUnit(zint->microseconds, zint->Counter("pixels"))).c_str() : "-",
                  PerUnit(ours->microseconds, ours->Counter("modules")));
    }
  }

 private:
  // Nanoseconds a unit.
  static double PerUnit(double microseconds, double units) { return units > 0 ? microseconds * 1000 / units : 0; }
};

}  // namespace

int main(int argc, char** argv) {
  // Progress lines off, as a host in production would have them.
  barcode_set_quiet(1);
  RegisterSeries();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  GrowthReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
