// barcode-orv: draws one symbol through the library's C interface and writes the PNG,
// the SVG document or the data URI to a file or to standard output. Standard output
// carries nothing but that output.
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>

#include "barcode_ffi.h"

#ifndef BARCODE_ORV_VERSION
#define BARCODE_ORV_VERSION "unknown"
#endif

namespace {

bool Provided(int type) {
  BarcodeHandle* handle = barcode_create(type);
  barcode_destroy(handle);
  return handle != nullptr;
}

// The types `function` serves, each as `label` gives it, in a list "a, b or c" that ends
// with `last`.
std::string TypesServedBy(const char* function, const char* (*label)(int), const char* last) {
  std::vector<std::string> labels;
  for (int type = 0; type < barcode_type_count(); ++type) {
    if (barcode_type_accepts(type, function) != 0) labels.emplace_back(label(type));
  }
  std::string list;
  for (size_t i = 0; i < labels.size(); ++i) {
    list += (i == 0 ? "" : i + 1 == labels.size() ? last : ", ") + labels[i];
  }
  return list;
}

// Raised for a command line that cannot be carried out; exit status 2.
struct UsageError {
  std::string message;
};

// ---- Values ----

long long ParseWhole(const std::string& option, const std::string& value) {
  char* end = nullptr;
  errno = 0;
  const long long parsed = std::strtoll(value.c_str(), &end, 10);
  if (value.empty() || *end != '\0' || errno != 0) {
    throw UsageError{option + " needs a whole number, not '" + value + "'"};
  }
  return parsed;
}

int ParseInt(const std::string& option, const std::string& value, long long low, long long high) {
  const long long parsed = ParseWhole(option, value);
  if (parsed < low || parsed > high) {
    throw UsageError{option + " must be " + std::to_string(low) + " to " + std::to_string(high) + ", not " + value};
  }
  return static_cast<int>(parsed);
}

double ParseDouble(const std::string& option, const std::string& value) {
  char* end = nullptr;
  const double parsed = std::strtod(value.c_str(), &end);
  if (value.empty() || *end != '\0' || !std::isfinite(parsed)) {
    throw UsageError{option + " needs a finite number, not '" + value + "'"};
  }
  return parsed;
}

std::vector<int> ParseColor(const std::string& option, const std::string& value) {
  std::vector<int> parts;
  std::stringstream stream(value);
  std::string part;
  while (std::getline(stream, part, ',')) parts.push_back(ParseInt(option, part, 0, 255));
  if (parts.size() == 3) parts.push_back(255);
  if (parts.size() != 4) throw UsageError{option + " needs R,G,B or R,G,B,A (each 0 to 255)"};
  return parts;
}

int ParseSymbology(const std::string& value) {
  const int named = barcode_type_from_name(value.c_str());
  if (named >= 0) return named;
  for (int type = 0; type < barcode_type_count(); ++type) {
    if (value == std::to_string(type)) return type;
  }
  throw UsageError{"unknown symbology '" + value + "' (see --list)"};
}

// ---- The request ----

constexpr int kMaxBox = 1 << 24;  // the library's largest canvas side

struct Request {
  int type = -1;
  std::string text;
  std::optional<std::string> format;
  bool data_uri = false;
  bool verbose = false;
  bool compat = false;  // the library's compatibility defaults instead of the standard profile
  bool binary = false;  // standard input drawn as raw bytes (2D symbologies)
  std::string output;
  int width = 300;
  bool width_given = false;
  std::optional<int> height;
  std::optional<double> xdim;  // millimetres; the box is then the symbol's natural size
  int dpi = 300;
  std::optional<int> size;
  std::string draw;
  // Setters to run on the handle, in command-line order.
  std::vector<std::function<void(BarcodeHandle*)>> options;
};

using Handler = std::function<void(Request&, const std::string& option, const std::string& value)>;

// One command-line option: its spelling, its help line, the C function whose types it
// serves (null: every type).
struct OptionSpec {
  const char* name;
  const char* argument;  // null for a flag
  const char* help;
  const char* function;
  Handler handle;
};

Handler Flag(std::function<void(Request&)> apply) {
  return [apply](Request& request, const std::string&, const std::string&) { apply(request); };
}

template <typename Setter>
Handler IntSetter(Setter setter, long long low, long long high) {
  return [setter, low, high](Request& request, const std::string& option, const std::string& value) {
    const int number = ParseInt(option, value, low, high);
    request.options.emplace_back([setter, number](BarcodeHandle* handle) { setter(handle, number); });
  };
}

template <typename Setter>
Handler DoubleSetter(Setter setter) {
  return [setter](Request& request, const std::string& option, const std::string& value) {
    const double number = ParseDouble(option, value);
    request.options.emplace_back([setter, number](BarcodeHandle* handle) { setter(handle, number); });
  };
}

// The value must be one of `accepted`; the library would ignore anything else.
void CheckKeyword(const std::string& option, const std::string& value, const std::vector<std::string>& accepted) {
  for (const std::string& keyword : accepted) {
    if (value == keyword) return;
  }
  std::string list;
  for (const std::string& keyword : accepted) list += (list.empty() ? "" : ", ") + keyword;
  throw UsageError{option + " must be one of " + list + ", not '" + value + "'"};
}

template <typename Setter>
Handler KeywordSetter(Setter setter, std::vector<std::string> accepted) {
  return [setter, accepted](Request& request, const std::string& option, const std::string& value) {
    CheckKeyword(option, value, accepted);
    request.options.emplace_back([setter, value](BarcodeHandle* handle) { setter(handle, value.c_str()); });
  };
}

const std::vector<std::string> kFormats = {"png", "jpg", "jpeg", "svg"};
const std::vector<std::string> kDrawKinds = {"1d", "2d", "2d-rect", "yubin", "yubin-width", "convenience", "stacked"};
const std::vector<std::string> kDataMatrixSizes = {
    "AUTO", "10x10", "12x12", "14x14", "16x16", "18x18", "20x20", "22x22", "24x24", "26x26", "32x32", "36x36", "40x40",
    "44x44", "48x48", "52x52", "64x64", "72x72", "80x80", "88x88", "96x96", "104x104", "120x120", "132x132", "144x144",
    "8x18", "8x32", "12x26", "12x36", "16x36", "16x48",
    // DMRE (ISO/IEC 21471) and the automatic choices that include rectangles
    "8x48", "8x64", "8x80", "8x96", "8x120", "8x144", "12x64", "12x88", "16x64", "20x36", "20x44", "20x64", "22x48",
    "24x48", "24x64", "26x40", "26x48", "26x64", "AUTO_RECT", "AUTO_DMRE"};

template <typename Setter>
Handler ColorSetter(Setter setter) {
  return [setter](Request& request, const std::string& option, const std::string& value) {
    const std::vector<int> c = ParseColor(option, value);
    request.options.emplace_back([setter, c](BarcodeHandle* handle) { setter(handle, c[0], c[1], c[2], c[3]); });
  };
}

Handler BoxValue(int Request::*field) {
  return [field](Request& request, const std::string& option, const std::string& value) {
    request.*field = ParseInt(option, value, 1, kMaxBox);
  };
}

Handler OptionalBoxValue(std::optional<int> Request::*field) {
  return [field](Request& request, const std::string& option, const std::string& value) {
    request.*field = ParseInt(option, value, 1, kMaxBox);
  };
}

struct Section {
  const char* title;
  std::vector<OptionSpec> options;
};

const std::vector<Section>& Sections() {
  static const std::vector<Section> sections = {
      {"Output",
       {
           {"--output", "FILE", "write to FILE (its extension .svg or .png picks the format)", nullptr,
            [](Request& r, const std::string&, const std::string& v) { r.output = v; }},
           {"--format", "FORMAT", "png (default), jpg, jpeg (PNG bytes, JPEG-labelled data URI) or svg", nullptr,
            [](Request& r, const std::string& o, const std::string& v) {
              CheckKeyword(o, v, kFormats);
              r.format = v;
            }},
           {"--data-uri", nullptr, "write the base64 data URI instead of the PNG bytes", nullptr,
            Flag([](Request& r) { r.data_uri = true; })},
           {"--width", "N", "box width in pixels (default 300; with --xdim: the natural width)", nullptr,
            [](Request& r, const std::string& o, const std::string& v) {
              BoxValue (&Request::width)(r, o, v);
              r.width_given = true;
            }},
           {"--height", "N", "box height in pixels (default 100; 2D symbols: the width)", nullptr,
            OptionalBoxValue(&Request::height)},
           {"--draw", "KIND", "entry point: 1d, 2d, 2d-rect, yubin, yubin-width, convenience, stacked", nullptr,
            [](Request& r, const std::string& o, const std::string& v) {
              CheckKeyword(o, v, kDrawKinds);
              r.draw = v;
            }},
           {"--size", "N", "side for the entry points 2d and yubin (default: the width)", nullptr,
            OptionalBoxValue(&Request::size)},
           {"--verbose", nullptr, "let the library print its progress lines (standard output; use -o)", nullptr,
            Flag([](Request& r) { r.verbose = true; })},
       }},
      {"Every symbology",
       {
           {"--quiet-zone", nullptr, "draw the quiet zones the standard asks for, symbol centred in the box", nullptr,
            Flag([](Request& r) { r.options.emplace_back([](BarcodeHandle* h) { barcode_set_quiet_zone(h, 1); }); })},
           {"--compat", nullptr, "the library's compatibility defaults, byte for byte, instead of the standard profile",
            nullptr, Flag([](Request& r) { r.compat = true; })},
           {"--standard", nullptr, "the standard profile (the default): only symbols that read back as the text",
            nullptr, Flag([](Request& r) { r.compat = false; })},
           {"--xdim", "MM", "module width in millimetres at --dpi: the picture takes the symbol's natural size",
            nullptr, [](Request& r, const std::string& o, const std::string& v) { r.xdim = ParseDouble(o, v); }},
           {"--dpi", "N", "resolution for --xdim (default 300)", nullptr,
            [](Request& r, const std::string& o, const std::string& v) { r.dpi = ParseInt(o, v, 1, 10000); }},
           {"--rotate", "DEG", "turn the picture 0, 90, 180 or 270 degrees clockwise", nullptr,
            [](Request& r, const std::string& o, const std::string& v) {
              CheckKeyword(o, v, {"0", "90", "180", "270"});
              const int degrees = std::stoi(v);
              r.options.emplace_back([degrees](BarcodeHandle* h) { barcode_set_rotation(h, degrees); });
            }},
           {"--fg", "R,G,B[,A]", "foreground colour (default 0,0,0,255)", nullptr,
            ColorSetter(barcode_set_foreground_color)},
           {"--bg", "R,G,B[,A]", "background colour (default 255,255,255,255)", nullptr,
            ColorSetter(barcode_set_background_color)},
           {"--px-adjust-black", "N", "pixels added to every bar", nullptr,
            IntSetter(barcode_set_px_adjust_black, -1000, 1000)},
           {"--px-adjust-white", "N", "pixels added to every space", nullptr,
            IntSetter(barcode_set_px_adjust_white, -1000, 1000)},
           {"--fit-width", nullptr, "fractional module width that fills the box", nullptr,
            Flag([](Request& r) { r.options.emplace_back([](BarcodeHandle* h) { barcode_set_fit_width(h, 1); }); })},
       }},
      {"Linear symbologies",
       {
           {"--no-text", nullptr, "no human-readable line (same as --show-text 0)", "barcode_set_show_text",
            Flag([](Request& r) { r.options.emplace_back([](BarcodeHandle* h) { barcode_set_show_text(h, 0); }); })},
           {"--show-text", "0|1", "human-readable line (default 1)", "barcode_set_show_text",
            IntSetter(barcode_set_show_text, 0, 1)},
           {"--text-font-scale", "F", "text height factor (default 1.0)", "barcode_set_text_font_scale",
            DoubleSetter(barcode_set_text_font_scale)},
           {"--text-gap", "F", "bar-to-text gap factor (default 1.0)", "barcode_set_text_gap",
            DoubleSetter(barcode_set_text_gap)},
           {"--text-even-spacing", "0|1", "spread the characters over the bars (default 1)",
            "barcode_set_text_even_spacing", IntSetter(barcode_set_text_even_spacing, 0, 1)},
           {"--show-start-stop", "0|1", "Code 39 and NW-7: start/stop characters in the text",
            "barcode_set_show_start_stop", IntSetter(barcode_set_show_start_stop, 0, 1)},
           {"--extended-guard", "0|1", "JAN/UPC: guard bars into the text, digits outside",
            "barcode_set_extended_guard", IntSetter(barcode_set_extended_guard, 0, 1)},
           {"--bearer", nullptr, "ITF: the ITF-14 frame of bearer bars", "barcode_set_bearer_bars",
            Flag([](Request& r) { r.options.emplace_back([](BarcodeHandle* h) { barcode_set_bearer_bars(h, 1); }); })},
           {"--code-mode", "MODE", "Code 128: A, B, C or AUTO", "barcode_set_code_mode",
            KeywordSetter(barcode_set_code_mode, {"A", "B", "C", "AUTO"})},
       }},
      {"Two-dimensional symbologies",
       {
           {"--string-encoding", "ENC", "utf-8 (default) or shift-jis", "barcode_set_string_encoding",
            KeywordSetter(barcode_set_string_encoding, {"utf-8", "UTF-8", "shift-jis", "Shift-JIS", "shift_jis"})},
           {"--binary", nullptr, "TEXT '-': standard input drawn as raw bytes, NUL included", "barcode_draw_2d_bytes",
            Flag([](Request& r) { r.binary = true; })},
           {"--eci", "N",
            "declare ECI N (3 ISO-8859-1, 20 Shift_JIS, 26 UTF-8, ...) and carry the text in its character set",
            "barcode_set_eci", IntSetter(barcode_set_eci, 0, 999999)},
           {"--gs1", nullptr, "QR Code, Data Matrix: TEXT is a GS1 element string, e.g. (01)09501101530003(17)261231",
            "barcode_set_gs1",
            Flag([](Request& r) { r.options.emplace_back([](BarcodeHandle* h) { barcode_set_gs1(h, 1); }); })},
           {"--mask", "N", "QR mask pattern 0-7 (default: chosen)", "barcode_set_qr_mask",
            IntSetter(barcode_set_qr_mask, 0, 7)},
           {"--qr-version", "N", "QR version 1-40 (0: the smallest that fits)", "barcode_set_version",
            IntSetter(barcode_set_version, 0, 40)},
           {"--error-correction", "L", "QR level L, M, Q or H", "barcode_set_error_correction_level",
            KeywordSetter(barcode_set_error_correction_level, {"L", "M", "Q", "H"})},
           {"--encode-mode", "MODE", "QR mode NUMERIC, ALPHANUMERIC, BYTE, KANJI or AUTO", "barcode_set_encode_mode",
            KeywordSetter(barcode_set_encode_mode,
                          {"NUMERIC", "N", "ALPHANUMERIC", "A", "BYTE", "B", "AUTO", "KANJI", "K"})},
           {"--code-size", "SIZE", "Data Matrix size, e.g. 24x24 or 8x48 (DMRE), or AUTO, AUTO_RECT, AUTO_DMRE",
            "barcode_set_code_size", KeywordSetter(barcode_set_code_size, kDataMatrixSizes)},
           {"--encode-scheme", "S", "Data Matrix ASCII, C40, TEXT, X12, EDIFACT, BASE256 or AUTO",
            "barcode_set_encode_scheme",
            KeywordSetter(barcode_set_encode_scheme, {"ASCII", "C40", "TEXT", "X12", "EDIFACT", "BASE256", "AUTO"})},
           {"--error-level", "N", "PDF417 error-correction level 0-8 (-1: automatic)", "barcode_set_error_level",
            IntSetter(barcode_set_error_level, -1, 8)},
           {"--columns", "N", "PDF417 columns 1-30 (0: automatic)", "barcode_set_columns",
            IntSetter(barcode_set_columns, 0, 30)},
           {"--rows", "N", "PDF417 rows 3-90 (0: automatic)", "barcode_set_rows", IntSetter(barcode_set_rows, 0, 90)},
           {"--aspect-ratio", "F", "PDF417 width over height of the automatic shape", "barcode_set_aspect_ratio",
            DoubleSetter(barcode_set_aspect_ratio)},
           {"--y-height", "N", "PDF417 row height in modules", "barcode_set_y_height",
            IntSetter(barcode_set_y_height, 1, 1000)},
       }},
      {"GS1 DataBar",
       {
           {"--symbol-type-14", "NAME", "OMNIDIRECTIONAL, STACKED or STACKED_OMNIDIRECTIONAL",
            "barcode_set_symbol_type_14",
            KeywordSetter(barcode_set_symbol_type_14, {"OMNIDIRECTIONAL", "STACKED", "STACKED_OMNIDIRECTIONAL"})},
           {"--symbol-type-exp", "NAME", "UNSTACKED or STACKED", "barcode_set_symbol_type_exp",
            KeywordSetter(barcode_set_symbol_type_exp, {"UNSTACKED", "STACKED"})},
           {"--no-of-columns", "N", "segment pairs a row of stacked DataBar Expanded (1-11)",
            "barcode_set_no_of_columns", IntSetter(barcode_set_no_of_columns, 1, 11)},
       }},
  };
  return sections;
}

bool ServesABuiltType(const char* function) {
  if (function == nullptr) return true;
  for (int type = 0; type < barcode_type_count(); ++type) {
    if (barcode_type_accepts(type, function) != 0 && Provided(type)) return true;
  }
  return false;
}

const OptionSpec* FindOption(const std::string& name) {
  for (const Section& section : Sections()) {
    for (const OptionSpec& option : section.options) {
      if (name == option.name) return &option;
    }
  }
  return nullptr;
}

// ---- Help ----

struct Example {
  const char* symbology;  // shown when this build provides it
  const char* line;
};

constexpr Example kExamples[] = {
    {"code39", "barcode-orv code39 ABC-1234 -o code39.png"},
    {"code128", "barcode-orv --width 400 code128 'Hello 128' -o code128.svg"},
    {"jan13", "barcode-orv jan13 490123456789 -o jan13.png"},
    {"qr", "barcode-orv --error-correction H qr 'https://example.com' -o qr.png"},
    {"qr", "echo 'text from a pipe' | barcode-orv qr - > qr.png"},
    {"qr", "head -c 64 /dev/urandom | barcode-orv --binary qr - -o bytes.png"},
    {"datamatrix", "barcode-orv datamatrix 'Data Matrix' --data-uri"},
    {"code128", "barcode-orv --compat code128 ABC123 -o legacy.png"},
    {"jan13", "barcode-orv --xdim 0.33 --dpi 300 jan13 490123456789 -o jan13-print.png"},
};

void PrintHelp() {
  std::cout << "Usage: barcode-orv [options] SYMBOLOGY TEXT\n\n"
               "Draws TEXT as a barcode (TEXT '-' reads it from standard input). SYMBOLOGY is a\n"
               "type number (0-"
            << barcode_type_count() - 1
            << ") or a name; --list shows which this build provides. The picture\n"
               "goes to standard output unless -o names a file; nothing else is written there.\n"
               "Symbols follow their standards (quiet zones included) and are written only when they\n"
               "read back as TEXT; --compat draws the library's compatibility defaults instead.\n";
  for (const Section& section : Sections()) {
    std::string lines;
    for (const OptionSpec& option : section.options) {
      if (!ServesABuiltType(option.function)) continue;
      std::string spelling =
          std::string("  ") + option.name + (option.argument ? std::string(" ") + option.argument : "");
      if (spelling.size() < 26) spelling.resize(26, ' ');
      lines += spelling + " " + option.help + "\n";
    }
    if (!lines.empty()) std::cout << "\n" << section.title << ":\n" << lines;
  }
  std::cout << "\nInformation:\n"
               "  --list                     the symbologies and whether this build provides them\n"
               "  --version                  the program's version\n"
               "  -h, --help                 this text\n"
               "\nShort forms: -o --output, -f --format, -W --width, -H --height.\n"
               "\nExamples:\n";
  for (const Example& example : kExamples) {
    if (Provided(barcode_type_from_name(example.symbology))) std::cout << "  " << example.line << "\n";
  }
  std::cout << "\nExit status: 0 drawn, 1 nothing written (the reason on standard error: a refused text,\n"
               "a symbol that would not read back, a failed write), 2 a bad command line.\n";
}

void PrintList() {
  std::cout << "type  name              provided  symbology\n";
  for (int type = 0; type < barcode_type_count(); ++type) {
    char line[128];
    std::snprintf(line, sizeof line, "%4d  %-16s  %-8s  %s\n", type, barcode_type_name(type),
                  Provided(type) ? "yes" : "no", barcode_type_description(type));
    std::cout << line;
  }
}

// ---- Parsing ----

std::string ShortToLong(const std::string& arg) {
  if (arg == "-o") return "--output";
  if (arg == "-f") return "--format";
  if (arg == "-W") return "--width";
  if (arg == "-H") return "--height";
  return arg;
}

// Raised for a request that cannot be drawn as asked; exit status 1.
struct Refusal {
  std::string message;
};

// Standard input as text (one trailing line end dropped) or, with `binary`, as it is.
std::string ReadStandardInput(bool binary) {
  std::string text((std::istreambuf_iterator<char>(std::cin)), std::istreambuf_iterator<char>());
  if (binary) return text;
  if (!text.empty() && text.back() == '\n') text.pop_back();
  if (!text.empty() && text.back() == '\r') text.pop_back();
  // The library takes text up to its first NUL: the rest would be dropped without a word.
  const size_t nul = text.find('\0');
  if (nul != std::string::npos) {
    throw Refusal{"standard input holds a NUL byte at offset " + std::to_string(nul) + "; --binary draws " +
                  TypesServedBy("barcode_draw_2d_bytes", barcode_type_description, " and ") + " from raw bytes"};
  }
  return text;
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
      PrintHelp();
      return std::nullopt;
    }
    if (arg == "--list") {
      PrintList();
      return std::nullopt;
    }
    if (arg == "--version") {
      std::cout << "barcode-orv " << BARCODE_ORV_VERSION << "\n";
      return std::nullopt;
    }
    std::string value;
    bool has_inline_value = false;
    if (const size_t equals = arg.find('='); arg.rfind("--", 0) == 0 && equals != std::string::npos) {
      value = arg.substr(equals + 1);
      arg = arg.substr(0, equals);
      has_inline_value = true;
    }
    arg = ShortToLong(arg);
    const OptionSpec* option = FindOption(arg);
    if (option == nullptr) throw UsageError{"unknown option '" + arg + "' (see --help)"};
    if (option->argument != nullptr && !has_inline_value) {
      if (i + 1 >= argc) throw UsageError{arg + " needs a value"};
      value = argv[++i];
    } else if (option->argument == nullptr && has_inline_value) {
      throw UsageError{arg + " takes no value"};
    }
    option->handle(request, arg, value);
  }
  if (positional.size() != 2) throw UsageError{"expected SYMBOLOGY and TEXT (see --help)"};
  request.type = ParseSymbology(positional[0]);
  if (request.binary && (barcode_type_accepts(request.type, "barcode_draw_2d_bytes") == 0 || positional[1] != "-")) {
    throw UsageError{"--binary reads standard input (TEXT '-') for " +
                     TypesServedBy("barcode_draw_2d_bytes", barcode_type_name, " or ")};
  }
  request.text = positional[1] == "-" ? ReadStandardInput(request.binary) : positional[1];
  return request;
}

