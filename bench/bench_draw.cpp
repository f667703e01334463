// Drawing through the C interface, one table of workloads for every symbology: PNG bytes,
// data URI and SVG, each beside Zint 2.11's encode-and-PNG-file-on-tmpfs where Zint has
// the symbology, and the PNG size against a compact encoding of the same pixels (palette
// at the smallest bit depth, zlib level 9, the best of every row filter). Counters: bytes,
// compact_bytes, size_ratio.
#include <benchmark/benchmark.h>
#include <png.h>
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

using DrawFunction = int (*)(BarcodeHandle*, const char*, int, int);

struct Workload {
  const char* name;
  int type;
  std::string text;
  int width;
  int height;
  bool show_text;
  std::optional<ZintSymbol> zint_symbol;  // none: Zint has no such symbology
  ZintSettings zint = {};                 // sized for about the same picture
  DrawFunction draw = barcode_draw_1d;
  bool standard = false;  // the standard profile: quiet zones and every fit checked
  double xdim_mm = 0.0;   // with 300 dpi: the natural size (the box is then 0 x 0)
  int rotation = 0;
};

std::string Repeat(const std::string& piece, size_t length) {
  std::string text;
  while (text.size() < length) text += piece;
  text.resize(length);
  return text;
}

// Zint's settings give a picture about our box's size: bars of our module width where it
// can, heights with its text line included. Zint draws a text line only from scale 1 (2 px
// a module) up, so beside our 1 px modules (Code 39 in 300 px, GS1-128 in 500 px) its bars
// are twice as wide.
const std::vector<Workload>& Workloads() {
  static const std::vector<Workload> workloads = {
      {"Code39_ABC-1234_300x100_text", BARCODE_CODE39, "ABC-1234", 300, 100, true, ZintSymbol::kCode39,
       ZintSettings{1.0F, 42.0F, true}},
      {"Code128_auto_20_520x100_text", BARCODE_CODE128, Repeat("Lot 4711-0815 ab\tCD 20240131 xyz ", 20), 520, 100,
       true, std::nullopt},
      {"Code128_auto_200_4480x100_text", BARCODE_CODE128, Repeat("Lot 4711-0815 ab\tCD 20240131 xyz ", 200), 4480, 100,
       true, std::nullopt},
      {"Code128_ABC123_300x100", BARCODE_CODE128, "ABC123", 300, 100, false, ZintSymbol::kCode128,
       ZintSettings{1.0F, 50.0F, false}},
      {"Code128_ABC123_300x100_text", BARCODE_CODE128, "ABC123", 300, 100, true, ZintSymbol::kCode128,
       ZintSettings{1.0F, 50.0F, true}},
      {"Code128_ABC123_300x100_text_standard", BARCODE_CODE128, "ABC123", 300, 100, true, ZintSymbol::kCode128,
       ZintSettings{1.0F, 50.0F, true}, barcode_draw_1d, true},
      {"JAN13_300x100", BARCODE_JAN13, "4901234567894", 300, 100, false, ZintSymbol::kEan13,
       ZintSettings{1.0F, 50.0F, false}},
      {"JAN13_300x100_text", BARCODE_JAN13, "4901234567894", 300, 100, true, ZintSymbol::kEan13,
       ZintSettings{1.0F, 50.0F, true}},
      {"JAN13_0.33mm_300dpi_text_standard", BARCODE_JAN13, "4901234567894", 0, 0, true, ZintSymbol::kEan13,
       ZintSettings{2.0F, 69.24F, true}, barcode_draw_1d, true, 0.33},
      {"Code128_ABC123_300x100_text_turned90",
       BARCODE_CODE128,
       "ABC123",
       300,
       100,
       true,
       std::nullopt,
       {},
       barcode_draw_1d,
       false,
       0.0,
       90},
      {"JAN13_addon5_400x100_text", BARCODE_JAN13, "4901234567894+12345", 400, 100, true, ZintSymbol::kEan13,
       ZintSettings{1.0F, 42.0F, true}},
      {"JAN8_200x100_text", BARCODE_JAN8, "4912345", 200, 100, true, ZintSymbol::kEan8,
       ZintSettings{1.0F, 42.0F, true}},
      {"UPCA_300x100_text", BARCODE_UPCA, "036000291452", 300, 100, true, ZintSymbol::kUpcA,
       ZintSettings{1.0F, 42.0F, true}},
      {"UPCE_200x100_text", BARCODE_UPCE, "01234565", 200, 100, true, ZintSymbol::kUpcE,
       ZintSettings{1.5F, 25.4F, true}},
      {"GS1-128_3AI_500x100_text", BARCODE_GS1_128, "(01)04912345678904(10)ABC123(17)251231", 500, 100, true,
       ZintSymbol::kGs1_128, ZintSettings{1.0F, 42.0F, true}},
      {"GS1-128_convenience_600x240",
       BARCODE_GS1_128,
       "9191234512345678901234567890123425013102500",
       600,
       240,
       true,
       std::nullopt,
       {},
       barcode_draw_convenience},
      {"Yubin_h30",
       BARCODE_YUBIN_CUSTOMER,
       "10000131-3-2-503",
       0,
       30,
       false,
       std::nullopt,
       {},
       barcode_draw_yubin_with_width},
      {"DataMatrix_23_200x200", BARCODE_DATAMATRIX, "Data Matrix 23 chars!!!", 200, 200, false, ZintSymbol::kDataMatrix,
       ZintSettings{5.0F, 0.0F, false}},
      {"PDF417_200B_376x114", BARCODE_PDF417, Repeat("PDF417 benchmark payload; 0123456789 ", 200), 376, 114, false,
       ZintSymbol::kPdf417, ZintSettings{1.0F, 0.0F, false}},
      // Ours: 8 columns at 2 px a module, its 17 rows stretched to 357 px; Zint the same.
      {"PDF417_200B_600x400", BARCODE_PDF417, Repeat("PDF417 benchmark payload; 0123456789 ", 200), 600, 400, false,
       ZintSymbol::kPdf417, ZintSettings{1.0F, 178.5F, false, -1, 8}},
      {"DataBar14_300x100", BARCODE_GS1_DATABAR_14, "0950110153000", 300, 100, false, ZintSymbol::kDataBarOmni,
       ZintSettings{1.5F, 33.0F, false}},
      {"DataBar14_300x100_text", BARCODE_GS1_DATABAR_14, "0950110153000", 300, 100, true, ZintSymbol::kDataBarOmni,
       ZintSettings{1.5F, 25.4F, true}},
      {"DataBarExpanded_4AI_600x100", BARCODE_GS1_DATABAR_EXPANDED,
       "(01)98898765432106(3202)012345(15)991231(10)ABC123", 600, 100, false, ZintSymbol::kDataBarExpanded,
       ZintSettings{1.0F, 50.0F, false}},
      {"QR_45B_300x300", BARCODE_QR, "https://example.com/products/item?id=1234567890", 300, 300, false,
       ZintSymbol::kQrCode, ZintSettings{5.0F, 0.0F, false, 2}},
      {"QR_45B_0.5mm_300dpi_standard", BARCODE_QR, "https://example.com/products/item?id=1234567890", 0, 0, false,
       ZintSymbol::kQrCode, ZintSettings{3.0F, 0.0F, false, 2}, barcode_draw_2d_rect, true, 0.5},
      {"QR_1000B_600x600", BARCODE_QR, Repeat("Lorem ipsum dolor sit amet, 0123456789; ", 1000), 600, 600, false,
       ZintSymbol::kQrCode, ZintSettings{3.0F, 0.0F, false, 2}},
  };
  return workloads;
}

