// QR Code symbology: error-correction level, version and encode mode settings, and the
// painting of the module matrix into the caller's box (raster or SVG), with no quiet
// zone and the symbol anchored at the box's top-left corner.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "twod/barcode_base_2d.h"
#include "twod/qr_encoder.h"

namespace barcode_orv {

enum class QRErrorCorrectionLevel : int32_t { L = 0, M = 1, Q = 2, H = 3 };

enum class QREncodeMode : int { Numeric = 0, Alphanumeric = 1, Byte = 2, Kanji = 3 };

class QR : public BarcodeBase2D {
 public:
  explicit QR(std::string output_format);
  explicit QR(SDL_Renderer* canvas);  // draws onto the caller's renderer

  // Stored unchecked; a value outside L..H draws as M.
  void SetErrorCorrectionLevel(QRErrorCorrectionLevel level) { level_ = level; }
  QRErrorCorrectionLevel GetErrorCorrectionLevel() const { return level_; }
  // 1..40 is the smallest version to use, 0 the smallest that fits; anything else
  // stores 0 with a warning.
  void SetVersion(int version);
  int GetVersion() const { return version_; }
  // One letter, case-insensitive: "N" numeric, "B" byte, and "A" and "K", which are
  // carried in byte mode. Anything else stores "B" with a warning.
  void SetEncodeMode(const std::string& mode);
  void SetEncodeMode(QREncodeMode mode);
  std::string GetEncodeMode() const { return encode_mode_; }
  // 0..7 forces that mask pattern; -1, the default, chooses one (this library's scoring,
  // or in the standard profile the penalty rules of ISO/IEC 18004 section 7.8.3).
  void SetMask(int mask) { mask_ = mask; }
  int GetMask() const { return mask_; }

  using BarcodeBase::DrawSvg;
  using BarcodeBase2D::Draw;
  // Paints the symbol for `data` into the box; SVG output goes to DrawSvg. A payload
  // beyond version 40 throws qr_internal::QRCapacityError out of both routines.
  bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) override;
  // Exact fractional module edges over width x height; false for an empty payload.
  bool DrawSvg(const std::vector<uint8_t>& data, int x, int y, int width, int height);

  // The module matrix for `data` under the current settings; empty for empty data.
  ModuleGrid Encode(const std::vector<uint8_t>& data) const;

 protected:
  int QuietZoneModules() const override { return 4; }  // ISO/IEC 18004
  const char* LogPrefix() const override { return "[QR] "; }

 private:
  // Warns (or, in the standard profile, throws) when `data` leaves the fixed mode or the
  // symbol had to grow beyond the fixed version.
  void CheckModeAndVersion(const std::vector<uint8_t>& data, int chosen_version) const;

  // Why the settings cannot make a symbol ("" when they can).
  std::string SettingsProblem() const;
  // The standard's segmentation (numeric, alphanumeric, byte and Kanji segments, ECI,
  // FNC1): in the standard profile and whenever an ECI or GS1 mode is set.
  bool Segmented() const { return standard_profile || GetEci() >= 0 || GetGs1(); }

  QRErrorCorrectionLevel level_ = QRErrorCorrectionLevel::M;
  int mask_ = -1;
  int version_ = 0;
  std::string encode_mode_ = "B";
};

}  // namespace barcode_orv