// The format: --format if given, else the output file's extension, else png.
std::string OutputFormat(const Request& request) {
  if (request.format) return *request.format;
  const size_t dot = request.output.rfind('.');
  if (dot != std::string::npos) {
    std::string extension = request.output.substr(dot + 1);
    for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (extension == "svg" || extension == "png" || extension == "jpg" || extension == "jpeg") return extension;
  }
  return "png";
}

// ---- Drawing ----

std::string DefaultDrawKind(int type) {
  if (barcode_type_accepts(type, "barcode_draw_2d_rect") != 0) return "2d-rect";
  if (barcode_type_accepts(type, "barcode_draw_yubin_with_width") != 0) return "yubin-width";
  return "1d";
}

int Draw(BarcodeHandle* handle, Request request) {
  const std::string kind = request.draw.empty() ? DefaultDrawKind(request.type) : request.draw;
  const bool two_d = barcode_type_accepts(request.type, "barcode_draw_2d") != 0;
  if (request.xdim) {
    // The symbol's natural size on every side not given (0 asks the library for it).
    if (!request.width_given) request.width = 0;
    request.height = request.height.value_or(0);
    request.size = request.size.value_or(request.width);
  }
  const int height = request.height.value_or(two_d ? request.width : 100);
  const int size = request.size.value_or(request.width);
  const char* text = request.text.c_str();
  if (request.binary) {
    const auto* bytes = reinterpret_cast<const unsigned char*>(request.text.data());
    return barcode_draw_2d_bytes(handle, bytes, request.text.size(), request.width, height);
  }
  if (kind == "1d") return barcode_draw_1d(handle, text, request.width, height);
  if (kind == "2d") return barcode_draw_2d(handle, text, size);
  if (kind == "2d-rect") return barcode_draw_2d_rect(handle, text, request.width, height);
  if (kind == "yubin") return barcode_draw_yubin(handle, text, size);
  if (kind == "yubin-width") return barcode_draw_yubin_with_width(handle, text, request.width, height);
  if (kind == "convenience") return barcode_draw_convenience(handle, text, request.width, height);
  if (kind == "stacked") return barcode_draw_stacked(handle, text, request.width, height);
  throw UsageError{"unknown --draw kind '" + kind + "'"};
}

