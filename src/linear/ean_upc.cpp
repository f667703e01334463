#include "linear/ean_upc.h"

#include <array>
#include <stdexcept>
#include <utility>

#include "gs1/gtin_check_digit.h"

namespace barcode_orv {
namespace internal {
namespace {

// Set A (L, odd parity) of every digit, four elements beginning with a space. Set C (R)
// has the same widths beginning with a bar; set B (G, even parity) is L reversed.
constexpr std::array<const char*, 10> kSetA = {"3211", "2221", "2122", "1411", "1132",
                                               "1231", "1114", "1312", "1213", "3112"};

// Sets of the six left-hand digits of an EAN-13 by its leading digit (A = L, B = G).
constexpr std::array<const char*, 10> kEan13Parity = {"AAAAAA", "AABABB", "AABBAB", "AABBBA", "ABAABB",
                                                      "ABBAAB", "ABBBAA", "ABABAB", "ABABBA", "ABBABA"};
// Sets of the six UPC-E digits by check digit, number system 0 (number system 1 swaps A and B).
constexpr std::array<const char*, 10> kUpcEParity = {"BBBAAA", "BBABAA", "BBAABA", "BBAAAB", "BABBAA",
                                                     "BAABBA", "BAAABB", "BABABA", "BABAAB", "BAABAB"};
// EAN-5 sets by its checksum; EAN-2 sets by its value mod 4.
constexpr std::array<const char*, 10> kAddOn5Parity = {"BBAAA", "BABAA", "BAABA", "BAAAB", "ABBAA",
                                                       "AABBA", "AAABB", "ABABA", "ABAAB", "AABAB"};
constexpr std::array<const char*, 4> kAddOn2Parity = {"AA", "AB", "BA", "BB"};

constexpr int32_t kModulesPerDigit = 7;
constexpr int32_t kOutsideDigitModules = 7;  // room for a digit printed left or right of the symbol
constexpr float kFontCapModules = 10.0F;     // a digit's glyph stays inside its 7 modules

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

char CheckDigitOf(const std::string& digits) { return static_cast<char>('0' + Gs1Mod10(digits)); }

// Appends elements with one reach to a symbol under construction.
class Builder {
 public:
  Builder(std::vector<int32_t>* widths, std::vector<BarReach>* reach) : widths_(widths), reach_(reach) {}

  void Elements(const char* pattern, BarReach reach, bool reversed = false) {
    const std::string p = pattern;
    for (size_t i = 0; i < p.size(); ++i) Element(p[reversed ? p.size() - 1 - i : i] - '0', reach);
  }
  // Digit `d` in set 'A' (L), 'B' (G) or 'C' (R).
  void Digit(char d, char set, BarReach reach) { Elements(kSetA[static_cast<size_t>(d - '0')], reach, set == 'B'); }
  void Element(int32_t width, BarReach reach) {
    widths_->push_back(width);
    if (reach_ != nullptr) reach_->push_back(reach);
  }

