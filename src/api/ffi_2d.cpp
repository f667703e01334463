// The C interface of the two-dimensional symbologies: string encoding, the QR settings,
// the Data Matrix and PDF417 settings, and the 2D draw entry points.
#include <cstring>
#include <iterator>
#include <string>

#include "api/ffi_internal.h"
#include "twod/barcode_base_2d.h"
#include "twod/datamatrix.h"
#include "twod/pdf417.h"
#include "twod/qr.h"

using barcode_orv::BarcodeBase2D;
using barcode_orv::DataMatrix;
using barcode_orv::PDF417;
using barcode_orv::QR;
using barcode_orv::QRErrorCorrectionLevel;
using barcode_orv::ffi::GuardDraw;
using barcode_orv::ffi::GuardSetter;
using barcode_orv::ffi::ObjectFor;
using barcode_orv::ffi::PartOf;

namespace {

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

// "AUTO" and every unknown text mean the automatic size (an unknown one is remembered).
void SetCodeSizeFromText(DataMatrix& object, const char* text) {
  for (int i = 0; i < barcode_orv::internal::kDataMatrixSizeCount; ++i) {
    if (Is(text, barcode_orv::internal::kDataMatrixSizes[i].name)) return object.SetCodeSize(i);
  }
  if (Is(text, "AUTO_RECT")) return object.SetCodeSize(barcode_orv::internal::kAutoRect);
  if (Is(text, "AUTO_DMRE")) return object.SetCodeSize(barcode_orv::internal::kAutoDmre);
  if (Is(text, "AUTO")) return object.SetCodeSize(barcode_orv::internal::kAutoSize);
  object.SetUnknownCodeSize(text);
}

int SchemeFromText(const char* text) {
  static constexpr const char* kSchemes[] = {"ASCII", "C40", "TEXT", "X12", "EDIFACT", "BASE256"};
  for (int i = 0; i < static_cast<int>(std::size(kSchemes)); ++i) {
    if (Is(text, kSchemes[i])) return i;
  }
  return static_cast<int>(barcode_orv::internal::Encodation::kAuto);
}

}  // namespace

extern "C" {

void barcode_set_string_encoding(BarcodeHandle* handle, const char* encoding) {
  BarcodeBase2D* object = ObjectFor<PartOf("barcode_set_string_encoding")>(handle);
  if (object == nullptr || encoding == nullptr) return;
  GuardSetter([&] { object->SetStringEncoding(std::string(encoding)); });
}

void barcode_set_version(BarcodeHandle* handle, int version) {
  if (QR* object = ObjectFor<PartOf("barcode_set_version")>(handle)) GuardSetter([&] { object->SetVersion(version); });
}

void barcode_set_error_correction_level(BarcodeHandle* handle, const char* level) {
  QR* object = ObjectFor<PartOf("barcode_set_error_correction_level")>(handle);
  if (object == nullptr || level == nullptr) return;
  object->SetErrorCorrectionLevel(LevelFromText(level));
}

void barcode_set_encode_mode(BarcodeHandle* handle, const char* mode) {
  QR* object = ObjectFor<PartOf("barcode_set_encode_mode")>(handle);
  if (object == nullptr || mode == nullptr) return;
  GuardSetter([&] { object->SetEncodeMode(std::string(ModeFromText(mode))); });
}

void barcode_set_qr_mask(BarcodeHandle* handle, int mask) {
  if (QR* object = ObjectFor<PartOf("barcode_set_qr_mask")>(handle)) object->SetMask(mask);
}

void barcode_set_eci(BarcodeHandle* handle, int eci) {
  if (BarcodeBase2D* object = ObjectFor<PartOf("barcode_set_eci")>(handle)) object->SetEci(eci);
}

void barcode_set_gs1(BarcodeHandle* handle, int on) {
  if (BarcodeBase2D* object = ObjectFor<PartOf("barcode_set_gs1")>(handle)) object->SetGs1(on != 0);
}

void barcode_set_code_size(BarcodeHandle* handle, const char* size) {
  DataMatrix* object = ObjectFor<PartOf("barcode_set_code_size")>(handle);
  if (object != nullptr && size != nullptr) GuardSetter([&] { SetCodeSizeFromText(*object, size); });
}

void barcode_set_encode_scheme(BarcodeHandle* handle, const char* scheme) {
  DataMatrix* object = ObjectFor<PartOf("barcode_set_encode_scheme")>(handle);
  if (object != nullptr && scheme != nullptr) object->SetEncodeScheme(SchemeFromText(scheme));
}

void barcode_set_error_level(BarcodeHandle* handle, int level) {
  if (PDF417* object = ObjectFor<PartOf("barcode_set_error_level")>(handle))
    object->SetErrorLevel(static_cast<barcode_orv::PDF417ErrorLevel>(level));
}

void barcode_set_columns(BarcodeHandle* handle, int columns) {
  if (PDF417* object = ObjectFor<PartOf("barcode_set_columns")>(handle)) object->SetColumns(columns);
}

void barcode_set_rows(BarcodeHandle* handle, int rows) {
  if (PDF417* object = ObjectFor<PartOf("barcode_set_rows")>(handle)) object->SetRows(rows);
}

void barcode_set_aspect_ratio(BarcodeHandle* handle, double ratio) {
  if (PDF417* object = ObjectFor<PartOf("barcode_set_aspect_ratio")>(handle)) object->SetAspectRatio(ratio);
}

void barcode_set_y_height(BarcodeHandle* handle, int y_height) {
  if (PDF417* object = ObjectFor<PartOf("barcode_set_y_height")>(handle)) object->SetYHeight(y_height);
}

int barcode_draw_2d(BarcodeHandle* handle, const char* text, int size) {
  BarcodeBase2D* object = ObjectFor<PartOf("barcode_draw_2d")>(handle);
  if (object == nullptr || text == nullptr) return barcode_orv::ffi::RefuseDraw(handle, text, "barcode_draw_2d");
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, size); });
}

int barcode_draw_2d_rect(BarcodeHandle* handle, const char* text, int width, int height) {
  BarcodeBase2D* object = ObjectFor<PartOf("barcode_draw_2d_rect")>(handle);
  if (object == nullptr || text == nullptr) return barcode_orv::ffi::RefuseDraw(handle, text, "barcode_draw_2d_rect");
  return GuardDraw(handle, [&] { return object->Draw(std::string(text), 0, 0, width, height); });
}

int barcode_draw_2d_bytes(BarcodeHandle* handle, const unsigned char* data, size_t length, int width, int height) {
  BarcodeBase2D* object = ObjectFor<PartOf("barcode_draw_2d_bytes")>(handle);
  if (object == nullptr) return barcode_orv::ffi::RefuseDraw(handle, "", "barcode_draw_2d_bytes");
  if (data == nullptr && length != 0) {
    const barcode_orv::ffi::HandleEntry entry(handle);
    if (entry.entered()) handle->last_error = "barcode_draw_2d_bytes: the data is null";
    return 0;
  }
  return GuardDraw(handle, [&] {
    const std::vector<uint8_t> bytes(data, data + length);
    return object->DrawBytes(bytes, 0, 0, width, height);
  });
}

}  // extern "C"
