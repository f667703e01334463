// barcode-orv: draws one symbol through the library's C interface and writes the PNG,
// the SVG document or the data URI to a file or to standard output.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "barcode_ffi.h"

namespace {

struct SymbologyName {
  int type;
  const char* name;
  const char* description;
};

constexpr SymbologyName kSymbologies[] = {
    {0, "code39", "Code 39"},
    {1, "code93", "Code 93"},
    {2, "code128", "Code 128"},
    {3, "gs1-128", "GS1-128"},
    {4, "nw7", "NW-7 (Codabar)"},
    {5, "matrix2of5", "Matrix 2 of 5"},
    {6, "nec2of5", "NEC 2 of 5"},
    {7, "jan8", "JAN-8 (EAN-8)"},
    {8, "jan13", "JAN-13 (EAN-13)"},
    {9, "upca", "UPC-A"},
    {10, "upce", "UPC-E"},
    {11, "itf", "Interleaved 2 of 5"},
    {12, "databar14", "GS1 DataBar (omnidirectional family)"},
    {13, "databar-limited", "GS1 DataBar Limited"},
    {14, "databar-expanded", "GS1 DataBar Expanded"},
    {15, "yubin", "Japan Post customer barcode"},
    {16, "qr", "QR Code"},
    {17, "datamatrix", "Data Matrix"},
    {18, "pdf417", "PDF417"},
};

constexpr const char* kUsage = R"(Usage: barcode-orv [options] SYMBOLOGY TEXT

Draws TEXT as a barcode. SYMBOLOGY is a type number (0-18) or a name; see --list.

Output:
  -o, --output FILE        write to FILE instead of standard output
  -f, --format FORMAT      png (default), jpg, jpeg (PNG bytes, JPEG-labelled data URI)
                           or svg; any other word is passed to the library as it is
      --data-uri           write the base64 data URI instead of the PNG bytes
  -W, --width N            box width in pixels (default 300)
  -H, --height N           box height in pixels (default 100; 2D symbols: the width)
      --draw KIND          entry point: 1d, 2d, 2d-rect, yubin, yubin-width,
                           convenience or stacked (default: chosen by symbology)
      --size N             side for the square entry points 2d and yubin (default: width)

Options for every symbology:
      --fg R,G,B[,A]       foreground colour (default 0,0,0,255)
      --bg R,G,B[,A]       background colour (default 255,255,255,255)
      --px-adjust-black N  pixels added to every bar
      --px-adjust-white N  pixels added to every space
      --fit-width          fractional module width that fills the box

Linear symbologies:
      --no-text            no human-readable line (same as --show-text 0)
      --show-text 0|1
      --text-font-scale F  text height factor (default 1.0)
      --text-gap F         bar-to-text gap factor (default 1.0)
      --text-even-spacing 0|1
      --show-start-stop 0|1   Code 39 and NW-7
      --extended-guard 0|1    JAN-8, JAN-13, UPC-A, UPC-E
      --code-mode MODE        Code 128: A, B, C or AUTO

Two-dimensional symbologies:
      --string-encoding ENC   utf-8 (default) or shift-jis
      --version N             QR version 1-40 (0 = smallest that fits)
      --error-correction L    QR level L, M, Q or H
      --encode-mode MODE      QR mode NUMERIC, ALPHANUMERIC, BYTE, KANJI or AUTO
      --code-size SIZE        Data Matrix size, e.g. 24x24, or AUTO
      --encode-scheme S       Data Matrix scheme ASCII, C40, TEXT, X12, EDIFACT, BASE256, AUTO
      --error-level N         PDF417 error-correction level
      --columns N             PDF417 columns
      --rows N                PDF417 rows
      --aspect-ratio F        PDF417 aspect ratio
      --y-height N            PDF417 row height

GS1 DataBar:
      --symbol-type-14 NAME   OMNIDIRECTIONAL, STACKED or STACKED_OMNIDIRECTIONAL
      --symbol-type-exp NAME  UNSTACKED or STACKED
      --no-of-columns N       segment columns of stacked DataBar Expanded

Information:
      --list               list the symbologies and whether this build provides them
  -h, --help               show this text

A draw that fails exits with status 1 after the library's message on standard error.
)";

