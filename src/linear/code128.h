// Code 128 (ISO/IEC 15417): fixed code sets A, B, C or a minimal-length automatic
// choice of sets, with the modulo-103 check character.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "linear/barcode_base_1d.h"

namespace barcode_orv {

// The code-set choice of a Code 128 object.
enum class CodeSet128 : uint32_t { kA = 0, kB = 1, kC = 2, kAuto = 3 };

namespace internal {

// Symbol values of the whole symbol: start, data and code-set changes, check, stop.
std::vector<int32_t> Code128Values(const std::string& text, CodeSet128 mode);

// Element widths (bar first) of the symbol for `text` in `mode`.
std::vector<int32_t> EncodeCode128(const std::string& text, CodeSet128 mode);
// The symbol in one code set (kA, kB or kC) from start to stop.
std::vector<int32_t> EncodeSingleSet(const std::string& text, CodeSet128 set);
// The symbol with the fewest symbol characters over all code-set changes.
std::vector<int32_t> EncodeAuto(const std::string& text);

// Symbol values with ISO/IEC 15417's set A values: set A as asked, or (kAuto) the fewest
// symbol characters over all sets with shifts, as every reader expects them.
std::vector<int32_t> StandardCode128Values(const std::string& text, CodeSet128 mode);

// Appends the modulo-103 check character and the stop character to start + data values.
void FinishCode128(std::vector<int32_t>& values);
// Element widths (bar first) of complete symbol values, start to stop.
std::vector<int32_t> Code128Widths(const std::vector<int32_t>& values);

}  // namespace internal

class Code128 : public BarcodeBase1D {
 public:
  explicit Code128(std::string output_format);
  explicit Code128(SDL_Renderer* canvas);  // draws onto the caller's renderer

  void SetCodeMode(CodeSet128 mode) { code_mode_ = mode; }
  CodeSet128 GetCodeMode() const { return code_mode_; }

  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  bool DrawSvg(const std::string& text, int x, int y, int width, int height) override;
  virtual std::vector<int32_t> EncodeCode128(const std::string& text);

 private:
  LinearSymbol Encode(const std::string& text);

  CodeSet128 code_mode_ = CodeSet128::kAuto;
};

}  // namespace barcode_orv