BarcodeHandle* HandleFor(const Workload& work) {
  BarcodeHandle* handle = barcode_create(work.type);
  barcode_set_show_text(handle, work.show_text ? 1 : 0);
  barcode_set_standard(handle, work.standard ? 1 : 0);
  if (work.xdim_mm > 0.0) barcode_set_xdim(handle, work.xdim_mm, 300);
  barcode_set_rotation(handle, work.rotation);
  return handle;
}

bool Draw(BarcodeHandle* handle, const Workload& work) {
  return work.draw(handle, work.text.c_str(), work.width, work.height) != 0;
}

// ---- The compact reference encoding ----

std::vector<uint8_t> DecodeRgba(const std::vector<uint8_t>& file, png_image* image) {
  *image = png_image{};
  image->version = PNG_IMAGE_VERSION;
  if (png_image_begin_read_from_memory(image, file.data(), file.size()) == 0) return {};
  image->format = PNG_FORMAT_RGBA;
  std::vector<uint8_t> pixels(PNG_IMAGE_SIZE(*image));
  if (png_image_finish_read(image, nullptr, pixels.data(), 0, nullptr) == 0) return {};
  return pixels;
}

void AppendBytes(png_structp png, png_bytep data, size_t length) {
  auto* out = static_cast<std::vector<uint8_t>*>(png_get_io_ptr(png));
  out->insert(out->end(), data, data + length);
}
void NoFlush(png_structp /*png*/) {}

