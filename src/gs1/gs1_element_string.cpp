#include "gs1/gs1_element_string.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "gs1/gtin_check_digit.h"

namespace barcode_orv::internal {
namespace {

using gs1::AiEntry;
using gs1::Component;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

bool AllDigits(std::string_view text) { return std::all_of(text.begin(), text.end(), IsDigit); }

[[noreturn]] void Fail(const std::string& message) { throw std::runtime_error(message); }

std::string Ai(std::string_view ai) { return "AI (" + std::string(ai) + ")"; }

bool InSet(char set, char c) {
  switch (set) {
    case 'N': return IsDigit(c);
    case 'X': return gs1::kCset82.find(c) != std::string_view::npos;
    case 'Y': return gs1::kCset39.find(c) != std::string_view::npos;
    default: return gs1::kCset64.find(c) != std::string_view::npos;
  }
}

int TwoDigits(std::string_view text, size_t at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); }

int DaysInMonth(int year, int month) {
  static constexpr std::array<int, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return month == 2 && leap ? 29 : kDays[static_cast<size_t>(month - 1)];
}

// `year` is complete; `day` 0 is accepted only when `day_zero_allowed`.
bool PlausibleDate(int year, int month, int day, bool day_zero_allowed) {
  if (month < 1 || month > 12) return false;
  if (day == 0) return day_zero_allowed;
  return day <= DaysInMonth(year, month);
}

// Checks of one component's characters beyond its character set.
void CheckComponent(std::string_view ai, std::string_view part, uint16_t checks) {
  if ((checks & gs1::kCheckMod10) != 0) {
    const char expected = static_cast<char>('0' + Gs1Mod10(part.substr(0, part.size() - 1)));
    if (part.back() != expected) Fail("Invalid check digit in " + Ai(ai) + ": expected " + expected);
  }
  if ((checks & gs1::kCheckPair) != 0) {
    if (part.size() < 2) Fail(Ai(ai) + " too short for its check pair");
    const std::string expected = Gs1CheckPair(part.substr(0, part.size() - 2));
    if (part.substr(part.size() - 2) != expected) Fail("Invalid check pair in " + Ai(ai) + ": expected " + expected);
  }
  // YYMMDD dates are taken in 2000-2099 for the leap-year rule; 1900 is never asked for.
  if ((checks & (gs1::kDateYymmd0 | gs1::kDateYymmdd)) != 0 &&
      !PlausibleDate(2000 + TwoDigits(part, 0), TwoDigits(part, 2), TwoDigits(part, 4),
                     (checks & gs1::kDateYymmd0) != 0)) {
    Fail("Invalid date in " + Ai(ai) + ": " + std::string(part));
  }
  if ((checks & gs1::kDateYyyymmdd) != 0 &&
      !PlausibleDate(TwoDigits(part, 0) * 100 + TwoDigits(part, 2), TwoDigits(part, 4), TwoDigits(part, 6), false)) {
    Fail("Invalid date in " + Ai(ai) + ": " + std::string(part));
  }
  const bool bad_time = ((checks & (gs1::kTimeHhmi | gs1::kTimeHh)) != 0 && TwoDigits(part, 0) > 23) ||
                        ((checks & gs1::kTimeHhmi) != 0 && TwoDigits(part, 2) > 59) ||
                        ((checks & (gs1::kTimeMi | gs1::kTimeSs)) != 0 && TwoDigits(part, 0) > 59);
  if (bad_time) Fail("Invalid time in " + Ai(ai) + ": " + std::string(part));
}

// A GTIN-13 typed into (01) is the commonest short (01): name the 14-digit form it
// stands for instead of guessing it.
std::string ShortValueHint(std::string_view ai, const std::string& value) {
  if (ai != "01" || value.size() != 13 || !AllDigits(value)) return "";
  if (value.back() != static_cast<char>('0' + Gs1Mod10(std::string_view(value).substr(0, 12)))) return "";
  return ": a GTIN-13 is written with a leading 0, (01)0" + value;
}

}  // namespace

const gs1::AiEntry* FindGs1Ai(std::string_view ai) {
  const auto found = std::lower_bound(gs1::kAiTable.begin(), gs1::kAiTable.end(), ai,
                                      [](const AiEntry& entry, std::string_view key) { return entry.ai < key; });
  return found != gs1::kAiTable.end() && found->ai == ai ? &*found : nullptr;
}

