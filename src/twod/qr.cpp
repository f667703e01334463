#include "twod/qr.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string_view>
#include <utility>

#include "core/log.h"

namespace barcode_orv {
namespace {

using qr_internal::ModuleMatrix;

char AsciiUpper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

// Module size along one axis of the raster box: whole pixels unless fit_width asks for
// the exact fraction that fills the box.
float RasterModuleSize(int extent, int modules, bool fit) {
  if (modules < 1) return 1.0f;
  if (fit) return static_cast<float>(extent) / static_cast<float>(modules);
  return static_cast<float>(std::max(extent / modules, 1));
}

// Pixel edges 0..modules of one axis, each rounded to the nearest pixel independently,
// so fractional modules come out one pixel wider or narrower without drifting.
std::vector<int> RoundedEdges(int origin, float module_size, int modules) {
  std::vector<int> edges(static_cast<size_t>(modules) + 1);
  for (int i = 0; i <= modules; ++i) {
    edges[i] = origin + static_cast<int>(std::lround(module_size * static_cast<float>(i)));
  }
  return edges;
}

// Width of a module between two edges after the dark-module adjustment, computed wide
// so that any adjustment a caller passes stays well defined.
int AdjustedExtent(int from, int to, int adjust) {
  const int64_t extent = int64_t{to} - from + adjust;
  return static_cast<int>(std::clamp<int64_t>(extent, INT32_MIN, INT32_MAX));
}

std::vector<float> FractionEdges(int extent, int modules) {
  std::vector<float> edges(static_cast<size_t>(modules) + 1);
  for (int i = 0; i <= modules; ++i) {
    edges[i] = static_cast<float>(extent) * static_cast<float>(i) / static_cast<float>(modules);
  }
  return edges;
}

void LogMatrix(const ModuleMatrix& matrix) {
  if (log::Quiet()) return;
  log::Progress("【Debug: QRコードのビットパターン出力】");
  std::string line;
  for (int row = 0; row < matrix.side(); ++row) {
    line.clear();
    for (int col = 0; col < matrix.side(); ++col) line += matrix.dark(col, row) ? '1' : '0';
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

ModuleMatrix QR::Encode(const std::vector<uint8_t>& data) const {
  qr_internal::QRJam jam;
  jam.SetModeString(encode_mode_);
  jam.SetRequestedVersion(version_);
  const auto level = static_cast<uint32_t>(level_);
  jam.SetErrorCorrectionIndex(level <= qr_internal::kLevelH ? static_cast<int>(level) : qr_internal::kLevelM);
  jam.qrcode_write_barcode(data);
  return jam.matrix();
}

SDL_Renderer* QR::PrepareCanvas(int x, int y, int width, int height) {
  if (GetOutputFormat().empty()) {
    log::Progress("エラー: 描画コンテキストが指定されていません (m_canvas も m_format も無効)。");
    return nullptr;
  }
  // The root class prepares the canvas; the 2D text overload must not run here.
  if (!BarcodeBase::Draw("dummy", x, y, width, height)) {  // NOLINT(bugprone-parent-virtual-call)
    log::Progress("エラー: BarcodeBase::Draw が false を返しました (サーフェス準備失敗の可能性)。");
    return nullptr;
  }
  if (canvas_surface() == nullptr) {
    log::Progress("エラー: BarcodeBase::Draw の後で有効な描画サーフェス (m_surface) がありません。");
    return nullptr;
  }
  if (canvas_renderer() == nullptr) {
    log::Progress(std::string("エラー: サーフェス用ソフトウェアレンダラーの作成に失敗しました: ") + SDL_GetError());
    return nullptr;
  }
  return canvas_renderer();
}

bool QR::Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(data, x, y, width, height);

  log::Progress("--- QR::Draw 開始 ---");
  // A caller's renderer takes the symbol at the box as given.
  const bool on_caller_canvas = external_canvas() != nullptr && !IsRasterOutput();
  if (on_caller_canvas) {
    log::Progress("描画先: 呼び出し元のレンダラー");
  } else {
    if (PrepareCanvas(x, y, width, height) == nullptr) return false;
    // The canvas is exactly the requested size, so the box becomes the whole canvas.
    const SDL_Surface* surface = canvas_surface();
    x = 0;
    y = 0;
    width = surface->w;
    height = surface->h;
    log::Progress("描画先: BarcodeBase が用意したサーフェス");
    log::Progress("サーフェスサイズ: " + std::to_string(width) + "x" + std::to_string(height));
  }

  // Deliberate: QRCapacityError is not caught here. A payload beyond version 40 is the
  // one failure callers must be able to tell apart, so it leaves Draw as an exception.
  const ModuleMatrix matrix = Encode(data);
  const int side = matrix.side();
  LogMatrix(matrix);

  FillRect(x, y, width, height, back_color);

  const std::vector<int> col_edges = RoundedEdges(x, RasterModuleSize(width, side, fit_width), side);
  const std::vector<int> row_edges = RoundedEdges(y, RasterModuleSize(height, side, fit_width), side);
  for (int row = 0; row < side; ++row) {
    const int module_height = AdjustedExtent(row_edges[row], row_edges[row + 1], px_adjust_black);
    if (module_height < 1) continue;
    for (int col = 0; col < side; ++col) {
      if (!matrix.dark(col, row)) continue;
      const int module_width = AdjustedExtent(col_edges[col], col_edges[col + 1], px_adjust_black);
      if (module_width < 1) continue;
      FillRect(col_edges[col], row_edges[row], module_width, module_height, fore_color);
    }
  }
  if (on_caller_canvas) SDL_RenderPresent(canvas_renderer());
  log::Progress("--- QR::Draw 終了 (成功) ---");
  return true;
}

bool QR::DrawSvg(const std::vector<uint8_t>& data, int /*x*/, int /*y*/, int width, int height) {
  // Deliberate: as in Draw, QRCapacityError leaves this routine uncaught.
  const ModuleMatrix matrix = Encode(data);
  if (matrix.empty()) return false;

  SvgBegin(width, height);
  SvgRect(0.0f, 0.0f, static_cast<float>(width), static_cast<float>(height), back_color);
  const int side = matrix.side();
  const std::vector<float> col_edges = FractionEdges(width, side);
  const std::vector<float> row_edges = FractionEdges(height, side);
  const auto adjust = static_cast<float>(px_adjust_black);
  for (int row = 0; row < side; ++row) {
    const float module_height = row_edges[row + 1] - row_edges[row];
    if (module_height <= 0.0f) continue;
    for (int col = 0; col < side; ++col) {
      if (!matrix.dark(col, row)) continue;
      const float module_width = col_edges[col + 1] - col_edges[col];
      if (module_width <= 0.0f) continue;
      SvgRect(col_edges[col], row_edges[row], module_width + adjust, module_height + adjust, fore_color);
    }
  }
  SvgEnd();
  return true;
}

}  // namespace barcode_orv
