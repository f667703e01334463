#include "twod/eci.h"

#include "twod/barcode_base_2d.h"

namespace barcode_orv::internal {

const char* EciCharset(int eci) {
  struct Assignment {
    int eci;
    const char* charset;
  };
  // AIM ECI assignments of character sets (ISO/IEC 15424 registry).
  static constexpr Assignment kAssignments[] = {
      {0, "CP437"},        {1, "ISO-8859-1"},   {2, "CP437"},        {3, "ISO-8859-1"},   {4, "ISO-8859-2"},
      {5, "ISO-8859-3"},   {6, "ISO-8859-4"},   {7, "ISO-8859-5"},   {8, "ISO-8859-6"},   {9, "ISO-8859-7"},
      {10, "ISO-8859-8"},  {11, "ISO-8859-9"},  {12, "ISO-8859-10"}, {13, "ISO-8859-11"}, {15, "ISO-8859-13"},
      {16, "ISO-8859-14"}, {17, "ISO-8859-15"}, {18, "ISO-8859-16"}, {20, "SHIFT_JIS"},   {21, "CP1250"},
      {22, "CP1251"},      {23, "CP1252"},      {24, "CP1256"},      {25, "UTF-16BE"},    {26, "UTF-8"},
      {27, "ISO646-US"},   {28, "BIG5"},        {29, "GB18030"},     {30, "EUC-KR"},      {31, "GBK"},
      {32, "GB18030"},     {33, "UTF-16LE"},    {34, "UTF-32BE"},    {35, "UTF-32LE"},
  };
  for (const Assignment& assignment : kAssignments) {
    if (assignment.eci == eci) return assignment.charset;
  }
  return nullptr;
}

std::string EciProblem(int eci) {
  if (eci >= kEciNone && eci <= kEciMax) return "";
  return "ECI must be 0 to " + std::to_string(kEciMax) + " (or -1 for none), not " + std::to_string(eci);
}

bool ConvertForEci(const std::string& text, int eci, std::vector<uint8_t>& bytes, std::string& problem) {
  const char* charset = EciCharset(eci);
  const char* source = BarcodeBase2D::IsValidUtf8(text) ? "utf-8" : "shift-jis";
  if (charset == nullptr) {
    bytes.assign(text.begin(), text.end());
    return true;
  }
  bytes = BarcodeBase2D::ConvertEncoding(text, source, charset);
  if (bytes.empty() && !text.empty()) {
    problem = "Text has no form in ECI " + std::to_string(eci) + " (" + charset + ")";
    return false;
  }
  return true;
}

}  // namespace barcode_orv::internal
