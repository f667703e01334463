#include "twod/qr_segments.h"

#include <iconv.h>

#include <string_view>
#include <utility>

#include "twod/shortest_path.h"

namespace barcode_orv::qr_internal {
namespace {

constexpr std::string_view kAlphanumericSet = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ $%*+-./:";
constexpr uint8_t kGroupSeparator = 0x1D;
constexpr int kPercentValue = 38;  // '%', which stands for FNC1 (GS) in GS1 data

// Costs in sixths of a bit: a digit is 10/3 bits, an alphanumeric character 11/2.
constexpr int kSixths = 6;
constexpr int kDigitCost = 20;
constexpr int kAlphanumericCost = 33;
constexpr int kByteCost = 48;
constexpr int kKanjiCost = 78;
constexpr int kModeIndicatorBits = 4;

// One character of the payload: its bytes and its Kanji mode value (-1 when it has none).
struct Unit {
  size_t begin;
  size_t end;
  int kanji;
};

// The 13-bit Kanji mode value of a Shift_JIS double-byte code, or -1 outside the ranges
// 8140-9FFC and E040-EBBF (ISO/IEC 18004 section 7.4.6).
int KanjiValue(unsigned code) {
  unsigned offset = 0;
  if (code >= 0x8140 && code <= 0x9FFC) {
    offset = code - 0x8140;
  } else if (code >= 0xE040 && code <= 0xEBBF) {
    offset = code - 0xC140;
  } else {
    return -1;
  }
  const unsigned trail = code & 0xFF;
  if (trail < 0x40 || trail == 0x7F || trail > 0xFC) return -1;
  return static_cast<int>((offset >> 8) * 0xC0 + (offset & 0xFF));
}

bool IsShiftJisLead(uint8_t byte) { return (byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC); }

// Converts single characters between two character sets with one iconv descriptor.
class CharConverter {
 public:
  CharConverter(const char* to, const char* from) : cd_(iconv_open(to, from)) {}
  ~CharConverter() {
    if (valid()) iconv_close(cd_);
  }
  CharConverter(const CharConverter&) = delete;
  CharConverter& operator=(const CharConverter&) = delete;

  bool valid() const { return cd_ != reinterpret_cast<iconv_t>(-1); }  // NOLINT(performance-no-int-to-ptr)
  // The converted bytes, empty when the character has no form in the target set.
  std::string Convert(std::string_view in) {
    if (!valid()) return {};
    std::string input(in);
    char out[16];
    char* in_ptr = input.data();
    size_t in_left = input.size();
    char* out_ptr = out;
    size_t out_left = sizeof out;
    iconv(cd_, nullptr, nullptr, nullptr, nullptr);
    if (iconv(cd_, &in_ptr, &in_left, &out_ptr, &out_left) == static_cast<size_t>(-1) || in_left != 0) return {};
    return std::string(out, sizeof out - out_left);
  }

 private:
  iconv_t cd_;
};

size_t Utf8Length(uint8_t lead) {
  if (lead < 0x80) return 1;
  if ((lead & 0xE0) == 0xC0) return 2;
  if ((lead & 0xF0) == 0xE0) return 3;
  if ((lead & 0xF8) == 0xF0) return 4;
  return 1;
}

// Splits the payload into characters; Kanji values only where the character set has them.
std::vector<Unit> SplitUnits(const std::vector<uint8_t>& data, int charset_eci) {
  std::vector<Unit> units;
  units.reserve(data.size());
  if (charset_eci == kEciShiftJis) {
    for (size_t i = 0; i < data.size();) {
      if (IsShiftJisLead(data[i]) && i + 1 < data.size()) {
        units.push_back({i, i + 2, KanjiValue((unsigned{data[i]} << 8) | data[i + 1])});
        i += 2;
      } else {
        units.push_back({i, i + 1, -1});
        ++i;
      }
    }
    return units;
  }
  const bool utf8 = charset_eci == kEciUtf8;
  CharConverter to_sjis("shift-jis", "utf-8");
  CharConverter from_sjis("utf-8", "shift-jis");
  for (size_t i = 0; i < data.size();) {
    const size_t length = utf8 ? std::min(Utf8Length(data[i]), data.size() - i) : 1;
    int kanji = -1;
    if (utf8 && length > 1) {
      const std::string_view character(reinterpret_cast<const char*>(data.data() + i), length);
      const std::string sjis = to_sjis.Convert(character);
      // Only characters that come back unchanged: the reader converts the other way.
      if (sjis.size() == 2 && from_sjis.Convert(sjis) == character) {
        kanji = KanjiValue((unsigned{static_cast<uint8_t>(sjis[0])} << 8) | static_cast<uint8_t>(sjis[1]));
      }
    }
    units.push_back({i, i + length, kanji});
    i += length;
  }
  return units;
}

struct Variant {
  bool ascii_bytes_only;  // no ECI: byte segments keep to ASCII
  int eci;                // -1 or the ECI written
  // Kanji segments beside byte segments under an ECI other than Shift_JIS's are read
  // back wrongly or not at all by deployed readers (ZXing-cpp 1.4, zbar 0.23).
  bool kanji;
};

class Segmenter {
 public:
  Segmenter(const std::vector<uint8_t>& data, const std::vector<Unit>& units, const StreamRequest& request)
      : data_(data), units_(units), request_(request) {}

