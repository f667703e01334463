// libFuzzer target: turns its input into a sequence of C-interface calls on any
// symbology type (create, setters, draws, getters, destroy). A crash, a sanitizer
// report or a leak is a failure; the documented QR capacity exception is not.
#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

#include "barcode_ffi.h"
#include "core/errors.h"

namespace {

// Boxes stay small enough that every draw is cheap; text stays within QR version 40.
constexpr int kMaxBox = 700;
constexpr size_t kMaxText = 400;

std::string Text(FuzzedDataProvider& in) {
  // Keywords the setters know, so the fuzzer reaches every branch quickly.
  static const char* const kKeywords[] = {
      "svg",       "SVG",
      "png",       "jpg",
      "jpeg",      "PNG",
      "A",         "B",
      "C",         "AUTO",
      "N",         "K",
      "L",         "M",
      "Q",         "H",
      "NUMERIC",   "ALPHANUMERIC",
      "BYTE",      "KANJI",
      "utf-8",     "UTF-8",
      "shift-jis", "Shift-JIS",
      "shift_jis", "OMNIDIRECTIONAL",
      "STACKED",   "STACKED_OMNIDIRECTIONAL",
      "UNSTACKED", "24x24",
      "C40",       "",
      "12345",     "10x10",
      "144x144",   "8x18",
      "16x48",     "ASCII",
      "TEXT",      "X12",
      "EDIFACT",   "BASE256",
  };
  // Shapes of the EAN/UPC, GS1-128, convenience-store, Japan Post and DataBar inputs, to mutate.
  static const char* const kShapes[] = {
      "4901234567894+12",
      "01234565 12345",
      "(01)04912345678904(10)AB\\(C(17)251231",
      "(8013)1987654Ad4X4bL5ttr2310c2K(4321)1",
      "9191234512345678901234567890123425013102500",
      "10000131-3-2-503",
      "0950110153000",
      "(01)98898765432106(3202)012345(15)991231",
  };
  if (in.ConsumeBool()) return kKeywords[in.ConsumeIntegralInRange<size_t>(0, std::size(kKeywords) - 1)];
  if (in.ConsumeIntegralInRange(0, 3) == 0) {
    std::string shape = kShapes[in.ConsumeIntegralInRange<size_t>(0, std::size(kShapes) - 1)];
    if (in.ConsumeBool()) {
      shape[in.ConsumeIntegralInRange<size_t>(0, shape.size() - 1)] = in.ConsumeIntegral<char>();
    }
    return shape;
  }
  return in.ConsumeRandomLengthString(kMaxText);
}

double Scale(FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0: return std::numeric_limits<double>::infinity();
    case 1: return std::numeric_limits<double>::quiet_NaN();
    case 2: return in.ConsumeFloatingPoint<double>();
    default: return in.ConsumeFloatingPointInRange(-4.0, 4.0);
  }
}

int Box(FuzzedDataProvider& in) { return in.ConsumeIntegralInRange(-3, kMaxBox); }

void Fetch(BarcodeHandle* handle, FuzzedDataProvider& in) {
  switch (in.ConsumeIntegralInRange(0, 2)) {
    case 0: (void)barcode_get_svg(handle); break;
    case 1: (void)barcode_get_base64(handle); break;
    default: {
      uint32_t size = 0;
      (void)barcode_get_image_data(handle, in.ConsumeBool() ? &size : nullptr);
    }
  }
}

int Draw(BarcodeHandle* handle, bool japan_post, FuzzedDataProvider& in) {
  const std::string text = Text(in);
  const char* c_text = in.ConsumeIntegralInRange(0, 30) == 0 ? nullptr : text.c_str();
  // A Japan Post canvas is 22 times as wide as its bar height (a 700 px height: 15,600 px
  // wide); heights within 160 px keep its draws as cheap as the others'.
  auto height = [&in, japan_post] { return japan_post ? std::min(Box(in), 160) : Box(in); };
  switch (in.ConsumeIntegralInRange(0, 6)) {
    case 0: {
      const int width = Box(in);
      return barcode_draw_1d(handle, c_text, width, height());
    }
    case 1: return barcode_draw_2d(handle, c_text, Box(in));
    case 2:
      // Texts of odd length go in as bytes, NUL included.
      if (text.size() % 2 == 1) {
        const auto* bytes = reinterpret_cast<const unsigned char*>(text.data());
        return barcode_draw_2d_bytes(handle, bytes, text.size(), Box(in), Box(in));
      }
      return barcode_draw_2d_rect(handle, c_text, Box(in), Box(in));
    case 3: return barcode_draw_yubin(handle, c_text, height());
    case 4: {
      const int width = Box(in);
      return barcode_draw_yubin_with_width(handle, c_text, width, height());
    }
    case 5: return barcode_draw_convenience(handle, c_text, Box(in), Box(in));
    default: return barcode_draw_stacked(handle, c_text, Box(in), Box(in));
  }
}

