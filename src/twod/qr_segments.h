// QR Code bit streams as ISO/IEC 18004 writes them (sections 7.3 to 7.4): numeric,
// alphanumeric, byte and Kanji segments chosen by a shortest-path search over the modes,
// an ECI designator where the byte segments need one, and FNC1 in first position for
// GS1 data.
#pragma once

#include <cstdint>
#include <vector>

#include "twod/qr_encoder.h"

namespace barcode_orv::qr_internal {

// ECI assignment numbers of the character sets a payload may arrive in.
inline constexpr int kEciShiftJis = 20;
inline constexpr int kEciUtf8 = 26;

enum SegmentMode : int { kNumericMode = 0, kAlphanumericMode = 1, kByteMode = 2, kKanjiMode = 3 };

// Width of the character-count field of `mode` at `version` (ISO/IEC 18004 table 3).
int CountFieldBits(int mode, int version);

struct StreamRequest {
  int charset_eci = kEciUtf8;  // the payload's character set: 26 UTF-8, 20 Shift_JIS, or the declared ECI's
  bool declare_eci = false;    // the caller declared charset_eci: it is written whatever the text
  bool gs1 = false;            // FNC1 in first position; GS (0x1D) separates the elements
  int level = kLevelM;
  int requested_version = 0;  // 1..40: the smallest version to use
};

struct Segment {
  int mode;
  size_t begin;  // the payload bytes it carries
  size_t end;
};

struct Stream {
  std::vector<BitField> fields;  // complete for `version`, terminator and padding excepted
  std::vector<Segment> segments;
  int version = 0;
  int eci = -1;  // the ECI written, -1 for none
  int bits = 0;
};

// The shortest stream for `data`, in the smallest version that holds it (or the requested
// one, when larger). Kanji mode carries the characters that have a Shift_JIS double-byte
// form in the Kanji ranges; byte segments with bytes above 0x7F get the payload's ECI
// unless one is declared. Throws QRCapacityError beyond version 40.
Stream BuildStream(const std::vector<uint8_t>& data, const StreamRequest& request);

}  // namespace barcode_orv::qr_internal
