#include "twod/qr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "core/log.h"
#include "twod/eci.h"
#include "twod/qr_segments.h"

namespace barcode_orv {
namespace {

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

ModuleView View(const ModuleGrid& matrix) { return ModuleView::Of(matrix); }

void LogMatrix(const ModuleGrid& matrix) {
  if (log::Quiet()) return;
  log::Progress("【Debug: QRコードのビットパターン出力】");
  std::string line;
  for (int row = 0; row < matrix.cols(); ++row) {
    line.clear();
    for (int col = 0; col < matrix.cols(); ++col) line += matrix.dark(col, row) ? '1' : '0';
    log::Progress(line);
  }
  log::Progress("【Debug: 出力終了】");
}

}  // namespace

QR::QR(std::string output_format) : BarcodeBase2D(std::move(output_format)) {}

QR::QR(SDL_Renderer* canvas) : BarcodeBase2D(canvas) {}

void QR::SetVersion(int version) {
  if (static_cast<unsigned>(version) > static_cast<unsigned>(qr_internal::kMaxVersion)) {
    log::Progress("Warning: Invalid QR Code version (" + std::to_string(version) + "). Setting to auto.");
    version_ = 0;
    return;
  }
  version_ = version;
}

void QR::SetEncodeMode(const std::string& mode) {
  std::string upper = mode;
  std::transform(upper.begin(), upper.end(), upper.begin(), AsciiUpper);
  if (upper.size() == 1 && std::string_view("ABNK").find(upper[0]) != std::string_view::npos) {
    encode_mode_ = upper;
    return;
  }
  log::Progress("Warning: Invalid QR Code encode mode ('" + mode + "'). Setting to Binary ('B').");
  encode_mode_ = "B";
}

void QR::SetEncodeMode(QREncodeMode mode) {
  switch (mode) {
    case QREncodeMode::Numeric: SetEncodeMode(std::string("N")); return;
    case QREncodeMode::Alphanumeric: SetEncodeMode(std::string("A")); return;
    case QREncodeMode::Kanji: SetEncodeMode(std::string("K")); return;
    case QREncodeMode::Byte: break;
  }
  SetEncodeMode(std::string("B"));
}

namespace {

// Offset of the first byte outside QR numeric mode ("N") or the alphanumeric set ("A").
size_t FirstOutsideMode(const std::vector<uint8_t>& data, char mode) {
  constexpr std::string_view kAlphanumeric = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";
  for (size_t i = 0; i < data.size(); ++i) {
    const char c = static_cast<char>(data[i]);
    const bool inside = mode == 'N' ? c >= '0' && c <= '9' : kAlphanumeric.find(c) != std::string_view::npos;
    if (!inside) return i;
  }
  return std::string::npos;
}

std::string DescribeByte(uint8_t byte) {
  if (byte >= 0x20 && byte < 0x7F) return std::string("'") + static_cast<char>(byte) + "'";
  char hex[8];
  std::snprintf(hex, sizeof hex, "0x%02X", static_cast<unsigned>(byte));
  return hex;
}

}  // namespace

void QR::CheckModeAndVersion(const std::vector<uint8_t>& data, int chosen_version) const {
  const char mode = encode_mode_.empty() ? 'B' : encode_mode_[0];
  if (mode == 'N' || (mode == 'A' && standard_profile)) {
    const size_t outside = FirstOutsideMode(data, mode);
    if (outside != std::string::npos) {
      const std::string problem = std::string("[QR] Character ") + DescribeByte(data[outside]) + " at offset " +
                                  std::to_string(outside) + " is outside " +
                                  (mode == 'N' ? "numeric" : "alphanumeric") + " mode";
      // Numeric mode writes such a byte as some other digit; the alphanumeric setting is
      // carried in byte mode and reads back, so only the standard profile objects to it.
      Warn(problem);
    }
  }
  if (version_ != 0 && chosen_version > version_) {
    Warn("[QR] Data too long for version " + std::to_string(version_) + ": it needs version " +
         std::to_string(chosen_version));
  }
}

std::string QR::SettingsProblem() const {
  if (mask_ < -1 || mask_ >= qr_internal::kMaskCount) {
    return "Mask must be 0 to 7 (or -1 to choose one), not " + std::to_string(mask_);
  }
  return internal::EciProblem(GetEci());
}

ModuleGrid QR::Encode(const std::vector<uint8_t>& data) const {
  const auto level_index = static_cast<uint32_t>(level_);
  const int level = level_index <= qr_internal::kLevelH ? static_cast<int>(level_index) : qr_internal::kLevelM;
  if (Segmented()) {
    if (data.empty()) return {};
    const std::string problem = SettingsProblem();
    if (!problem.empty()) throw std::runtime_error(problem);
    qr_internal::StreamRequest request;
    request.declare_eci = GetEci() >= 0;
    request.charset_eci = request.declare_eci ? GetEci()
                          : CarriesShiftJis() ? qr_internal::kEciShiftJis
                                              : qr_internal::kEciUtf8;
    request.gs1 = GetGs1();
    request.level = level;
    request.requested_version = version_;
    const qr_internal::Stream stream = qr_internal::BuildStream(data, request);
    CheckModeAndVersion(data, stream.version);
    const auto rule = standard_profile ? qr_internal::MaskRule::kIso18004 : qr_internal::MaskRule::kLibrary;
    return qr_internal::EncodeSymbol(stream.fields, stream.version, level, mask_, rule);
  }
  qr_internal::QRJam jam;
  jam.SetMask(mask_);
  jam.SetModeString(encode_mode_);
  jam.SetRequestedVersion(version_);
  jam.SetErrorCorrectionIndex(level);
  jam.qrcode_write_barcode(data);
  if (!data.empty()) CheckModeAndVersion(data, jam.chosen_version());
  return jam.matrix();
}

bool QR::Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(data, x, y, width, height);
  if (const std::string problem = SettingsProblem(); !problem.empty()) {
    log::Error("[QR] " + problem);
    return false;
  }

  log::Progress("--- QR::Draw 開始 ---");
  // At an X-dimension the symbol is encoded first: its size gives the canvas's.
  ModuleGrid matrix;
  const bool sized_by_symbol = WantsNaturalBox();
  if (sized_by_symbol) {
    matrix = Encode(data);
    if (!TakeModulesNaturalBox(View(matrix), &width, &height)) return false;
  }
  bool on_caller_canvas = false;
  if (!BeginRaster(x, y, width, height, on_caller_canvas)) return false;

  // Deliberate: QRCapacityError is not caught here. A payload beyond version 40 is the
  // one failure callers must be able to tell apart, so it leaves Draw as an exception.
  if (!sized_by_symbol) matrix = Encode(data);
  LogMatrix(matrix);
  if (!PaintRasterModules(View(matrix), x, y, width, height, ModuleAspect::kStretch)) return false;
  EndRaster(on_caller_canvas);
  log::Progress("--- QR::Draw 終了 (成功) ---");
  return true;
}

bool QR::DrawSvg(const std::vector<uint8_t>& data, int /*x*/, int /*y*/, int width, int height) {
  if (const std::string problem = SettingsProblem(); !problem.empty()) {
    log::Error("[QR] " + problem);
    return false;
  }
  // Deliberate: as in Draw, QRCapacityError leaves this routine uncaught.
  const ModuleGrid matrix = Encode(data);
  if (matrix.empty()) return false;
  if (WantsNaturalBox() && !TakeModulesNaturalBox(View(matrix), &width, &height)) return false;
  return PaintSvgModules(View(matrix), width, height, ModuleAspect::kStretch);
}

}  // namespace barcode_orv
