// GS1 DataBar Omnidirectional (DataBar-14) and its Stacked and Stacked Omnidirectional
// forms (ISO/IEC 24724): a GTIN-13 in four data characters and two finder patterns.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "databar/databar_base.h"
#include "databar/databar_common.h"

namespace barcode_orv {

namespace internal {

enum class DataBar14Form : int32_t { kOmnidirectional = 0, kStacked = 1, kStackedOmnidirectional = 2 };

struct DataBar14Symbol {
  std::array<int32_t, 46> widths{};  // left guard to right guard, light first (96 modules)
  int32_t checksum = 0;              // after skipping the values 8 and 72
  std::string digits;                // 13 digits and the GTIN check digit
  DataBarRows rows;                  // 1, 3 or 5 rows as the form asks
};

// Up to 13 digits, left-padded with zeros. Throws std::runtime_error on bad input.
DataBar14Symbol EncodeDataBar14(const std::string& data, DataBar14Form form);

}  // namespace internal

class GS1DataBar14 : public DataBarBase {
 public:
  explicit GS1DataBar14(std::string output_format);
  explicit GS1DataBar14(SDL_Renderer* canvas);  // draws onto the caller's renderer

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;

  // Encodes `data` in the current form and keeps the result; throws std::runtime_error.
  bool encode(const std::string& data);  // NOLINT(readability-identifier-naming): the documented name
  const internal::DataBar14Symbol& LastSymbol() const { return symbol_; }
  // GTIN check digit of exactly 13 digits, as one character.
  static std::string CalculateCheckDigit(const std::string& digits);

  // 0 OMNIDIRECTIONAL, 1 STACKED, 2 STACKED_OMNIDIRECTIONAL; other values draw the first.
  void SetSymbolType(int32_t type) { m_symbolType = type; }
  int32_t GetSymbolType() const { return m_symbolType; }

 private:
  // ISO/IEC 24724: the symbol is 33 modules tall.
  float NaturalBarModules() const override { return 33.0F; }
  bool DrawForm(const std::string& text, int x, int y, int width, int height, bool svg);
  internal::DataBar14Form Form() const;

  int32_t m_symbolType = 0;  // NOLINT(readability-identifier-naming): the documented member
  internal::DataBar14Symbol symbol_;
};

}  // namespace barcode_orv