struct ReferenceImage {
  int width;
  int height;
  int depth;
  int filter;
  const png_color* palette;
  int colours;
  const png_byte* alpha;  // null when every colour is opaque
  const uint8_t* packed;
  size_t row_bytes;
};

// Only trivially destructible locals: libpng's errors longjmp back here.
bool WriteReference(png_structp png, png_infop info, const ReferenceImage& image, std::vector<uint8_t>* out) {
  if (setjmp(png_jmpbuf(png)) != 0) return false;
  png_set_write_fn(png, out, AppendBytes, NoFlush);
  png_set_IHDR(png, info, image.width, image.height, image.depth, PNG_COLOR_TYPE_PALETTE, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_set_PLTE(png, info, image.palette, image.colours);
  if (image.alpha != nullptr) png_set_tRNS(png, info, image.alpha, image.colours, nullptr);
  png_set_compression_level(png, 9);
  png_set_filter(png, PNG_FILTER_TYPE_BASE, image.filter);
  png_write_info(png, info);
  for (int y = 0; y < image.height; ++y) {
    png_write_row(png, image.packed + static_cast<size_t>(y) * image.row_bytes);
  }
  png_write_end(png, nullptr);
  return true;
}

// Palette PNG of the pixels at the smallest bit depth with one filter choice, level 9.
size_t PaletteSize(const std::vector<uint8_t>& rgba, int width, int height, int filter) {
  std::vector<uint32_t> colours;
  std::vector<uint8_t> indices(rgba.size() / 4);
  for (size_t i = 0; i < indices.size(); ++i) {
    uint32_t pixel = 0;
    for (int c = 0; c < 4; ++c) pixel = (pixel << 8) | rgba[i * 4 + c];
    size_t k = 0;
    while (k < colours.size() && colours[k] != pixel) ++k;
    if (k == colours.size()) colours.push_back(pixel);
    if (colours.size() > 256) return 0;
    indices[i] = static_cast<uint8_t>(k);
  }
  const int depth = colours.size() <= 2 ? 1 : colours.size() <= 4 ? 2 : colours.size() <= 16 ? 4 : 8;
  std::vector<png_color> palette;
  std::vector<png_byte> alpha;
  for (uint32_t colour : colours) {
    palette.push_back(png_color{static_cast<png_byte>(colour >> 24), static_cast<png_byte>(colour >> 16),
                                static_cast<png_byte>(colour >> 8)});
    alpha.push_back(static_cast<png_byte>(colour));
  }
  const int per_byte = 8 / depth;
  const size_t row_bytes = (static_cast<size_t>(width) + per_byte - 1) / per_byte;
  std::vector<uint8_t> packed(row_bytes * static_cast<size_t>(height), 0);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const size_t at = static_cast<size_t>(y) * row_bytes + static_cast<size_t>(x / per_byte);
      const int shift = 8 - depth * (x % per_byte + 1);
      packed[at] = static_cast<uint8_t>(packed[at] | (indices[static_cast<size_t>(y) * width + x] << shift));
    }
  }
  std::vector<uint8_t> out;
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  bool translucent = false;
  for (png_byte a : alpha) translucent = translucent || a < 255;
  const ReferenceImage image{width,
                             height,
                             depth,
                             filter,
                             palette.data(),
                             static_cast<int>(palette.size()),
                             translucent ? alpha.data() : nullptr,
                             packed.data(),
                             row_bytes};
  const bool written = WriteReference(png, info, image, &out);
  png_destroy_write_struct(&png, &info);
  return written ? out.size() : 0;
}

size_t CompactSize(const std::vector<uint8_t>& file) {
  png_image image;
  const std::vector<uint8_t> rgba = DecodeRgba(file, &image);
  if (rgba.empty()) return 0;
  size_t best = 0;
  for (int filter :
       {PNG_FILTER_NONE, PNG_FILTER_SUB, PNG_FILTER_UP, PNG_FILTER_AVG, PNG_FILTER_PAETH, PNG_ALL_FILTERS}) {
    const size_t size = PaletteSize(rgba, static_cast<int>(image.width), static_cast<int>(image.height), filter);
    if (size != 0 && (best == 0 || size < best)) best = size;
  }
  return best;
}

