// The C interface of the two-dimensional symbologies: string encoding, the QR settings,
// the Data Matrix and PDF417 settings, and the 2D draw entry points.
#include <cstring>
#include <string>

#include "api/ffi_internal.h"
#include "twod/barcode_base_2d.h"
#include "twod/qr.h"

using barcode_orv::BarcodeBase2D;
using barcode_orv::QR;
using barcode_orv::QRErrorCorrectionLevel;
using barcode_orv::ffi::GuardDraw;
using barcode_orv::ffi::ObjectFor;

namespace {

BarcodeBase2D* TwoDObject(BarcodeHandle* handle) {
  return dynamic_cast<BarcodeBase2D*>(ObjectFor(handle, {BARCODE_QR, BARCODE_DATAMATRIX, BARCODE_PDF417}));
}

QR* QrObject(BarcodeHandle* handle) { return dynamic_cast<QR*>(ObjectFor(handle, {BARCODE_QR})); }

bool Is(const char* text, const char* keyword) { return std::strcmp(text, keyword) == 0; }

QRErrorCorrectionLevel LevelFromText(const char* text) {
  // One exact capital letter; anything else, lower case included, means M.
  if (Is(text, "L")) return QRErrorCorrectionLevel::L;
  if (Is(text, "Q")) return QRErrorCorrectionLevel::Q;
  if (Is(text, "H")) return QRErrorCorrectionLevel::H;
  return QRErrorCorrectionLevel::M;
}

const char* ModeFromText(const char* text) {
  if (Is(text, "AUTO") || Is(text, "BYTE")) return "B";
  if (Is(text, "NUMERIC")) return "N";
  if (Is(text, "ALPHANUMERIC")) return "A";
  if (Is(text, "KANJI")) return "K";
  return text;
}

// Runs a setter; options have no error channel, so nothing may escape.
template <typename Body>
void GuardSetter(Body&& body) noexcept {
  try {
    body();
  } catch (...) {  // NOLINT(bugprone-empty-catch)
  }
}

// The Data Matrix and PDF417 classes are not part of this build, so barcode_create never
// returns their handles; these setters only check the type, and the classes will consume
// the values once they exist.
void ForDataMatrix(BarcodeHandle* handle) { (void)ObjectFor(handle, {BARCODE_DATAMATRIX}); }
void ForPdf417(BarcodeHandle* handle) { (void)ObjectFor(handle, {BARCODE_PDF417}); }

}  // namespace

extern "C" {

void barcode_set_string_encoding(BarcodeHandle* handle, const char* encoding) {
  BarcodeBase2D* object = TwoDObject(handle);
  if (object == nullptr || encoding == nullptr) return;
  GuardSetter([&] { object->SetStringEncoding(std::string(encoding)); });
}

void barcode_set_version(BarcodeHandle* handle, int version) {
  if (QR* object = QrObject(handle)) GuardSetter([&] { object->SetVersion(version); });
}

void barcode_set_error_correction_level(BarcodeHandle* handle, const char* level) {
  QR* object = QrObject(handle);
  if (object == nullptr || level == nullptr) return;
  object->SetErrorCorrectionLevel(LevelFromText(level));
}

void barcode_set_encode_mode(BarcodeHandle* handle, const char* mode) {
  QR* object = QrObject(handle);
  if (object == nullptr || mode == nullptr) return;
  GuardSetter([&] { object->SetEncodeMode(std::string(ModeFromText(mode))); });
}

void barcode_set_code_size(BarcodeHandle* handle, const char* size) {
  if (size != nullptr) ForDataMatrix(handle);
}

void barcode_set_encode_scheme(BarcodeHandle* handle, const char* scheme) {
  if (scheme != nullptr) ForDataMatrix(handle);
}

void barcode_set_error_level(BarcodeHandle* handle, int /*level*/) { ForPdf417(handle); }

void barcode_set_columns(BarcodeHandle* handle, int /*columns*/) { ForPdf417(handle); }

void barcode_set_rows(BarcodeHandle* handle, int /*rows*/) { ForPdf417(handle); }

void barcode_set_aspect_ratio(BarcodeHandle* handle, double /*ratio*/) { ForPdf417(handle); }

void barcode_set_y_height(BarcodeHandle* handle, int /*y_height*/) { ForPdf417(handle); }

int barcode_draw_2d(BarcodeHandle* handle, const char* text, int size) {
  BarcodeBase2D* object = TwoDObject(handle);
  if (object == nullptr || text == nullptr) return 0;
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, size); });
}

int barcode_draw_2d_rect(BarcodeHandle* handle, const char* text, int width, int height) {
  BarcodeBase2D* object = TwoDObject(handle);
  if (object == nullptr || text == nullptr) return 0;
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, width, height); });
}

}  // extern "C"
