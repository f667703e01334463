// GS1 DataBar Expanded and Expanded Stacked (ISO/IEC 24724): a GS1 element string
// compacted into 12-bit data characters (the standard's encodation methods and its
// general-purpose numeric, alphanumeric and ISO/IEC 646 modes), a modulo-211 check
// character and the finder sequences, in one row or in rows of segment pairs.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "databar/databar_base.h"
#include "databar/databar_common.h"
#include "gs1/gs1_element_string.h"

namespace barcode_orv {

namespace internal {

// The compressed-data field chosen for an element string, as its method bits.
enum class ExpandedMethod : uint8_t {
  kGeneral,        // 00: no compressed field
  kGtin,           // 1: (01) first
  kWeightKg3103,   // 0100: (01) and (3103)
  kWeightLb320x,   // 0101: (01) and (3202) or (3203)
  kWeightAndDate,  // 0111000..0111111: (01), (310x) or (320x), and (11), (13), (15) or (17)
  kPrice392x,      // 01100: (01) and (392x)
  kPrice393x,      // 01101: (01) and (393x) with its currency
};

struct ExpandedBits {
  ExpandedMethod method = ExpandedMethod::kGeneral;
  std::string bits;  // '0'/'1', padded to whole data characters
};

// `stack_columns` > 0 asks for the stacked form's padding rule (the last row never holds
// a single symbol character). Throws std::runtime_error when the data does not fit.
ExpandedBits EncodeExpandedBits(const std::vector<Gs1Element>& elements, int stack_columns);

struct ExpandedSymbol {
  std::vector<int32_t> widths;  // one row, left guard to right guard, light first
  int32_t symbol_characters = 0;
  int32_t check_value = 0;
  std::string display_text;  // the element string with its AIs in parentheses
  DataBarRows rows;          // the stacked form (empty when unstacked)
};

// `stack_columns` 0: one row; 1..11: rows of that many segment pairs.
ExpandedSymbol EncodeDataBarExpanded(const std::string& element_string, int stack_columns);

}  // namespace internal

class GS1DataBarExpanded : public DataBarBase {
 public:
  explicit GS1DataBarExpanded(std::string output_format);
  explicit GS1DataBarExpanded(SDL_Renderer* canvas);  // draws onto the caller's renderer

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  // Switches to the stacked form and draws.
  bool DrawStacked(const std::string& text, int x, int y, int width, int height);

  // 0 UNSTACKED, 1 STACKED.
  void SetSymbolType(int32_t type) { symbol_type_ = type; }
  int32_t GetSymbolType() const { return symbol_type_; }
  // Segment pairs per row of the stacked form; values outside 1..11 draw 2.
  void SetNoOfColumns(int32_t columns) { columns_ = columns; }
  int32_t GetNoOfColumns() const { return columns_; }
  // The pairs per row a stacked draw uses.
  int32_t StackColumns() const;

 private:
  // ISO/IEC 24724: each row is 34 modules tall.
  float NaturalBarModules() const override { return 34.0F; }
  bool DrawForm(const std::string& text, int x, int y, int width, int height, bool svg);

  int32_t symbol_type_ = 0;
  int32_t columns_ = 2;
};

}  // namespace barcode_orv