void SetOption(BarcodeHandle* handle, FuzzedDataProvider& in) {
  const std::string text = Text(in);
  const char* c_text = text.c_str();
  const int number = in.ConsumeIntegral<int>();
  // New calls join existing cases without consuming more input, so that saved inputs
  // (the corpus, past crash reproducers) keep replaying the same call sequence.
  switch (in.ConsumeIntegralInRange(0, 34)) {
    case 0: barcode_set_output_format(handle, c_text); break;
    case 1:
      barcode_set_foreground_color(handle, number, in.ConsumeIntegral<int>(), in.ConsumeIntegral<int>(),
                                   in.ConsumeIntegral<int>());
      break;
    case 2:
      barcode_set_background_color(handle, number, in.ConsumeIntegral<int>(), in.ConsumeIntegral<int>(),
                                   in.ConsumeIntegral<int>());
      break;
    case 3: barcode_set_px_adjust_black(handle, in.ConsumeBool() ? number : in.ConsumeIntegralInRange(-20, 20)); break;
    case 4: barcode_set_px_adjust_white(handle, in.ConsumeBool() ? number : in.ConsumeIntegralInRange(-20, 20)); break;
    case 5:
      barcode_set_fit_width(handle, number);
      barcode_set_quiet_zone(handle, number & 2);
      (void)barcode_set_rotation(handle, (number & 0x30) == 0x30 ? number : 90 * ((number >> 4) & 3));
      // Up to 25 dpi: modules of at most 4 px keep every natural box small.
      if ((number & 0x40) != 0) (void)barcode_set_xdim(handle, Scale(in), (number >> 8) % 26);
      break;
    case 6: barcode_set_show_text(handle, number); break;
    case 7: barcode_set_text_font_scale(handle, Scale(in)); break;
    case 8: barcode_set_text_gap(handle, Scale(in)); break;
    case 9: barcode_set_text_even_spacing(handle, number); break;
    case 10:
      barcode_set_show_start_stop(handle, number);
      barcode_set_standard_encoding(handle, number & 4);
      if ((number & 8) != 0) barcode_set_standard(handle, number & 16);
      break;
    case 11: barcode_set_extended_guard(handle, number); break;
    case 12: barcode_set_code_mode(handle, c_text); break;
    case 13: barcode_set_string_encoding(handle, c_text); break;
    case 14: barcode_set_version(handle, in.ConsumeBool() ? number : in.ConsumeIntegralInRange(-1, 41)); break;
    case 15: barcode_set_error_correction_level(handle, c_text); break;
    case 16: barcode_set_encode_mode(handle, c_text); break;
    case 17: barcode_set_code_size(handle, c_text); break;
    case 18: barcode_set_encode_scheme(handle, c_text); break;
    case 19: barcode_set_error_level(handle, in.ConsumeIntegralInRange(-2, 10)); break;
    case 20: barcode_set_columns(handle, in.ConsumeIntegralInRange(-2, 40)); break;
    case 21: barcode_set_rows(handle, in.ConsumeIntegralInRange(-2, 100)); break;
    case 22: barcode_set_aspect_ratio(handle, Scale(in)); break;
    case 23: barcode_set_y_height(handle, in.ConsumeIntegralInRange(-2, 20)); break;
    case 24: barcode_set_symbol_type_14(handle, c_text); break;
    case 25: (void)barcode_get_symbol_type_14(handle); break;
    case 26: (void)barcode_encode_14(handle, c_text); break;
    case 27: (void)barcode_calculate_check_digit_14(c_text); break;
    case 28: barcode_set_symbol_type_exp(handle, c_text); break;
    case 29: barcode_set_no_of_columns(handle, in.ConsumeIntegralInRange(-2, 30)); break;
    case 30:
      (void)barcode_is_svg_output(handle);
      (void)barcode_get_last_error(handle);
      (void)barcode_get_last_warning(handle);
      if ((number & 4) != 0) {
        int width = 0;
        int height = 0;
        (void)barcode_measure(handle, (number & 8) != 0 ? nullptr : c_text, &width, &height);
      }
      barcode_set_throw_on_capacity_error(handle, number % 3);
      barcode_set_quiet(1);  // process-wide; progress lines would only slow the run
      (void)barcode_type_accepts(number % 24, c_text);
      (void)barcode_type_from_name(c_text);
      (void)barcode_type_description(number);
      break;
    case 31: barcode_set_qr_mask(handle, in.ConsumeBool() ? number : in.ConsumeIntegralInRange(-2, 9)); break;
    case 32: barcode_set_eci(handle, in.ConsumeBool() ? number : in.ConsumeIntegralInRange(-2, 35)); break;
    case 33: barcode_set_gs1(handle, number); break;
    default: barcode_set_output_format(handle, in.ConsumeBool() ? "svg" : "png"); break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzedDataProvider in(data, size);
  // Every type of the registry and two numbers past each end of it.
  const int type = in.ConsumeIntegralInRange(-2, barcode_type_count() + 1);
  BarcodeHandle* handle = barcode_create(type);
  const int steps = in.ConsumeIntegralInRange(1, 16);
  for (int step = 0; step < steps && in.remaining_bytes() > 0; ++step) {
    BarcodeHandle* target = in.ConsumeIntegralInRange(0, 40) == 0 ? nullptr : handle;
    switch (in.ConsumeIntegralInRange(0, 3)) {
      case 0: try { (void)Draw(target, type == BARCODE_YUBIN_CUSTOMER, in);
        } catch (const barcode_orv::SymbolCapacityError&) {
          // The documented QR capacity error: the one exception allowed to leave a draw.
        }
        break;
      case 1: Fetch(target, in); break;
      default: SetOption(target, in); break;
    }
  }
  barcode_destroy(handle);
  return 0;
}
