// Base of the two-dimensional symbologies: the string-encoding setting and the
// conversion of caller text into the bytes a 2D symbol carries.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "core/barcode_base.h"

namespace barcode_orv {

enum class StringEncoding : int { Utf8 = 0, ShiftJis = 1 };

class BarcodeBase2D : public BarcodeBase {
 public:
  explicit BarcodeBase2D(std::string output_format);
  explicit BarcodeBase2D(SDL_Renderer* canvas);  // draws onto the caller's renderer

  using BarcodeBase::Draw;
  // Text entry: converts with the stored encoding, then draws the bytes.
  bool Draw(const std::string& text, int x, int y, int width, int height) override;
  // Square symbol: Draw(text, x, y, size, size).
  virtual bool Draw(const std::string& text, int x, int y, int size);
  virtual bool Draw(const std::vector<uint8_t>& data, int x, int y, int size);
  // The symbology's real drawing routine (raster or SVG by output format).
  virtual bool Draw(const std::vector<uint8_t>& data, int x, int y, int width, int height) = 0;

  void SetStringEncoding(const std::string& encoding) { string_encoding_ = encoding; }
  void SetStringEncoding(StringEncoding encoding);
  std::string GetStringEncoding() const { return string_encoding_; }

  // The bytes a 2D encoder receives for `text` under `encoding`; empty on failure.
  static std::vector<uint8_t> ConvertStringToBytes(const std::string& text, const std::string& encoding);
  // iconv conversion; empty on any failure.
  static std::vector<uint8_t> ConvertEncoding(const std::string& text, const std::string& from, const std::string& to);
  static std::string DetectEncoding(const std::string& text);
  static bool IsValidUtf8(const std::string& text);
  static bool IsShiftJIS(const std::string& text);
  static std::vector<uint8_t> ConvertToUtf8(const std::string& text);
  static std::vector<uint8_t> ConvertToSJis(const std::string& text);
  static std::vector<uint8_t> convertUTF8(const std::string& text);
  static std::vector<uint8_t> convertShiftJIS(const std::string& text);

 private:
  std::string string_encoding_ = "utf-8";
};

}  // namespace barcode_orv