// Raised for a command line that cannot be carried out; exit status 2.
struct UsageError {
  std::string message;
};

int ParseInt(const std::string& option, const std::string& value) {
  char* end = nullptr;
  const long parsed = std::strtol(value.c_str(), &end, 10);
  if (value.empty() || *end != '\0' || parsed < INT32_MIN || parsed > INT32_MAX) {
    throw UsageError{option + " needs a whole number, not '" + value + "'"};
  }
  return static_cast<int>(parsed);
}

double ParseDouble(const std::string& option, const std::string& value) {
  char* end = nullptr;
  const double parsed = std::strtod(value.c_str(), &end);
  if (value.empty() || *end != '\0') throw UsageError{option + " needs a number, not '" + value + "'"};
  return parsed;
}

std::vector<int> ParseColor(const std::string& option, const std::string& value) {
  std::vector<int> parts;
  std::stringstream stream(value);
  std::string part;
  while (std::getline(stream, part, ',')) parts.push_back(ParseInt(option, part));
  if (parts.size() == 3) parts.push_back(255);
  if (parts.size() != 4) throw UsageError{option + " needs R,G,B or R,G,B,A"};
  return parts;
}

int ParseSymbology(const std::string& value) {
  for (const SymbologyName& entry : kSymbologies) {
    if (value == entry.name || value == std::to_string(entry.type)) return entry.type;
  }
  throw UsageError{"unknown symbology '" + value + "' (see --list)"};
}

struct Request {
  int type = -1;
  std::string text;
  std::string format = "png";
  bool data_uri = false;
  std::string output;
  int width = 300;
  std::optional<int> height;
  std::optional<int> size;
  std::string draw;
  // Setters to run on the handle, in command-line order.
  std::vector<std::function<void(BarcodeHandle*)>> options;
};

void PrintList() {
  std::cout << "type  name              provided  symbology\n";
  for (const SymbologyName& entry : kSymbologies) {
    BarcodeHandle* handle = barcode_create(entry.type);
    char line[128];
    std::snprintf(line, sizeof line, "%4d  %-16s  %-8s  %s\n", entry.type, entry.name, handle ? "yes" : "no",
                  entry.description);
    std::cout << line;
    barcode_destroy(handle);
  }
}

// Options that take a value and turn into one setter call.
using ValueOption = std::function<void(Request&, const std::string& option, const std::string& value)>;

template <typename Setter>
ValueOption IntSetter(Setter setter) {
  return [setter](Request& request, const std::string& option, const std::string& value) {
    const int number = ParseInt(option, value);
    request.options.emplace_back([setter, number](BarcodeHandle* handle) { setter(handle, number); });
  };
}

template <typename Setter>
ValueOption DoubleSetter(Setter setter) {
  return [setter](Request& request, const std::string& option, const std::string& value) {
    const double number = ParseDouble(option, value);
    request.options.emplace_back([setter, number](BarcodeHandle* handle) { setter(handle, number); });
  };
}

template <typename Setter>
ValueOption TextSetter(Setter setter) {
  return [setter](Request& request, const std::string&, const std::string& value) {
    request.options.emplace_back([setter, value](BarcodeHandle* handle) { setter(handle, value.c_str()); });
  };
}

template <typename Setter>
ValueOption ColorSetter(Setter setter) {
  return [setter](Request& request, const std::string& option, const std::string& value) {
    const std::vector<int> c = ParseColor(option, value);
    request.options.emplace_back([setter, c](BarcodeHandle* handle) { setter(handle, c[0], c[1], c[2], c[3]); });
  };
}