// ---- Benchmarks ----

void BM_OursPng(benchmark::State& state, const Workload& work) {
  BarcodeHandle* handle = HandleFor(work);
  std::vector<uint8_t> last;
  for (auto _ : state) {
    uint32_t size = 0;
    const uint8_t* png = Draw(handle, work) ? barcode_get_image_data(handle, &size) : nullptr;
    if (png == nullptr) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(png);
    if (last.empty()) last.assign(png, png + size);
  }
  const size_t compact = CompactSize(last);
  state.counters["bytes"] = static_cast<double>(last.size());
  state.counters["compact_bytes"] = static_cast<double>(compact);
  state.counters["size_ratio"] = compact == 0 ? 0.0 : static_cast<double>(last.size()) / static_cast<double>(compact);
  barcode_destroy(handle);
}

void BM_OursDataUri(benchmark::State& state, const Workload& work) {
  BarcodeHandle* handle = HandleFor(work);
  for (auto _ : state) {
    if (!Draw(handle, work)) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(barcode_get_base64(handle));
  }
  barcode_destroy(handle);
}

void BM_OursSvg(benchmark::State& state, const Workload& work) {
  BarcodeHandle* handle = HandleFor(work);
  barcode_set_output_format(handle, "svg");
  for (auto _ : state) {
    if (!Draw(handle, work)) {
      state.SkipWithError("draw failed");
      break;
    }
    benchmark::DoNotOptimize(barcode_get_svg(handle));
  }
  barcode_destroy(handle);
}

void BM_ZintPng(benchmark::State& state, const Workload& work) {
  const std::string path = barcode_orv::bench::ZintScratchPath();
  barcode_orv::bench::ZintResult result;
  for (auto _ : state) {
    result = barcode_orv::bench::ZintPng(*work.zint_symbol, work.text, work.zint, path);
    if (!result.ok) {
      state.SkipWithError(result.error.c_str());
      break;
    }
  }
  state.counters["width"] = result.width;
  state.counters["height"] = result.height;
  unlink(path.c_str());
}

void RegisterWorkloads() {
  for (const Workload& work : Workloads()) {
    benchmark::RegisterBenchmark((std::string("Ours_PNG/") + work.name).c_str(), BM_OursPng, work);
    benchmark::RegisterBenchmark((std::string("Ours_DataURI/") + work.name).c_str(), BM_OursDataUri, work);
    benchmark::RegisterBenchmark((std::string("Ours_SVG/") + work.name).c_str(), BM_OursSvg, work);
    if (work.zint_symbol && barcode_orv::bench::ZintAvailable()) {
      benchmark::RegisterBenchmark((std::string("Zint_PNG/") + work.name).c_str(), BM_ZintPng, work);
    }
  }
}

// ---- The ratios the raster targets are stated in, printed after the table ----

// Prints one line a workload after the console table: PNG against Zint, data URI
// against PNG, PNG bytes against the compact encoding.
class RatioReporter : public barcode_orv::bench::MedianReporter {
 public:
  void Finalize() override {
    ConsoleReporter::Finalize();
    std::printf("\n%-32s %9s %9s %9s %8s %8s %9s\n", "workload (us, medians)", "PNG", "Zint PNG", "PNG/Zint", "URI/PNG",
                "SVG", "size/cmp");
    for (const Workload& work : Workloads()) {
      const Result* png = Find("Ours_PNG/", work.name);
      if (png == nullptr) continue;
      const Result* zint = Find("Zint_PNG/", work.name);
      const Result* uri = Find("Ours_DataURI/", work.name);
      const Result* svg = Find("Ours_SVG/", work.name);
      std::printf("%-32s %9.1f %9s %9s %8s %8s %9.2f\n", work.name, png->microseconds,
                  zint ? Format("%.1f", zint->microseconds).c_str() : "-",
                  zint ? Format("%.2f", png->microseconds / zint->microseconds).c_str() : "-",
                  uri ? Format("%.2f", uri->microseconds / png->microseconds).c_str() : "-",
                  svg ? Format("%.1f", svg->microseconds).c_str() : "-", png->Counter("size_ratio"));
    }
  }
};

}  // namespace

int main(int argc, char** argv) {
  // Progress lines off, as a host in production would have them; they are the library's
  // default and would otherwise go to this table's standard output.
  barcode_set_quiet(1);
  RegisterWorkloads();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  benchmark::Shutdown();
  return 0;
}