using HandlePtr = std::unique_ptr<BarcodeHandle, decltype(&barcode_destroy)>;

// Writes `data` to `path`; 0, or the errno of the step that failed.
int WriteFile(const std::string& path, const char* data, size_t size) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) return errno;
  int error = 0;
  if (std::fwrite(data, 1, size, file) != size || std::fflush(file) != 0) error = errno;
  if (std::fclose(file) != 0 && error == 0) error = errno;
  return error;
}

// Writes to standard output; to a file through a temporary file beside it that replaces
// it only once every byte is written and the file closed, so a failed write leaves no
// file and an existing one untouched; to anything else that exists (a device, a pipe) in
// place.
void WriteOutput(const Request& request, const char* data, size_t size) {
  if (request.output.empty() || request.output == "-") {
    std::cout.write(data, static_cast<std::streamsize>(size));
    std::cout.flush();
    if (!std::cout) throw Refusal{"cannot write standard output"};
    return;
  }
  struct stat target {};
  const bool in_place = ::stat(request.output.c_str(), &target) == 0 && !S_ISREG(target.st_mode);
  const std::string temporary = in_place ? request.output : request.output + ".partial-" + std::to_string(::getpid());
  int error = WriteFile(temporary, data, size);
  if (error == 0 && !in_place && std::rename(temporary.c_str(), request.output.c_str()) != 0) error = errno;
  if (error != 0) {
    if (!in_place) std::remove(temporary.c_str());
    throw Refusal{"cannot write " + request.output + ": " + std::strerror(error)};
  }
}

