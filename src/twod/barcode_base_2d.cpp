#include "twod/barcode_base_2d.h"

#include <iconv.h>

#include <cstdio>
#include <utility>

#include "core/log.h"
#include "gs1/gs1_element_string.h"
#include "twod/eci.h"

namespace barcode_orv {
namespace {

// The names handed to iconv; the caller's own spelling never reaches it.
constexpr const char* kIconvUtf8 = "utf-8";
constexpr const char* kIconvShiftJis = "shift-jis";

// Owns one iconv descriptor for the span of a single conversion.
class IconvHandle {
 public:
  IconvHandle(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~IconvHandle() { Close(); }
  IconvHandle(const IconvHandle&) = delete;
  IconvHandle& operator=(const IconvHandle&) = delete;

  bool valid() const { return cd_ != Invalid(); }
  iconv_t get() const { return cd_; }
  void Close() {
    if (valid()) iconv_close(std::exchange(cd_, Invalid()));
  }

 private:
  // iconv_open reports failure as the all-ones handle.
  static iconv_t Invalid() { return reinterpret_cast<iconv_t>(-1); }  // NOLINT(performance-no-int-to-ptr)
  iconv_t cd_;
};

constexpr bool InRange(unsigned char byte, unsigned char low, unsigned char high) {
  return byte >= low && byte <= high;
}

constexpr bool IsContinuation(unsigned char byte) { return (byte & 0xC0) == 0x80; }

bool IsShiftJisLead(unsigned char byte) { return InRange(byte, 0x81, 0x9F) || InRange(byte, 0xE0, 0xFC); }
bool IsShiftJisTrail(unsigned char byte) { return InRange(byte, 0x40, 0x7E) || InRange(byte, 0x80, 0xFC); }

// True when `count` bytes follow position `pos` and all of them are UTF-8 continuations.
bool ContinuationsFollow(const std::string& s, size_t pos, size_t count) {
  if (pos + count >= s.size()) return false;
  for (size_t i = 1; i <= count; ++i) {
    if (!IsContinuation(static_cast<unsigned char>(s[pos + i]))) return false;
  }
  return true;
}

// The verdict at the first byte that breaks the Shift_JIS walk: Shift_JIS unless the
// byte starts a complete UTF-8 sequence.
bool ShiftJisVerdictAtFailure(const std::string& s, size_t pos) {
  const auto byte = static_cast<unsigned char>(s[pos]);
  if (InRange(byte, 0xC0, 0xDF)) return !ContinuationsFollow(s, pos, 1);
  if (InRange(byte, 0xE0, 0xEF)) return !ContinuationsFollow(s, pos, 2);
  if (InRange(byte, 0xF0, 0xF7)) return !ContinuationsFollow(s, pos, 3);
  return true;
}

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

bool IsShiftJisSetting(const std::string& encoding) {
  return encoding == "shift-jis" || encoding == "Shift-JIS" || encoding == "shift_jis";
}

}  // namespace

BarcodeBase2D::BarcodeBase2D(std::string output_format) : BarcodeBase(std::move(output_format)) {}

BarcodeBase2D::BarcodeBase2D(SDL_Renderer* canvas) : BarcodeBase(canvas) {}

bool BarcodeBase2D::CarriesShiftJis() const { return IsShiftJisSetting(string_encoding_); }

std::string BarcodeBase2D::PayloadForSettings(const std::string& text, std::vector<uint8_t>& bytes) const {
  std::string problem = internal::EciProblem(eci_);
  if (!problem.empty()) return problem;
  if (gs1_) {
    if (eci_ != internal::kEciNone) return "GS1 data is carried without an ECI";
    try {
      const std::string data = internal::Gs1Concatenated(internal::ParseGs1ElementString(text));
      bytes.assign(data.begin(), data.end());
    } catch (const std::exception& error) {
      return std::string("GS1: ") + error.what();
    }
    return "";
  }
  internal::ConvertForEci(text, eci_, bytes, problem);
  return problem;
}

bool BarcodeBase2D::Draw(const std::string& text, int x, int y, int width, int height) {
  if (gs1_ || eci_ != internal::kEciNone) {
    std::vector<uint8_t> bytes;
    const std::string problem = PayloadForSettings(text, bytes);
    if (!problem.empty()) {
      log::Error(LogPrefix() + problem);
      return false;
    }
    return DrawBytes(bytes, x, y, width, height);
  }
  const std::vector<uint8_t> bytes = ConvertStringToBytes(text, string_encoding_);
  if (bytes.empty() && !text.empty()) {
    const std::string problem = LogPrefix() + ConversionProblem(text, string_encoding_);
    log::Reason(problem);
    Warn(problem);
    return Draw(bytes, x, y, width, height);
  }
  return DrawBytes(bytes, x, y, width, height);
}

bool BarcodeBase2D::DrawBytes(const std::vector<uint8_t>& data, int x, int y, int width, int height) {
  if (data.empty()) {
    const std::string problem = std::string(LogPrefix()) + "Empty data: the symbol would carry nothing";
    log::Reason(problem);
    Warn(problem);
  }
  return Draw(data, x, y, width, height);
}

std::string BarcodeBase2D::ConversionProblem(const std::string& text, const std::string& encoding) {
  const size_t bad = FirstInvalidUtf8(text);
  if (bad != std::string::npos) {
    char byte[8];
    std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned>(static_cast<unsigned char>(text[bad])));
    return "Text is neither valid UTF-8 nor Shift_JIS: byte " + std::string(byte) + " at offset " +
           std::to_string(bad) + " is not UTF-8";
  }
  if (IsShiftJisSetting(encoding)) {
    return "Character at offset " + std::to_string(FirstUnconvertible(text, kIconvUtf8, kIconvShiftJis)) +
           " has no Shift_JIS form";
  }
  return "Text cannot be converted";
}

size_t BarcodeBase2D::FirstUnconvertible(const std::string& text, const char* from, const char* to) {
  IconvHandle converter(to, from);
  if (!converter.valid()) return 0;
  std::string input = text;
  std::vector<char> output(input.size() * 4 + 4);
  char* in_ptr = input.data();
  size_t in_left = input.size();
  char* out_ptr = output.data();
  size_t out_left = output.size();
  iconv(converter.get(), &in_ptr, &in_left, &out_ptr, &out_left);
  return static_cast<size_t>(in_ptr - input.data());
}

bool BarcodeBase2D::Draw(const std::string& text, int x, int y, int size) { return Draw(text, x, y, size, size); }

bool BarcodeBase2D::Draw(const std::vector<uint8_t>& data, int x, int y, int size) {
  return Draw(data, x, y, size, size);
}

void BarcodeBase2D::SetStringEncoding(StringEncoding encoding) {
  string_encoding_ = encoding == StringEncoding::ShiftJis ? kIconvShiftJis : kIconvUtf8;
}

std::vector<uint8_t> BarcodeBase2D::ConvertStringToBytes(const std::string& text, const std::string& encoding) {
  const bool valid_utf8 = IsValidUtf8(text);
  if (IsShiftJisSetting(encoding)) {
    return valid_utf8 ? ConvertEncoding(text, kIconvUtf8, kIconvShiftJis) : Bytes(text);
  }
  // "utf-8", "UTF-8" and every unrecognised spelling carry UTF-8.
  return valid_utf8 ? Bytes(text) : ConvertEncoding(text, kIconvShiftJis, kIconvUtf8);
}

std::vector<uint8_t> BarcodeBase2D::ConvertEncoding(const std::string& text, const std::string& from,
                                                    const std::string& to) {
  // Nothing to convert; glibc's iconv also rejects a zero-sized output buffer.
  if (text.empty()) return {};
  IconvHandle converter(to.c_str(), from.c_str());
  if (!converter.valid()) return {};

  // One pass into a buffer sized once: four output bytes per input byte is enough for
  // any conversion between UTF-8 and Shift_JIS.
  std::string input = text;
  std::vector<uint8_t> output(input.size() * 4, 0);
  char* in_ptr = input.data();
  size_t in_left = input.size();
  char* out_ptr = reinterpret_cast<char*>(output.data());
  size_t out_left = output.size();
  const size_t result = iconv(converter.get(), &in_ptr, &in_left, &out_ptr, &out_left);
  converter.Close();

  // An invalid or incomplete sequence discards everything: no partial result.
  if (result == static_cast<size_t>(-1)) return {};
  output.resize(output.size() - out_left);
  return output;
}

std::string BarcodeBase2D::DetectEncoding(const std::string& text) {
  // Deliberate: only a two-byte UTF-8 sequence at the first non-ASCII byte counts as
  // UTF-8; three-byte sequences (kana, kanji) report Shift_JIS. The Data Matrix text
  // path relies on exactly this narrow answer.
  for (size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x80) continue;
    const bool two_byte_utf8 =
        InRange(byte, 0xC0, 0xDF) && i + 1 < text.size() && IsContinuation(static_cast<unsigned char>(text[i + 1]));
    return two_byte_utf8 ? kIconvUtf8 : kIconvShiftJis;
  }
  return kIconvUtf8;
}

