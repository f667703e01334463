// Guards the QR Code encoder: the bit stream and Reed-Solomon codewords against the
// standard's worked example, the version choice at its edges, the mask penalty rules and tie
// rule on hand-scored pictures, and every version at every level read back by an independent
// reader (full symbols end with every terminator length and partial byte).
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "support/zxing_decode.h"
#include "twod/qr_encoder.h"
#include "twod/qr_segments.h"

namespace barcode_orv::qr_internal {
namespace {

using testing::DecodeRgba;
using testing::RenderModules;
using testing::Symbology;

std::vector<uint8_t> Bytes(const std::string& text) { return {text.begin(), text.end()}; }

std::vector<std::vector<bool>> ByColumn(const ModuleGrid& matrix) {
  std::vector<std::vector<bool>> columns(matrix.cols(), std::vector<bool>(matrix.cols()));
  for (int col = 0; col < matrix.cols(); ++col) {
    for (int row = 0; row < matrix.cols(); ++row) columns[col][row] = matrix.dark(col, row);
  }
  return columns;
}

struct Encoded {
  ModuleGrid matrix;
  int version = 0;
  int mode_indicator = 0;
};

Encoded Encode(const std::vector<uint8_t>& data, const std::string& mode, int level, int requested = 0) {
  QRJam jam;
  jam.SetModeString(mode);
  jam.SetErrorCorrectionIndex(level);
  jam.SetRequestedVersion(requested);
  Encoded out;
  out.matrix = jam.QRGetData(data);
  out.version = jam.chosen_version();
  out.mode_indicator = jam.mode_indicator();
  return out;
}

std::string DecodeMatrix(const ModuleGrid& matrix) {
  // Three pixels a module: the reader misses version 40 at two.
  const testing::Decoded decoded = DecodeRgba(RenderModules(ByColumn(matrix), 3), Symbology::kQRCode, 12);
  EXPECT_TRUE(decoded.ok);
  return decoded.bytes;
}

// ---- Bit stream ----

// ISO/IEC 18004 worked example: "01234567" at 1-M.
TEST(QrBitStream, StandardExampleCodewords) {
  const std::vector<uint8_t> data = QRCodeGet8BitData(BuildSegment(Bytes("01234567"), true), 16);
  const std::vector<uint8_t> expected_data = {0x10, 0x20, 0x0C, 0x56, 0x61, 0x80, 0xEC, 0x11,
                                              0xEC, 0x11, 0xEC, 0x11, 0xEC, 0x11, 0xEC, 0x11};
  EXPECT_EQ(data, expected_data);
  const std::vector<uint8_t> expected_ecc = {0xA5, 0x24, 0xD4, 0xC1, 0xED, 0x36, 0xC7, 0x87, 0x2C, 0x55};
  EXPECT_EQ(QRCodeGetTotalData(data, 10), expected_ecc);
}

// ---- Error correction ----

TEST(QrReedSolomon, ByteXorKeepsLongerTailAndAddsZero) {
  EXPECT_EQ(QRCodeGetByteData({0x01}, {0x02, 0x03}), (std::vector<uint8_t>{0x03, 0x03, 0x00}));
}

// ---- Version choice ----

TEST(QrVersion, SelectionAndRaising) {
  const std::vector<std::tuple<const char*, std::vector<uint8_t>, std::string, int, int, int>> cases = {
      {"34 digits fill 1-M", std::vector<uint8_t>(34, '5'), "N", kLevelM, 0, 1},
      {"35 digits need 2-M", std::vector<uint8_t>(35, '5'), "N", kLevelM, 0, 2},
      {"40 bytes at H, version 1 requested, raised", std::vector<uint8_t>(40, 'x'), "B", kLevelH, 1, 5},
      {"larger requested version is kept", Bytes("HELLO"), "B", kLevelM, 12, 12},
      // 272 bytes fit version 10 with an 8-bit count, but version 10 needs 16 bits.
      {"271 bytes at L: version 10", std::vector<uint8_t>(271, 'x'), "B", kLevelL, 0, 10},
      {"272 bytes at L: count growth pushes to 11", std::vector<uint8_t>(272, 'x'), "B", kLevelL, 0, 11},
      {"2953 bytes at L: version 40", std::vector<uint8_t>(2953, 'x'), "B", kLevelL, 0, 40},
  };
  for (const auto& [name, data, mode, level, requested, version] : cases) {
    const Encoded encoded = Encode(data, mode, level, requested);
    EXPECT_EQ(encoded.version, version) << name;
    EXPECT_EQ(encoded.matrix.cols(), SideForVersion(version)) << name;
    EXPECT_EQ(encoded.mode_indicator, mode == "N" ? 1 : 4) << name;
  }
}

TEST(QrVersion, TooLongForVersion40Throws) {
  QRJam jam;
  jam.SetErrorCorrectionIndex(kLevelL);
  jam.qrcode_write_barcode(Bytes("seed"));
  ASSERT_GT(jam.chosen_version(), 0);
  try {
    jam.qrcode_write_barcode(std::vector<uint8_t>(2954, 'x'));
    FAIL() << "no exception";
  } catch (const QRCapacityError& error) {
    EXPECT_STREQ(error.what(),
                 "Data too long for QR Code. Data requires more capacity than Version 40 can provide. "
                 "Reduce data length or use a lower error correction level.");
  }
  EXPECT_EQ(jam.chosen_version(), 0);
  jam.qrcode_write_barcode({});  // an empty payload leaves no matrix
  EXPECT_TRUE(jam.matrix().empty());
}

// ---- Mask scoring ----

// Every mask sees the same picture: '#' dark, '.' light.
MaskCandidates Uniform(const std::vector<std::string>& rows, int data_modules) {
  MaskCandidates candidates(static_cast<int>(rows.size()), data_modules);
  for (size_t row = 0; row < rows.size(); ++row) {
    for (size_t col = 0; col < rows.size(); ++col) {
      candidates.set(static_cast<int>(col), static_cast<int>(row), rows[row][col] == '#' ? 0xFF : 0x00);
    }
  }
  return candidates;
}

TEST(QrMask, PenaltyRules) {
  const std::vector<std::tuple<const char*, std::vector<std::string>, int, int>> cases = {
      // 10 runs of 5 (30), 16 blocks (48), nothing dark (90).
      {"all light 5x5", {".....", ".....", ".....", ".....", "....."}, 25, 168},
      // 16 runs of 8 (16 x 6), 49 blocks (147), nothing dark (90).
      {"all light 8x8", std::vector<std::string>(8, "........"), 64, 333},
      // Balance uses the data-area size given, not the matrix: 25 of 100 dark is step 5.
      {"all dark 5x5 in a larger data area", std::vector<std::string>(5, "#####"), 100, 30 + 48 + 40},
      {"checkerboard", {"#.#.#.", ".#.#.#", "#.#.#.", ".#.#.#", "#.#.#.", ".#.#.#"}, 36, 0},
      // The bare 1011101 row scores 40 without light margins; besides it six light rows
      // (30), light columns 1 and 5 (10), 24 light blocks (72) and 5 of 49 dark (70): 222.
      {"finder row", {".......", ".......", ".......", "#.###.#", ".......", ".......", "......."}, 49, 222},
  };
  for (const auto& [name, rows, data_modules, penalty] : cases) {
    const std::array<int, kMaskCount> penalties = MaskPenalties(Uniform(rows, data_modules));
    for (int mask = 0; mask < kMaskCount; ++mask) EXPECT_EQ(penalties[mask], penalty) << name;
  }
}

// A 6x6 checkerboard (penalty 0) for the masks in `best`, a checkerboard with two
// flipped modules forming a dark 2x2 block (penalty 13) for those in `runner_up`, all
// light (penalty 213) for the rest.
MaskCandidates Contest(uint8_t best, uint8_t runner_up) {
  MaskCandidates candidates(6, 36);
  for (int row = 0; row < 6; ++row) {
    for (int col = 0; col < 6; ++col) {
      const bool checker = (row + col) % 2 == 0;
      const bool flipped = (row == 0 && col == 1) || (row == 1 && col == 0);
      uint8_t bits = checker ? best : 0;
      if (checker != flipped) bits |= runner_up;
      candidates.set(col, row, bits);
    }
  }
  return candidates;
}

TEST(QrMask, LowestPenaltyWinsAndTiesGoToLowerNumber) {
  const std::tuple<uint8_t, uint8_t, int> cases[] = {
      {0b00101000, 0, 3},           // masks 3 and 5 tie
      {0b10000001, 0, 0},           // masks 0 and 7 tie
      {0b10000000, 0, 7},           // a single best mask
      {0b00000100, 0b00000010, 2},  // a better higher mask beats a worse lower one
      {0, 0, 0},                    // everything equal
  };
  for (const auto& [best, runner_up, chosen] : cases)
    EXPECT_EQ(QRCodeChooseMaskNumber(Contest(best, runner_up)), chosen) << int(best);
}

// ---- Segments (ISO/IEC 18004 sections 7.3, 7.4) and the section 7.8.3 penalty ----

// Streams worked out by hand: modes, the ECI written and the bit count at versions 1-9.
TEST(QrSegments, ShortestStreams) {
  const std::tuple<const char*, int, bool, std::vector<int>, int, int> cases[] = {
      {"01234567", kEciUtf8, false, {kNumericMode}, -1, 4 + 10 + 27},
      {"AC-42", kEciUtf8, false, {kAlphanumericMode}, -1, 4 + 9 + 2 * 11 + 6},
      {"ABC12345678901234", kEciUtf8, false, {kAlphanumericMode, kNumericMode}, -1, 30 + 61},
      {"\xE6\x97\xA5\xE6\x9C\xAC", kEciUtf8, false, {kKanjiMode}, -1, 4 + 8 + 2 * 13},  // UTF-8 kanji
      {"\x93\xFA\x96\x7B", kEciShiftJis, false, {kKanjiMode}, -1, 4 + 8 + 2 * 13},      // Shift_JIS
      {"caf\xC3\xA9", kEciUtf8, false, {kByteMode}, kEciUtf8, 12 + 4 + 8 + 5 * 8},
      {"\xB1", kEciShiftJis, false, {kByteMode}, kEciShiftJis, 12 + 4 + 8 + 8},  // half-width katakana
      {"0112345678901231", kEciUtf8, true, {kNumericMode}, -1, 4 + 4 + 10 + 5 * 10 + 4},
      {"10AB\x1D"
       "21X",
       kEciUtf8,
       true,
       {kAlphanumericMode},
       -1,
       4 + 4 + 9 + 4 * 11},  // GS as '%'
  };
  for (const auto& [text, charset, gs1, modes, eci, bits] : cases) {
    StreamRequest request;
    request.charset_eci = charset;
    request.gs1 = gs1;
    const Stream stream = BuildStream(Bytes(text), request);
    std::vector<int> got;
    for (const Segment& segment : stream.segments) got.push_back(segment.mode);
    EXPECT_EQ(got, modes) << text;
    EXPECT_EQ(stream.eci, eci) << text;
    EXPECT_EQ(stream.bits, bits) << text;
  }
}

ModuleGrid Picture(const std::vector<std::string>& rows) {
  ModuleGrid matrix(static_cast<int>(rows.size()), static_cast<int>(rows.size()));
  for (size_t row = 0; row < rows.size(); ++row) {
    for (size_t col = 0; col < rows.size(); ++col)
      matrix.set(static_cast<int>(col), static_cast<int>(row), rows[row][col] == '#');
  }
  return matrix;
}

TEST(QrMask, IsoPenaltyRules) {
  std::vector<std::string> finder(11, "...........");
  finder[5] = "#.###.#....";
  const std::tuple<const char*, std::vector<std::string>, int> cases[] = {
      // N1 10 runs of 5 (30), N2 16 blocks (48), N4 no dark module (100).
      {"all light", std::vector<std::string>(5, "....."), 178},
      {"checkerboard", {"#.#.#.", ".#.#.#", "#.#.#.", ".#.#.#", "#.#.#.", ".#.#.#"}, 0},
      // N1 174, N2 86 blocks (258), N3 light beyond the edge and after it (80), N4 5 of 121 (90).
      {"finder-like row", finder, 602},
  };
  for (const auto& [name, rows, penalty] : cases) EXPECT_EQ(IsoPenalty(Picture(rows)), penalty) << name;
}

// ---- Round trips through an independent reader ----

// Byte mode fills each version to the last byte its capacity allows, so every block is
// full; the same count of digits needs a smaller version and pads across many blocks.
TEST(QrRoundTrip, EveryVersionAndLevel) {
  std::mt19937 random(2024);
  for (int level = kLevelL; level <= kLevelH; ++level) {
    for (int version = kMinVersion; version <= kMaxVersion; ++version) {
      const int length = (DataCapacityBits(version, level) - 12 - CountFieldGrowth(false, version)) / 8;
      for (bool numeric : {false, true}) {
        std::vector<uint8_t> payload(static_cast<size_t>(length));
        for (uint8_t& byte : payload) byte = static_cast<uint8_t>(numeric ? '0' + random() % 10 : random());
        const Encoded encoded = Encode(payload, numeric ? "N" : "B", level);
        ASSERT_TRUE(numeric || encoded.version == version) << "level " << level << " version " << version;
        ASSERT_EQ(DecodeMatrix(encoded.matrix), std::string(payload.begin(), payload.end()))
            << "version " << version << " level " << level << (numeric ? " numeric" : " byte");
      }
    }
  }
}

TEST(QrRoundTrip, AlphanumericAndKanjiSettingsCarryBytes) {
  for (const char* mode : {"A", "K", "B", "x"}) {
    const std::vector<uint8_t> payload = Bytes("hello, \x82\xa0 world");
    const Encoded encoded = Encode(payload, mode, kLevelM);
    EXPECT_EQ(encoded.mode_indicator, 4) << mode;
    EXPECT_EQ(DecodeMatrix(encoded.matrix), std::string(payload.begin(), payload.end())) << mode;
  }
}

}  // namespace
}  // namespace barcode_orv::qr_internal