// The drawn result as the request asks for it: the SVG document, the data URI or the PNG.
std::string Collect(BarcodeHandle* handle, const Request& request) {
  if (barcode_is_svg_output(handle) != 0) return barcode_get_svg(handle);
  if (request.data_uri) return std::string(barcode_get_base64(handle)) + "\n";
  uint32_t size = 0;
  const uint8_t* png = barcode_get_image_data(handle, &size);
  if (png == nullptr) throw Refusal{std::string("no image was produced: ") + barcode_get_last_error(handle)};
  return std::string(reinterpret_cast<const char*>(png), size);
}

int Run(const Request& request) {
  barcode_set_quiet(request.verbose ? 0 : 1);
  barcode_set_error_lines(0);  // each failure is printed once, below
  HandlePtr handle(barcode_create(request.type), barcode_destroy);
  if (!handle) throw Refusal{"symbology " + std::to_string(request.type) + " is not provided by this build"};
  barcode_set_output_format(handle.get(), OutputFormat(request).c_str());
  barcode_set_standard(handle.get(), request.compat ? 0 : 1);
  barcode_set_throw_on_capacity_error(handle.get(), 0);  // reported, never an abort
  for (const auto& option : request.options) option(handle.get());
  if (request.xdim && barcode_set_xdim(handle.get(), *request.xdim, request.dpi) == 0) {
    throw UsageError{barcode_get_last_error(handle.get())};
  }
  if (Draw(handle.get(), request) == 0) {
    const std::string reason = barcode_get_last_error(handle.get());
    throw Refusal{reason.empty() ? "the library drew nothing and gave no reason" : reason};
  }
  // The standard profile refuses such a draw; --compat asked for the picture as it is.
  const std::string warning = barcode_get_last_warning(handle.get());
  if (!warning.empty()) std::cerr << "barcode-orv: warning: " << warning << "\n";
  const std::string output = Collect(handle.get(), request);
  WriteOutput(request, output.data(), output.size());
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
  } catch (const Refusal& refusal) {
    std::cerr << "barcode-orv: " << refusal.message << "\n";
    return 1;
  } catch (const std::exception& error) {
    std::cerr << "barcode-orv: " << error.what() << "\n";
    return 1;
  }
}
