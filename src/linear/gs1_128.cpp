#include "linear/gs1_128.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <stdexcept>

#include "gs1/gtin_check_digit.h"
#include "linear/code128.h"
#include "linear/code128_iso.h"

namespace barcode_orv {
namespace internal {
namespace {

constexpr char kSeparator = '\x1D';  // GS: where the symbol carries FNC1
// Field lengths of the convenience-store code, AI 91 first and the check digit last.
constexpr std::array<size_t, 8> kConvenienceFields = {2, 6, 21, 1, 6, 1, 6, 1};
constexpr size_t kConvenienceDigits = 44;

}  // namespace

std::vector<int32_t> Gs1128Values(const std::vector<Gs1Element>& elements) {
  const std::string data = Gs1Concatenated(elements, kSeparator);
  if (data.size() > kGs1128MaxData) {
    throw std::runtime_error("Element string too long for GS1-128: " + std::to_string(data.size()) +
                             " data characters (max " + std::to_string(kGs1128MaxData) + ")");
  }
  std::vector<int> chars;
  chars.reserve(data.size() + 1);
  chars.push_back(kCode128Fnc1);
  for (char c : data) chars.push_back(c == kSeparator ? kCode128Fnc1 : static_cast<unsigned char>(c));
  return Iso15417Values(chars);
}

std::string ConvenienceCode(const std::string& text) {
  for (char c : text) {
    if (c < '0' || c > '9') throw std::runtime_error(std::string("Invalid character '") + c + "': digits only");
  }
  if (text.size() != kConvenienceDigits - 1 && text.size() != kConvenienceDigits) {
    throw std::runtime_error("Invalid length " + std::to_string(text.size()) +
                             ": a convenience-store code has 43 or 44 digits");
  }
  if (text.compare(0, 2, "91") != 0) throw std::runtime_error("A convenience-store code starts with AI 91");
  const std::string body = text.substr(0, kConvenienceDigits - 1);
  const char check = static_cast<char>('0' + Gs1Mod10(body));
  if (text.size() == kConvenienceDigits && text.back() != check) {
    throw std::runtime_error(std::string("Invalid check digit: expected ") + check);
  }
  return body + check;
}

std::pair<std::string, std::string> ConvenienceTextLines(const std::string& code) {
  std::array<std::string, kConvenienceFields.size()> fields;
  size_t at = 0;
  for (size_t i = 0; i < fields.size(); ++i) {
    fields[i] = code.substr(at, kConvenienceFields[i]);
    at += kConvenienceFields[i];
  }
  auto join = [&](size_t from, size_t to) {
    std::string line;
    for (size_t i = from; i < to; ++i) line += (i > from ? "-" : "") + fields[i];
    return line;
  };
  size_t best = 1;
  for (size_t split = 2; split < fields.size(); ++split) {
    const auto balance = [&](size_t s) {
      return std::labs(static_cast<long>(join(0, s).size()) - static_cast<long>(join(s, fields.size()).size()));
    };
    if (balance(split) < balance(best)) best = split;
  }
  return {join(0, best), join(best, fields.size())};
}

}  // namespace internal

namespace {
constexpr const char* kLogPrefix = "[GS1-128] ";
}  // namespace

GS1_128::GS1_128(std::string output_format) : BarcodeBase1D(std::move(output_format)) { fit_width = true; }

GS1_128::GS1_128(SDL_Renderer* canvas) : BarcodeBase1D(canvas) { fit_width = true; }

BarcodeBase1D::LinearSymbol GS1_128::Encode(const std::string& text) {
  const std::vector<internal::Gs1Element> elements = internal::ParseGs1ElementString(text);
  return LinearSymbol(internal::Code128Widths(internal::Gs1128Values(elements)), internal::Gs1HumanReadable(elements));
}

BarcodeBase1D::LinearSymbol GS1_128::EncodeConvenience(const std::string& text) {
  const std::string code = internal::ConvenienceCode(text);
  const std::vector<internal::Gs1Element> elements = {{"91", internal::ValidateGs1Value("91", code.substr(2)), true}};
  LinearSymbol symbol(internal::Code128Widths(internal::Gs1128Values(elements)), code);
  const auto [first, second] = internal::ConvenienceTextLines(code);
  int32_t modules = 0;
  for (int32_t w : symbol.widths) modules += w;
  // Both lines at the pitch of the longer one, each centred under the bars.
  for (const auto& [line, row] : {std::pair{first, TextRow::kFirstOfTwo}, std::pair{second, TextRow::kSecondOfTwo}}) {
    TextRun run;
    run.text = line;
    run.row = row;
    run.span_end = static_cast<float>(modules);
    run.pitch_chars = std::max(first.size(), second.size());
    symbol.text_runs.push_back(std::move(run));
  }
  symbol.text_lines = 2;
  return symbol;
}

bool GS1_128::Draw(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawSvg(text, x, y, width, height);
  return DrawLinearRaster(text, x, y, width, height, kLogPrefix, Encode);
}

bool GS1_128::DrawSvg(const std::string& text, int x, int y, int width, int height) {
  return DrawLinearSvg(text, x, y, width, height, kLogPrefix, Encode);
}

bool GS1_128::DrawConvenience(const std::string& text, int x, int y, int width, int height) {
  if (IsSvgOutput()) return DrawLinearSvg(text, x, y, width, height, kLogPrefix, EncodeConvenience);
  return DrawLinearRaster(text, x, y, width, height, kLogPrefix, EncodeConvenience);
}

}  // namespace barcode_orv