const std::map<std::string, ValueOption>& ValueOptions() {
  static const std::map<std::string, ValueOption> options = {
      {"--output", [](Request& r, const std::string&, const std::string& v) { r.output = v; }},
      {"--format", [](Request& r, const std::string&, const std::string& v) { r.format = v; }},
      {"--width", [](Request& r, const std::string& o, const std::string& v) { r.width = ParseInt(o, v); }},
      {"--height", [](Request& r, const std::string& o, const std::string& v) { r.height = ParseInt(o, v); }},
      {"--size", [](Request& r, const std::string& o, const std::string& v) { r.size = ParseInt(o, v); }},
      {"--draw", [](Request& r, const std::string&, const std::string& v) { r.draw = v; }},
      {"--fg", ColorSetter(barcode_set_foreground_color)},
      {"--bg", ColorSetter(barcode_set_background_color)},
      {"--px-adjust-black", IntSetter(barcode_set_px_adjust_black)},
      {"--px-adjust-white", IntSetter(barcode_set_px_adjust_white)},
      {"--show-text", IntSetter(barcode_set_show_text)},
      {"--text-font-scale", DoubleSetter(barcode_set_text_font_scale)},
      {"--text-gap", DoubleSetter(barcode_set_text_gap)},
      {"--text-even-spacing", IntSetter(barcode_set_text_even_spacing)},
      {"--show-start-stop", IntSetter(barcode_set_show_start_stop)},
      {"--extended-guard", IntSetter(barcode_set_extended_guard)},
      {"--code-mode", TextSetter(barcode_set_code_mode)},
      {"--string-encoding", TextSetter(barcode_set_string_encoding)},
      {"--version", IntSetter(barcode_set_version)},
      {"--error-correction", TextSetter(barcode_set_error_correction_level)},
      {"--encode-mode", TextSetter(barcode_set_encode_mode)},
      {"--code-size", TextSetter(barcode_set_code_size)},
      {"--encode-scheme", TextSetter(barcode_set_encode_scheme)},
      {"--error-level", IntSetter(barcode_set_error_level)},
      {"--columns", IntSetter(barcode_set_columns)},
      {"--rows", IntSetter(barcode_set_rows)},
      {"--aspect-ratio", DoubleSetter(barcode_set_aspect_ratio)},
      {"--y-height", IntSetter(barcode_set_y_height)},
      {"--symbol-type-14", TextSetter(barcode_set_symbol_type_14)},
      {"--symbol-type-exp", TextSetter(barcode_set_symbol_type_exp)},
      {"--no-of-columns", IntSetter(barcode_set_no_of_columns)},
  };
  return options;
}

const std::map<std::string, std::string>& ShortOptions() {
  static const std::map<std::string, std::string> aliases = {
      {"-o", "--output"}, {"-f", "--format"}, {"-W", "--width"}, {"-H", "--height"}};
  return aliases;
}

// Returns nullopt when the command line only asked for information.
std::optional<Request> ParseArguments(int argc, char** argv) {
  Request request;
  std::vector<std::string> positional;
  bool options_done = false;
  for (int i = 1; i < argc; ++i) {
    std::string arg = argv[i];
    if (options_done || arg.empty() || arg[0] != '-' || arg == "-") {
      positional.push_back(arg);
      continue;
    }
    if (arg == "--") {
      options_done = true;
      continue;
    }
    if (arg == "-h" || arg == "--help") {
      std::cout << kUsage;
      return std::nullopt;
    }
    if (arg == "--list") {
      PrintList();
      return std::nullopt;
    }
    if (arg == "--data-uri") {
      request.data_uri = true;
      continue;
    }
    if (arg == "--fit-width") {
      request.options.emplace_back([](BarcodeHandle* handle) { barcode_set_fit_width(handle, 1); });
      continue;
    }
    if (arg == "--no-text") {
      request.options.emplace_back([](BarcodeHandle* handle) { barcode_set_show_text(handle, 0); });
      continue;
    }
    std::string value;
    bool has_inline_value = false;
    if (const size_t equals = arg.find('='); arg.rfind("--", 0) == 0 && equals != std::string::npos) {
      value = arg.substr(equals + 1);
      arg = arg.substr(0, equals);
      has_inline_value = true;
    }
    if (const auto alias = ShortOptions().find(arg); alias != ShortOptions().end()) arg = alias->second;
    const auto option = ValueOptions().find(arg);
    if (option == ValueOptions().end()) throw UsageError{"unknown option '" + arg + "' (see --help)"};
    if (!has_inline_value) {
      if (i + 1 >= argc) throw UsageError{arg + " needs a value"};
      value = argv[++i];
    }
    option->second(request, arg, value);
  }
  if (positional.size() != 2) throw UsageError{"expected SYMBOLOGY and TEXT (see --help)"};
  request.type = ParseSymbology(positional[0]);
  request.text = positional[1];
  return request;
}

