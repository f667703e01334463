// GS1-128: a GS1 element string in Code 128 with FNC1 in first position (ISO/IEC 15417,
// GS1 barcode rules, section 5.4), and the Japanese convenience-store payment layout.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "gs1/gs1_element_string.h"
#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

// At most 48 data characters (AIs, data and FNC1 separators) in one GS1-128 symbol.
constexpr size_t kGs1128MaxData = 48;

// Symbol values, start to stop: FNC1 first, FNC1 after every variable-length element that
// is not last, the fewest symbol characters over the three code sets.
std::vector<int32_t> Gs1128Values(const std::vector<Gs1Element>& elements);

// The 44 digits of a convenience-store payment code: AI 91, biller code (6), free field
// (21), reissue count (1), due date YYMMDD (6), stamp flag (1), amount (6) and a modulo-10
// check digit over the 43 digits before it, appended to 43 digits or verified in 44.
std::string ConvenienceCode(const std::string& text);
// Its human-readable text: the fields joined by hyphens, on two lines split at the field
// boundary that makes them closest in length.
std::pair<std::string, std::string> ConvenienceTextLines(const std::string& code);

}  // namespace internal

class GS1_128 : public BarcodeBase1D {  // NOLINT(readability-identifier-naming): the class name the factory documents
 public:
  explicit GS1_128(std::string output_format);
  explicit GS1_128(SDL_Renderer* canvas);  // draws onto the caller's renderer

  // `text` is an element string such as "(01)04912345678904(10)ABC123"; the text line
  // shows it with its parentheses.
  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  // The convenience-store payment barcode of a 43- or 44-digit code: code set C
  // throughout, its text on two lines under the bars.
  bool DrawConvenience(const std::string& text, int x, int y, int width, int height);

 private:
  static LinearSymbol Encode(const std::string& text);
  static LinearSymbol EncodeConvenience(const std::string& text);
};

}  // namespace barcode_orv