std::string Gs1CheckPair(std::string_view data) {
  // The rightmost character weighs the first prime, 2; data is at most 23 characters.
  static constexpr std::array<int, 30> kPrimes = {2,  3,  5,  7,  11, 13, 17, 19, 23, 29, 31,  37,  41,  43,  47,
                                                  53, 59, 61, 67, 71, 73, 79, 83, 89, 97, 101, 103, 107, 109, 113};
  int sum = 0;
  const size_t n = data.size();
  for (size_t i = 0; i < n && n - 1 - i < kPrimes.size(); ++i) {
    const size_t value = gs1::kCset82.find(data[i]);
    if (value == std::string_view::npos) continue;  // callers validate the set first
    sum = (sum + static_cast<int>(value) * kPrimes[n - 1 - i]) % 1021;
  }
  return {gs1::kCset32[static_cast<size_t>(sum >> 5)], gs1::kCset32[static_cast<size_t>(sum & 31)]};
}

std::string ValidateGs1Value(std::string_view ai, std::string value) {
  const AiEntry* entry = FindGs1Ai(ai);
  if (entry == nullptr) Fail("Unknown " + Ai(ai));
  if (value.empty()) Fail(Ai(ai) + " has no data");
  // A check digit is never computed here: a short field is an error, not a guess.
  if (value.size() > entry->max_length) Fail(Ai(ai) + " too long (max " + std::to_string(entry->max_length) + ")");
  if (value.size() < entry->min_length) {
    Fail(Ai(ai) + " too short (min " + std::to_string(entry->min_length) + ")" + ShortValueHint(ai, value));
  }
  // The fields first (only the last may vary in length, optional ones come last), then
  // their characters and checks.
  std::array<std::string_view, gs1::kMaxComponents> parts{};
  size_t pos = 0;
  for (size_t i = 0; i < entry->component_count && pos < value.size(); ++i) {
    const Component& component = entry->components[i];
    const size_t length = component.min_length == component.max_length ? component.max_length : value.size() - pos;
    if (pos + length > value.size()) {
      Fail(Ai(ai) + " has the wrong length " + std::to_string(value.size()) + " for its format " +
           std::string(entry->format));
    }
    parts[i] = std::string_view(value).substr(pos, length);
    pos += length;
  }
  for (size_t i = 0; i < entry->component_count && !parts[i].empty(); ++i) {
    const Component& component = entry->components[i];
    const std::string_view part = parts[i];
    for (size_t k = 0; k < part.size(); ++k) {
      // Base64url data may end in '=' padding.
      const bool padding =
          component.set == 'Z' && part[k] == '=' && part.find_first_not_of('=', k) == std::string_view::npos;
      if (!padding && !InSet(component.set, part[k])) {
        Fail(std::string("Invalid character '") + part[k] + "' in " + Ai(ai));
      }
    }
    CheckComponent(ai, part, component.checks);
  }
  return value;
}

std::vector<Gs1Element> ParseGs1ElementString(std::string_view text) {
  if (text.empty()) Fail("Empty string");
  // AIs in parentheses, or in square brackets as Zint and BWIPP write them; with brackets,
  // parentheses in the data are plain characters.
  const bool brackets = text.front() == '[';
  if (text.front() != '(' && !brackets) Fail("Element string must start with an AI in parentheses, such as (01)");
  const char open = brackets ? '[' : '(';
  const char close_mark = brackets ? ']' : ')';
  std::vector<Gs1Element> elements;
  size_t pos = 0;
  while (pos < text.size()) {
    const size_t close = text.find(close_mark, pos + 1);
    if (close == std::string_view::npos) {
      Fail(std::string(brackets ? "Unclosed bracket: " : "Unclosed parenthesis: ") + std::string(text.substr(pos)));
    }
    const std::string_view ai = text.substr(pos + 1, close - pos - 1);
    if (ai.size() < 2 || ai.size() > 4 || !AllDigits(ai)) Fail("Invalid AI (" + std::string(ai) + ")");
    const AiEntry* entry = FindGs1Ai(ai);
    if (entry == nullptr) Fail("Unknown " + Ai(ai));
    std::string value;
    for (pos = close + 1; pos < text.size() && text[pos] != open; ++pos) {
      const bool escape = !brackets && text[pos] == '\\' && pos + 1 < text.size() &&
                          (text[pos + 1] == '(' || text[pos + 1] == ')' || text[pos + 1] == '\\');
      if (escape) ++pos;
      value += text[pos];
    }
    elements.push_back({std::string(ai), ValidateGs1Value(ai, std::move(value)), !entry->predefined_length});
  }
  return elements;
}

std::string Gs1HumanReadable(const std::vector<Gs1Element>& elements) {
  std::string text;
  for (const Gs1Element& element : elements) text += "(" + element.ai + ")" + element.value;
  return text;
}

std::string Gs1Concatenated(const std::vector<Gs1Element>& elements, char separator) {
  std::string data;
  for (size_t i = 0; i < elements.size(); ++i) {
    data += elements[i].ai + elements[i].value;
    if (elements[i].variable_length && i + 1 < elements.size()) data += separator;
  }
  return data;
}

}  // namespace barcode_orv::internal