std::string DefaultDrawKind(int type) {
  if (type >= BARCODE_QR) return "2d-rect";
  if (type == BARCODE_YUBIN_CUSTOMER) return "yubin-width";
  return "1d";
}

int Draw(BarcodeHandle* handle, const Request& request) {
  const std::string kind = request.draw.empty() ? DefaultDrawKind(request.type) : request.draw;
  const bool two_d = request.type >= BARCODE_QR;
  const int height = request.height.value_or(two_d ? request.width : 100);
  const int size = request.size.value_or(request.width);
  const char* text = request.text.c_str();
  if (kind == "1d") return barcode_draw_1d(handle, text, request.width, height);
  if (kind == "2d") return barcode_draw_2d(handle, text, size);
  if (kind == "2d-rect") return barcode_draw_2d_rect(handle, text, request.width, height);
  if (kind == "yubin") return barcode_draw_yubin(handle, text, size);
  if (kind == "yubin-width") return barcode_draw_yubin_with_width(handle, text, request.width, height);
  if (kind == "convenience") return barcode_draw_convenience(handle, text, request.width, height);
  if (kind == "stacked") return barcode_draw_stacked(handle, text, request.width, height);
  throw UsageError{"unknown --draw kind '" + kind + "'"};
}

bool WriteOutput(const Request& request, const char* data, size_t size) {
  if (request.output.empty() || request.output == "-") {
    std::cout.write(data, static_cast<std::streamsize>(size));
    std::cout.flush();
    return static_cast<bool>(std::cout);
  }
  std::ofstream file(request.output, std::ios::binary);
  file.write(data, static_cast<std::streamsize>(size));
  return static_cast<bool>(file);
}

int Run(const Request& request) {
  BarcodeHandle* handle = barcode_create(request.type);
  if (handle == nullptr) {
    std::cerr << "barcode-orv: symbology " << request.type << " is not provided by this build\n";
    return 1;
  }
  std::unique_ptr<BarcodeHandle, decltype(&barcode_destroy)> owner(handle, barcode_destroy);
  barcode_set_output_format(handle, request.format.c_str());
  for (const auto& option : request.options) option(handle);
  if (Draw(handle, request) == 0) {
    std::cerr << "barcode-orv: drawing failed\n";
    return 1;
  }
  bool written = false;
  if (barcode_is_svg_output(handle) != 0) {
    const std::string svg = barcode_get_svg(handle);
    written = WriteOutput(request, svg.data(), svg.size());
  } else if (request.data_uri) {
    std::string uri = barcode_get_base64(handle);
    uri += '\n';
    written = WriteOutput(request, uri.data(), uri.size());
  } else {
    uint32_t size = 0;
    const uint8_t* png = barcode_get_image_data(handle, &size);
    if (png == nullptr) {
      std::cerr << "barcode-orv: no image was produced\n";
      return 1;
    }
    written = WriteOutput(request, reinterpret_cast<const char*>(png), size);
  }
  if (!written) {
    std::cerr << "barcode-orv: cannot write " << (request.output.empty() ? "standard output" : request.output) << "\n";
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::optional<Request> request = ParseArguments(argc, argv);
    if (!request) return 0;
    return Run(*request);
  } catch (const UsageError& error) {
    std::cerr << "barcode-orv: " << error.message << "\n";
    return 2;
  } catch (const std::exception& error) {  // the QR capacity error reaches here
    std::cerr << "barcode-orv: " << error.what() << "\n";
    return 1;
  }
}
