// The EAN/UPC family (ISO/IEC 15420, GS1 barcode rules, section 5.2): JAN-8 (EAN-8), JAN-13
// (EAN-13), UPC-A and UPC-E, with the EAN-2 and EAN-5 add-ons and extended guard bars.
// One encoder and one drawing class serve all four; Jan8, Jan13, UpcA and UpcE only name
// their kind.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

namespace internal {

enum class EanUpcKind : uint8_t { kJan8, kJan13, kUpcA, kUpcE };

// A validated input: the complete number and the add-on digits.
struct EanUpcCode {
  std::string digits;  // with its check digit; UPC-E: number system, six digits, check digit
  std::string add_on;  // "", or 2 or 5 digits
};

// Reads "main", "main+addon" or "main addon". The main part may omit its check digit
// (JAN-8: 7 or 8 digits, JAN-13: 12 or 13, UPC-A: 11 or 12, UPC-E: 6 with number system 0
// implied, 7, or 8 with the check digit, or a UPC-A of 11 or 12 digits that has a UPC-E
// form). Throws std::runtime_error with the message the draw reports.
EanUpcCode ParseEanUpc(EanUpcKind kind, const std::string& text);

// The UPC-A number (12 digits) of a UPC-E number (number system, six digits, and
// optionally its check digit); the check digit is computed.
std::string ExpandUpcE(const std::string& upce);
// The UPC-E number (8 digits) of a UPC-A number (11 or 12 digits), or "" when it has none.
std::string CompressUpcA(const std::string& upca);

// Element widths, bar first: the main symbol, then (with an add-on) the gap and the add-on.
std::vector<int32_t> EncodeEanUpc(EanUpcKind kind, const EanUpcCode& code);

// Modules of the main symbol (67, 95, 95, 51) and the space before an add-on.
int32_t EanUpcMainModules(EanUpcKind kind);
constexpr int32_t kAddOnGap = 9;

}  // namespace internal

class EanUpcBarcode : public BarcodeBase1D {
 public:
  // true (the default): guard bars run down into the text, the digits sit between them
  // and outside digits left and right of the symbol, as on retail packs; false: every bar
  // the same height, the digits centred under the symbol.
  void SetExtendedGuard(bool extended) { extended_guard_ = extended; }
  bool GetExtendedGuard() const { return extended_guard_; }

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;

 protected:
  EanUpcBarcode(std::string output_format, internal::EanUpcKind kind, const char* log_prefix);
  EanUpcBarcode(SDL_Renderer* canvas, internal::EanUpcKind kind, const char* log_prefix);

 private:
  LinearSymbol Encode(const std::string& text) const;
  float NaturalBarModules() const override;

  internal::EanUpcKind kind_;
  const char* log_prefix_;
  bool extended_guard_ = true;
};

class Jan8 : public EanUpcBarcode {
 public:
  explicit Jan8(std::string output_format)
      : EanUpcBarcode(std::move(output_format), internal::EanUpcKind::kJan8, "[Jan8] ") {}
  explicit Jan8(SDL_Renderer* canvas) : EanUpcBarcode(canvas, internal::EanUpcKind::kJan8, "[Jan8] ") {}
};

class Jan13 : public EanUpcBarcode {
 public:
  explicit Jan13(std::string output_format)
      : EanUpcBarcode(std::move(output_format), internal::EanUpcKind::kJan13, "[Jan13] ") {}
  explicit Jan13(SDL_Renderer* canvas) : EanUpcBarcode(canvas, internal::EanUpcKind::kJan13, "[Jan13] ") {}
};

class UpcA : public EanUpcBarcode {
 public:
  explicit UpcA(std::string output_format)
      : EanUpcBarcode(std::move(output_format), internal::EanUpcKind::kUpcA, "[UpcA] ") {}
  explicit UpcA(SDL_Renderer* canvas) : EanUpcBarcode(canvas, internal::EanUpcKind::kUpcA, "[UpcA] ") {}
};

class UpcE : public EanUpcBarcode {
 public:
  explicit UpcE(std::string output_format)
      : EanUpcBarcode(std::move(output_format), internal::EanUpcKind::kUpcE, "[UpcE] ") {}
  explicit UpcE(SDL_Renderer* canvas) : EanUpcBarcode(canvas, internal::EanUpcKind::kUpcE, "[UpcE] ") {}
};

}  // namespace barcode_orv
