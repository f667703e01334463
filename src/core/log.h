// The library's two output channels: progress lines on standard output (silenced by
// BARCODE_ORV_QUIET=1) and error lines on standard error (on unless a host turns them off).
#pragma once

#include <string>
#include <string_view>

namespace barcode_orv::log {

// True while progress lines are off: BARCODE_ORV_QUIET=1 when the library first printed,
// unless SetQuiet said otherwise since.
bool Quiet();
void SetQuiet(bool quiet);

// Writes `line` and a line feed to standard output unless quiet.
void Progress(std::string_view line);

// Process-wide: false keeps failure lines off standard error (they are still recorded).
bool ErrorLines();
void SetErrorLines(bool on);

// Writes `line` and a line feed to standard error (unless error lines are off), and records it as the failure reason
// of the call under way on this thread (see ReasonCapture).
void Error(std::string_view line);

// Writes `line` to standard error like Error, without recording it.
void PrintError(std::string_view line);

// Writes a diagnostic `line` to standard error unless quiet; never a failure reason.
void Debug(std::string_view line);

// Records `line` as the failure reason without writing it anywhere: for failures whose
// default behaviour is silent or reported on standard output.
void Reason(std::string_view line);

// While alive, collects the last reason recorded on this thread, so that the C interface
// can tell a host why a call failed. Captures nest; the innermost one collects.
class ReasonCapture {
 public:
  ReasonCapture();
  ~ReasonCapture();
  ReasonCapture(const ReasonCapture&) = delete;
  ReasonCapture& operator=(const ReasonCapture&) = delete;

  const std::string& last() const { return last_; }
  // Whether the last reason went to standard error too (log::Error) or only here.
  bool last_printed() const { return last_printed_; }

 private:
  friend void Record(std::string_view line, bool printed);
  std::string last_;
  bool last_printed_ = false;
  ReasonCapture* outer_;
};

}  // namespace barcode_orv::log