  // The shortest stream of one variant with the count fields of `version`; bits < 0 when
  // the variant cannot carry the payload.
  Stream Build(const Variant& variant, int version) {
    lattice_.Reset(units_.size());
    for (size_t pos = 0; pos < units_.size(); ++pos) {
      for (int mode = 0; mode < 4; ++mode) {
        const int cost = UnitCost(pos, mode, variant);
        if (cost < 0) continue;
        const int header = kSixths * (kModeIndicatorBits + CountFieldBits(mode, version));
        if (pos == 0) {
          lattice_.Relax(1, mode, header + cost, 0, -1, static_cast<uint8_t>(mode + 1));
          continue;
        }
        for (int from = 0; from < 4; ++from) {
          if (!lattice_.reached(pos, from)) continue;
          lattice_.Relax(pos + 1, mode, lattice_.cost(pos, from) + (from == mode ? 0 : header) + cost, pos, from,
                         static_cast<uint8_t>(mode + 1));
        }
      }
    }
    int best = -1;
    for (int mode = 0; mode < 4; ++mode) {
      if (lattice_.reached(units_.size(), mode) &&
          (best < 0 || lattice_.cost(units_.size(), mode) < lattice_.cost(units_.size(), best))) {
        best = mode;
      }
    }
    Stream stream;
    stream.bits = -1;
    if (best < 0) return stream;
    for (const auto& step : lattice_.Path(units_.size(), best)) {
      const Unit& unit = units_[step.pos - 1];
      if (stream.segments.empty() || stream.segments.back().mode != step.state) {
        stream.segments.push_back({step.state, unit.begin, unit.end});
      } else {
        stream.segments.back().end = unit.end;
      }
    }
    Write(stream, variant, version);
    return stream;
  }

  // One byte segment for the whole payload: the single-mode bound the search must meet.
  Stream BuildByteOnly(const Variant& variant, int version) {
    Stream stream;
    stream.bits = -1;
    for (size_t pos = 0; pos < units_.size(); ++pos) {
      if (UnitCost(pos, kByteMode, variant) < 0) return stream;
    }
    stream.segments.push_back({kByteMode, 0, data_.size()});
    Write(stream, variant, version);
    return stream;
  }

 private:
  bool Gs1() const { return request_.gs1; }

  // Cost of unit `pos` in `mode` in sixths of a bit, -1 when the mode cannot carry it.
  int UnitCost(size_t pos, int mode, const Variant& variant) const {
    const Unit& unit = units_[pos];
    const size_t length = unit.end - unit.begin;
    const uint8_t first = data_[unit.begin];
    switch (mode) {
      case kNumericMode: return length == 1 && first >= '0' && first <= '9' ? kDigitCost : -1;
      case kAlphanumericMode:
        if (length != 1) return -1;
        // ISO/IEC 18004 section 7.4.8 writes a data '%' as "%%", which ZXing-cpp 1.4 reads
        // back cut short: GS1 data keeps '%' to byte mode.
        if (Gs1() && first == '%') return -1;
        if (Gs1() && first == kGroupSeparator) return kAlphanumericCost;
        return kAlphanumericSet.find(static_cast<char>(first)) != std::string_view::npos ? kAlphanumericCost : -1;
      case kByteMode:
        if (variant.ascii_bytes_only) {
          for (size_t i = unit.begin; i < unit.end; ++i) {
            if (data_[i] >= 0x80) return -1;
          }
        }
        return kByteCost * static_cast<int>(length);
      case kKanjiMode: return variant.kanji && unit.kanji >= 0 ? kKanjiCost : -1;
      default: return -1;
    }
  }

  void Write(Stream& stream, const Variant& variant, int version) const {
    std::vector<BitField>& fields = stream.fields;
    stream.eci = variant.eci;
    if (variant.eci >= 0) {
      fields.push_back({0b0111, 4});
      const auto eci = static_cast<uint32_t>(variant.eci);
      if (eci < 128) {
        fields.push_back({eci, 8});
      } else if (eci < 16384) {
        fields.push_back({0b10u << 14 | eci, 16});
      } else {
        fields.push_back({0b110u << 21 | eci, 24});
      }
    }
    if (Gs1()) fields.push_back({0b0101, 4});
    for (const Segment& segment : stream.segments) WriteSegment(segment, version, fields);
    stream.bits = 0;
    for (const BitField& field : fields) stream.bits += field.bits;
  }

