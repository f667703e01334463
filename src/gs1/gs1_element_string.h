// GS1 element strings: "(01)04912345678904(10)ABC" parsed into application identifiers
// and their data, every AI validated against the GS1 AI table (length, character set,
// check digit or check-character pair, plausible dates and times). Shared by the
// symbologies that carry GS1 data (GS1-128, GS1 DataBar Expanded).
//
// Errors are std::runtime_error with messages in the library's house style, without a
// symbology prefix ("Unknown AI (23)", "Invalid check digit in AI (01): expected 4",
// "AI (10) too long (max 20)"); each symbology's Draw writes them after its own prefix.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "gs1/gs1_ai_table.h"

namespace barcode_orv::internal {

struct Gs1Element {
  std::string ai;
  std::string value;     // validated; a missing modulo-10 check digit has been appended
  bool variable_length;  // not of predefined length: FNC1 must follow unless it comes last
};

// Parses an element string. Each AI is written in parentheses and followed by its data;
// in the data "\(" stands for "(", "\)" for ")" and "\\" for "\". Where an AI's data ends
// with a modulo-10 check digit and is exactly one digit short, the digit is computed and
// appended; where present it is verified.
std::vector<Gs1Element> ParseGs1ElementString(std::string_view text);

// Validates the data of one AI (completing its check digit as above) and returns it.
std::string ValidateGs1Value(std::string_view ai, std::string value);

// The table entry of an AI, or null when the AI is unknown.
const gs1::AiEntry* FindGs1Ai(std::string_view ai);

// "(01)04912345678904(10)ABC": the human-readable form, AIs in parentheses.
std::string Gs1HumanReadable(const std::vector<Gs1Element>& elements);

// The data as a reader transmits it: AIs and values concatenated, `separator` (GS, the
// FNC1 of the symbol) after every variable-length element that is not the last.
std::string Gs1Concatenated(const std::vector<Gs1Element>& elements, char separator = '\x1D');

// The check-character pair of CSET 82 data (GS1 barcode rules, section 7.9.5; rule in gs1_charsets.json).
std::string Gs1CheckPair(std::string_view data);

}  // namespace barcode_orv::internal