bool BarcodeBase2D::IsValidUtf8(const std::string& text) { return FirstInvalidUtf8(text) == std::string::npos; }

size_t BarcodeBase2D::FirstInvalidUtf8(const std::string& text) {
  // Structural check only: overlong forms, surrogates and code points above U+10FFFF
  // are let through.
  size_t i = 0;
  while (i < text.size()) {
    const auto lead = static_cast<unsigned char>(text[i]);
    size_t continuations = 0;
    if (lead < 0x80) {
      continuations = 0;
    } else if ((lead & 0xE0) == 0xC0) {
      continuations = 1;
    } else if ((lead & 0xF0) == 0xE0) {
      continuations = 2;
    } else if ((lead & 0xF8) == 0xF0) {
      continuations = 3;
    } else {
      return i;
    }
    if (i + continuations >= text.size()) return i;
    for (size_t k = 1; k <= continuations; ++k) {
      if (!IsContinuation(static_cast<unsigned char>(text[i + k]))) return i;
    }
    i += continuations + 1;
  }
  return std::string::npos;
}

bool BarcodeBase2D::IsShiftJIS(const std::string& text) {
  // Deliberate: an asymmetric heuristic. Lead/trail pairs are taken greedily, so many
  // UTF-8 kana scan as Shift_JIS; at the first byte that breaks the walk, only a
  // complete UTF-8 sequence there says "not Shift_JIS". Drawing paths use IsValidUtf8.
  bool pair_found = false;
  size_t i = 0;
  while (i < text.size()) {
    const auto byte = static_cast<unsigned char>(text[i]);
    if (byte < 0x80) {
      ++i;
      continue;
    }
    const bool has_trail = i + 1 < text.size();
    if (!IsShiftJisLead(byte) || !has_trail || !IsShiftJisTrail(static_cast<unsigned char>(text[i + 1]))) {
      return ShiftJisVerdictAtFailure(text, i);
    }
    pair_found = true;
    i += 2;
  }
  return pair_found;
}

std::vector<uint8_t> BarcodeBase2D::ConvertToUtf8(const std::string& text) {
  return IsShiftJIS(text) ? ConvertEncoding(text, kIconvShiftJis, kIconvUtf8) : Bytes(text);
}

std::vector<uint8_t> BarcodeBase2D::ConvertToSJis(const std::string& text) {
  return IsShiftJIS(text) ? Bytes(text) : ConvertEncoding(text, kIconvUtf8, kIconvShiftJis);
}

std::vector<uint8_t> BarcodeBase2D::convertUTF8(const std::string& text) { return Bytes(text); }

std::vector<uint8_t> BarcodeBase2D::convertShiftJIS(const std::string& text) {
  std::vector<uint8_t> bytes = Bytes(text);
  for (uint8_t& byte : bytes) {
    if (byte >= 0x80) byte = '?';
  }
  return bytes;
}

}  // namespace barcode_orv