  void WriteSegment(const Segment& segment, int version, std::vector<BitField>& fields) const {
    static constexpr uint32_t kIndicator[] = {0b0001, 0b0010, 0b0100, 0b1000};
    fields.push_back({kIndicator[segment.mode], kModeIndicatorBits});
    const size_t count_at = fields.size();
    fields.push_back({0, CountFieldBits(segment.mode, version)});
    uint32_t count = 0;
    switch (segment.mode) {
      case kNumericMode: {
        static constexpr int kGroupBits[4] = {0, 4, 7, 10};
        for (size_t start = segment.begin; start < segment.end; start += 3) {
          const size_t digits = std::min<size_t>(3, segment.end - start);
          uint32_t value = 0;
          for (size_t i = 0; i < digits; ++i) value = value * 10 + (data_[start + i] - '0');
          fields.push_back({value, kGroupBits[digits]});
        }
        count = static_cast<uint32_t>(segment.end - segment.begin);
        break;
      }
      case kAlphanumericMode: {
        std::vector<uint32_t> values;
        for (size_t i = segment.begin; i < segment.end; ++i) {
          const uint8_t c = data_[i];
          if (Gs1() && c == kGroupSeparator) {
            values.push_back(kPercentValue);
            continue;
          }
          values.push_back(static_cast<uint32_t>(kAlphanumericSet.find(static_cast<char>(c))));
        }
        for (size_t i = 0; i < values.size(); i += 2) {
          if (i + 1 < values.size()) {
            fields.push_back({values[i] * 45 + values[i + 1], 11});
          } else {
            fields.push_back({values[i], 6});
          }
        }
        count = static_cast<uint32_t>(values.size());
        break;
      }
      case kByteMode:
        for (size_t i = segment.begin; i < segment.end; ++i) fields.push_back({data_[i], 8});
        count = static_cast<uint32_t>(segment.end - segment.begin);
        break;
      case kKanjiMode:
        for (const Unit& unit : units_) {
          if (unit.begin >= segment.begin && unit.end <= segment.end) {
            fields.push_back({static_cast<uint32_t>(unit.kanji), 13});
            ++count;
          }
        }
        break;
      default: break;
    }
    fields[count_at].value = count;
  }

  const std::vector<uint8_t>& data_;
  const std::vector<Unit>& units_;
  const StreamRequest& request_;
  internal::Lattice<uint8_t, 4> lattice_;
};

// The version ranges within which the count fields keep their widths.
constexpr std::pair<int, int> kVersionRanges[] = {{1, 9}, {10, 26}, {27, 40}};

int SmallestVersionIn(std::pair<int, int> range, int bits, int level) {
  for (int version = range.first; version <= range.second; ++version) {
    if (DataCapacityBits(version, level) >= bits) return version;
  }
  return 0;
}

}  // namespace

int CountFieldBits(int mode, int version) {
  static constexpr int kBits[4][3] = {{10, 12, 14}, {9, 11, 13}, {8, 16, 16}, {8, 10, 12}};
  const int range = version <= 9 ? 0 : version <= 26 ? 1 : 2;
  return kBits[mode][range];
}

Stream BuildStream(const std::vector<uint8_t>& data, const StreamRequest& request) {
  const std::vector<Unit> units = SplitUnits(data, request.charset_eci);
  Segmenter segmenter(data, units, request);
  std::vector<Variant> variants;
  const bool kanji_under_eci = request.charset_eci == kEciShiftJis;
  if (request.declare_eci) {
    variants.push_back({false, request.charset_eci, kanji_under_eci});
  } else {
    variants.push_back({true, -1, true});
    variants.push_back({false, request.charset_eci, kanji_under_eci});
  }
  // The shortest of the variants (the first on a tie) at the count widths of `version`.
  auto shortest = [&](int version) {
    Stream best;
    best.bits = -1;
    for (const Variant& variant : variants) {
      for (Stream candidate : {segmenter.Build(variant, version), segmenter.BuildByteOnly(variant, version)}) {
        if (candidate.bits >= 0 && (best.bits < 0 || candidate.bits < best.bits)) best = std::move(candidate);
      }
    }
    return best;
  };
  const int level = request.level;
  for (const auto& range : kVersionRanges) {
    Stream stream = shortest(range.first);
    const int version = stream.bits < 0 ? 0 : SmallestVersionIn(range, stream.bits, level);
    if (version == 0) continue;
    stream.version = version;
    if (request.requested_version > version) {
      Stream requested = shortest(request.requested_version);
      if (requested.bits >= 0 && requested.bits <= DataCapacityBits(request.requested_version, level)) {
        requested.version = request.requested_version;
        return requested;
      }
    }
    return stream;
  }
  throw QRCapacityError();
}

}  // namespace barcode_orv::qr_internal