 private:
  std::vector<int32_t>* widths_;
  std::vector<BarReach>* reach_;
};

// The whole symbol; `reach` (may be null) receives every element's reach, guards marked
// kGuard only when `extended`.
void Assemble(EanUpcKind kind, const EanUpcCode& code, bool extended, std::vector<int32_t>* widths,
              std::vector<BarReach>* reach) {
  const std::string& d = code.digits;
  const BarReach guard = extended ? BarReach::kGuard : BarReach::kNormal;
  const BarReach plain = BarReach::kNormal;
  Builder out(widths, reach);
  out.Elements("111", guard);
  switch (kind) {
    case EanUpcKind::kJan8:
      for (size_t i = 0; i < 4; ++i) out.Digit(d[i], 'A', plain);
      out.Elements("11111", guard);
      for (size_t i = 4; i < 8; ++i) out.Digit(d[i], 'C', plain);
      out.Elements("111", guard);
      break;
    case EanUpcKind::kJan13:
    case EanUpcKind::kUpcA: {
      // UPC-A is an EAN-13 with leading zero; its first and last characters are drawn as
      // long as the guards, as the standard shows them.
      const bool upc = kind == EanUpcKind::kUpcA;
      const std::string ean = upc ? "0" + d : d;
      const char* parity = kEan13Parity[static_cast<size_t>(ean[0] - '0')];
      for (size_t i = 1; i <= 6; ++i) out.Digit(ean[i], parity[i - 1], upc && i == 1 ? guard : plain);
      out.Elements("11111", guard);
      for (size_t i = 7; i <= 12; ++i) out.Digit(ean[i], 'C', upc && i == 12 ? guard : plain);
      out.Elements("111", guard);
      break;
    }
    case EanUpcKind::kUpcE: {
      const std::string parity = kUpcEParity[static_cast<size_t>(d[7] - '0')];
      for (size_t i = 0; i < 6; ++i) {
        const char set = d[0] == '0' ? parity[i] : (parity[i] == 'A' ? 'B' : 'A');
        out.Digit(d[i + 1], set, plain);
      }
      out.Elements("111111", guard);
      break;
    }
  }
  if (code.add_on.empty()) return;
  const std::string& a = code.add_on;
  const char* parity = nullptr;
  if (a.size() == 2) {
    parity = kAddOn2Parity[static_cast<size_t>(((a[0] - '0') * 10 + (a[1] - '0')) % 4)];
  } else {
    const int sum = 3 * ((a[0] - '0') + (a[2] - '0') + (a[4] - '0')) + 9 * ((a[1] - '0') + (a[3] - '0'));
    parity = kAddOn5Parity[static_cast<size_t>(sum % 10)];
  }
  out.Element(kAddOnGap, BarReach::kAddOn);
  out.Elements("112", BarReach::kAddOn);
  for (size_t i = 0; i < a.size(); ++i) {
    if (i > 0) out.Elements("11", BarReach::kAddOn);
    out.Digit(a[i], parity[i], BarReach::kAddOn);
  }
}

// "main", "main+addon" or "main addon".
std::pair<std::string, std::string> SplitAddOn(const std::string& text) {
  const size_t separator = text.find_first_of("+ ");
  if (separator == std::string::npos) return {text, ""};
  const std::string add_on = text.substr(separator + 1);
  if (add_on.size() != 2 && add_on.size() != 5) {
    throw std::runtime_error("Invalid add-on length " + std::to_string(add_on.size()) + ": 2 or 5 digits required");
  }
  return {text.substr(0, separator), add_on};
}

void RequireDigits(const std::string& text) {
  for (char c : text) {
    if (!IsDigit(c)) throw std::runtime_error(std::string("Invalid character '") + c + "': digits only");
  }
}

// Appends the check digit to a number one digit short, or verifies the one present.
std::string CompleteCheckDigit(const std::string& digits, size_t full_length) {
  if (digits.size() + 1 == full_length) return digits + CheckDigitOf(digits);
  const char expected = CheckDigitOf(digits.substr(0, digits.size() - 1));
  if (digits.back() != expected) throw std::runtime_error(std::string("Invalid check digit: expected ") + expected);
  return digits;
}

std::string LengthError(size_t length, const char* lengths) {
  return "Invalid length " + std::to_string(length) + ": " + lengths + " required";
}

std::string ParseUpcE(const std::string& main) {
  if (main.size() == 11 || main.size() == 12) {
    const std::string upca = CompleteCheckDigit(main, 12);
    if (upca[0] != '0' && upca[0] != '1') {
      throw std::runtime_error(std::string("Invalid number system ") + upca[0] + ": UPC-E needs 0 or 1");
    }
    std::string upce = CompressUpcA(upca);
    if (upce.empty()) throw std::runtime_error("UPC-A " + upca + " has no UPC-E form");
    return upce;
  }
  if (main.size() < 6 || main.size() > 8) {
    throw std::runtime_error(LengthError(main.size(), "6, 7 or 8 digits (or a UPC-A of 11 or 12)"));
  }
  const std::string with_system = main.size() == 6 ? "0" + main : main;
  if (with_system[0] != '0' && with_system[0] != '1') {
    throw std::runtime_error(std::string("Invalid number system ") + with_system[0] + ": UPC-E needs 0 or 1");
  }
  const char check = ExpandUpcE(with_system.substr(0, 7)).back();
  if (with_system.size() == 8 && with_system[7] != check) {
    throw std::runtime_error(std::string("Invalid check digit: expected ") + check);
  }
  return with_system.substr(0, 7) + check;
}

}  // namespace

int32_t EanUpcMainModules(EanUpcKind kind) {
  switch (kind) {
    case EanUpcKind::kJan8: return 67;
    case EanUpcKind::kUpcE: return 51;
    default: return 95;
  }
}

std::string ExpandUpcE(const std::string& upce) {
  const std::string d = upce.substr(1, 6);
  std::string manufacturer;
  std::string product;
  switch (d[5]) {
    case '0':
    case '1':
    case '2':
      manufacturer = d.substr(0, 2) + d[5] + "00";
      product = "00" + d.substr(2, 3);
      break;
    case '3':
      manufacturer = d.substr(0, 3) + "00";
      product = "000" + d.substr(3, 2);
      break;
    case '4':
      manufacturer = d.substr(0, 4) + "0";
      product = "0000" + d.substr(4, 1);
      break;
    default:
      manufacturer = d.substr(0, 5);
      product = "0000" + d.substr(5, 1);
      break;
  }
  const std::string body = upce.substr(0, 1) + manufacturer + product;
  return body + CheckDigitOf(body);
}

std::string CompressUpcA(const std::string& upca) {
  if ((upca.size() != 11 && upca.size() != 12) || (upca[0] != '0' && upca[0] != '1')) return "";
  const std::string m = upca.substr(1, 5);
  const std::string p = upca.substr(6, 5);
  std::string six;
  if (m[2] <= '2' && m.compare(3, 2, "00") == 0 && p.compare(0, 2, "00") == 0) {
    six = m.substr(0, 2) + p.substr(2, 3) + m[2];
  } else if (m.compare(3, 2, "00") == 0 && p.compare(0, 3, "000") == 0) {
    six = m.substr(0, 3) + p.substr(3, 2) + "3";
  } else if (m[4] == '0' && p.compare(0, 4, "0000") == 0) {
    six = m.substr(0, 4) + p.substr(4, 1) + "4";
  } else if (p.compare(0, 4, "0000") == 0 && p[4] >= '5') {
    six = m + p.substr(4, 1);
  } else {
    return "";
  }
  const std::string expanded = ExpandUpcE(upca.substr(0, 1) + six);
  if (expanded.compare(0, 11, upca, 0, 11) != 0) return "";
  return upca.substr(0, 1) + six + expanded.back();
}

EanUpcCode ParseEanUpc(EanUpcKind kind, const std::string& text) {
  if (text.empty()) throw std::runtime_error("Empty string");
  auto [main, add_on] = SplitAddOn(text);
  RequireDigits(main);
  RequireDigits(add_on);
  EanUpcCode code;
  code.add_on = add_on;
  switch (kind) {
    case EanUpcKind::kJan8:
      if (main.size() != 7 && main.size() != 8) throw std::runtime_error(LengthError(main.size(), "7 or 8 digits"));
      code.digits = CompleteCheckDigit(main, 8);
      break;
    case EanUpcKind::kJan13:
      if (main.size() != 12 && main.size() != 13) throw std::runtime_error(LengthError(main.size(), "12 or 13 digits"));
      code.digits = CompleteCheckDigit(main, 13);
      break;
    case EanUpcKind::kUpcA:
      if (main.size() != 11 && main.size() != 12) throw std::runtime_error(LengthError(main.size(), "11 or 12 digits"));
      code.digits = CompleteCheckDigit(main, 12);
      break;
    case EanUpcKind::kUpcE: code.digits = ParseUpcE(main); break;
  }
  return code;
}

std::vector<int32_t> EncodeEanUpc(EanUpcKind kind, const EanUpcCode& code) {
  std::vector<int32_t> widths;
  Assemble(kind, code, false, &widths, nullptr);
  return widths;
}

}  // namespace internal

using internal::EanUpcKind;

EanUpcBarcode::EanUpcBarcode(std::string output_format, EanUpcKind kind, const char* log_prefix)
    : BarcodeBase1D(std::move(output_format)), kind_(kind), log_prefix_(log_prefix) {}

EanUpcBarcode::EanUpcBarcode(SDL_Renderer* canvas, EanUpcKind kind, const char* log_prefix)
    : BarcodeBase1D(canvas), kind_(kind), log_prefix_(log_prefix) {}

BarcodeBase1D::LinearSymbol EanUpcBarcode::Encode(const std::string& text) const {
  using internal::kModulesPerDigit;
  const internal::EanUpcCode code = internal::ParseEanUpc(kind_, text);
  const std::string& d = code.digits;
  // Extended guards need the text band to run into; without text every bar is full height.
  const bool extended = extended_guard_ && show_text;
  LinearSymbol symbol;
  symbol.display_text = code.add_on.empty() ? d : d + " " + code.add_on;
  internal::Assemble(kind_, code, extended, &symbol.widths, &symbol.reach);
  symbol.font_cap_modules = internal::kFontCapModules;
  // Quiet zones of the GS1 barcode rules, section 5.2 (in modules): EAN-13 11 and 7, EAN-8 7
  // and 7, UPC-A 9 and 9, UPC-E 9 and 7; an add-on ends with 5.
  static constexpr int32_t kQuietLeft[] = {7, 11, 9, 9};  // by EanUpcKind
  static constexpr int32_t kQuietRight[] = {7, 7, 9, 7};
  symbol.quiet_left = kQuietLeft[static_cast<int>(kind_)];
  symbol.quiet_right = code.add_on.empty() ? kQuietRight[static_cast<int>(kind_)] : 5;
  if (!show_text) return symbol;

  const int32_t main_modules = internal::EanUpcMainModules(kind_);
  const bool leading_outside = extended && kind_ != EanUpcKind::kJan8;
  const bool check_outside = extended && (kind_ == EanUpcKind::kUpcA || kind_ == EanUpcKind::kUpcE);
  const int32_t lead = leading_outside ? internal::kOutsideDigitModules : 0;
  symbol.lead_modules = lead;
  // With an add-on, the check digit on the right sits in the gap before it.
  if (check_outside && code.add_on.empty()) symbol.trail_modules = internal::kOutsideDigitModules;

  auto pitched = [&](std::string digits, float first_module) {
    TextRun run;
    run.text = std::move(digits);
    run.first_center = first_module + static_cast<float>(kModulesPerDigit) / 2.0F;
    run.pitch = static_cast<float>(kModulesPerDigit);
    symbol.text_runs.push_back(std::move(run));
  };
  const auto l = static_cast<float>(lead);
  const auto main_end = static_cast<float>(lead + main_modules);
  if (!extended) {
    TextRun run;
    run.text = d;
    run.span_begin = 0.0F;
    run.span_end = main_end;
    symbol.text_runs.push_back(std::move(run));
  } else {
    switch (kind_) {
      case EanUpcKind::kJan8:
        pitched(d.substr(0, 4), 3.0F);
        pitched(d.substr(4, 4), 3.0F + 28.0F + 5.0F);
        break;
      case EanUpcKind::kJan13:
        pitched(d.substr(0, 1), 0.0F);
        pitched(d.substr(1, 6), l + 3.0F);
        pitched(d.substr(7, 6), l + 3.0F + 42.0F + 5.0F);
        break;
      case EanUpcKind::kUpcA:
        pitched(d.substr(0, 1), 0.0F);
        pitched(d.substr(1, 5), l + 3.0F + 7.0F);
        pitched(d.substr(6, 5), l + 3.0F + 42.0F + 5.0F);
        pitched(d.substr(11, 1), main_end);
        break;
      case EanUpcKind::kUpcE:
        pitched(d.substr(0, 1), 0.0F);
        pitched(d.substr(1, 6), l + 3.0F);
        pitched(d.substr(7, 1), main_end);
        break;
    }
  }
  if (!code.add_on.empty()) {
    // Add-on digits over their characters: start pattern of 4 modules, 9 modules a digit.
    TextRun run;
    run.text = code.add_on;
    run.row = TextRow::kAbove;
    run.first_center = main_end + static_cast<float>(internal::kAddOnGap) + 4.0F + 3.5F;
    run.pitch = 9.0F;
    symbol.text_runs.push_back(std::move(run));
  }
  return symbol;
}

bool EanUpcBarcode::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, log_prefix_, [this](const std::string& t) { return Encode(t); });
}

bool EanUpcBarcode::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, log_prefix_, [this](const std::string& t) { return Encode(t); });
}

float EanUpcBarcode::NaturalBarModules() const {
  // GS1 barcode rules, section 5.2: bars 18.23 mm (EAN-8) or 22.85 mm (the others) tall
  // at the nominal X-dimension of 0.33 mm.
  constexpr float kNominalXDim = 0.33F;
  return (kind_ == internal::EanUpcKind::kJan8 ? 18.23F : 22.85F) / kNominalXDim;
}

}  // namespace barcode_orv
