// The command-line tool: outputs, options reaching the library, exit statuses.
#include <gtest/gtest.h>

#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "support/png_image.h"
#include "support/zxing_decode.h"

#ifdef BARCODE_ORV_CLI

namespace barcode_orv {
namespace {

struct RunResult {
  int status = -1;
  std::string out;  // standard output and standard error together
};

// `environment` and `redirect` wrap the command; the default merges standard error in.
RunResult RunCli(const std::string& arguments, const std::string& environment = "BARCODE_ORV_QUIET=1",
                 const std::string& redirect = "2>&1") {
  const std::string command = environment + " '" + BARCODE_ORV_CLI + "' " + arguments + " " + redirect;
  RunResult result;
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return result;
  std::array<char, 4096> buffer{};
  size_t count = 0;
  while ((count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0) result.out.append(buffer.data(), count);
  const int status = pclose(pipe);
  result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return result;
}

std::vector<uint8_t> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(CliTest, OptionsReachTheLibrary) {
  const RunResult svg = RunCli("--format svg --fg 10,20,30 --show-start-stop 0 --text-even-spacing 0 code39 AB");
  ASSERT_EQ(svg.status, 0);
  EXPECT_NE(svg.out.find("fill=\"rgb(10,20,30)\" text-anchor=\"middle\" dominant-baseline=\"hanging\">AB</text>"),
            std::string::npos)
      << svg.out;
  const RunResult qr = RunCli("--data-uri --format jpeg --error-correction H qr hello");
  ASSERT_EQ(qr.status, 0);
  EXPECT_EQ(qr.out.rfind("data:image/jpeg;base64,iVBOR", 0), 0U);
}

// A newcomer's everyday tasks with the tool's defaults: each reads back exactly as its text
// or exits non-zero with one line that says why, and a failure writes no file.
TEST(CliTest, EveryTaskReadsBackOrFailsWithOneReason) {
  using testing::Symbology;
  const std::string long_text(60, 'x');
  const struct {
    std::string input;  // piped to standard input when not empty
    std::string arguments;
    int status;
    std::string expected;  // status 0: what the reader returns; else the message
    Symbology reader = Symbology::kQRCode;
  } tasks[] = {
      {"", "code128 'SHIP TO: ACME CORP'", 0, "SHIP TO: ACME CORP", Symbology::kCode128},
      {"", "code128 ABC123", 0, "ABC123", Symbology::kCode128},
      {"", "code128 12345", 0, "12345", Symbology::kCode128},
      {"", "code93 'A<B?!'", 0, "A<B?!", Symbology::kCode93},
      {"", "matrix2of5 123", 0, "", Symbology::kQRCode},  // no reader here: drawn, not read
      {"", "--width 500 gs1-128 '[01]09501101530003[17]261231[10]LOT42'", 0, "01095011015300031726123110LOT42",
       Symbology::kCode128},
      {"", "--xdim 0.33 --dpi 300 jan13 490123456789", 0, "4901234567894", Symbology::kEAN13},
      {"", "--width 400 --no-text 2 'Cli-128 test'", 0, "Cli-128 test", Symbology::kCode128},  // a type by number
      {"", "jan13 4901234567894+12", 0, "4901234567894 12", Symbology::kEAN13},
      {"", "--extended-guard 0 upce 0123456", 0, "01234565", Symbology::kUPCE},
      {"", "--draw convenience --width 600 --height 240 gs1-128 9191234512345678901234567890123425013102500", 0,
       "91912345123456789012345678901234250131025001", Symbology::kCode128},
      {"", "--xdim 0.5 --rotate 90 qr 'turned and printed'", 0, "turned and printed", Symbology::kQRCode},
      {"", "--bearer itf 12345678901231", 0, "12345678901231", Symbology::kITF},
      {"", "--xdim 0.5 --width 50 qr hello", 1, "[QR] Box too small for the X-dimension: 174x174 px needed"},
      {"", "code128 'Order number abc-xyz for delivery'", 1, "[Code128] Box too small: 418 px needed"},
      {"", "gs1-128 '(01)09501101530003(17)261231(10)LOT42'", 1, "[GS1-128] Box too small: the text line does not fit"},
      {"", "gs1-128 '(01)4901234567894'", 1,
       "[GS1-128] AI (01) too short (min 14): a GTIN-13 is written with a leading 0, (01)04901234567894"},
      {"", "--encode-mode NUMERIC qr 12AB", 1, "[QR] Character 'A' at offset 2 is outside numeric mode"},
      {"", "--encode-mode ALPHANUMERIC qr ab", 1, "[QR] Character 'a' at offset 0 is outside alphanumeric mode"},
      {"caf\\351", "qr -", 1, "[QR] Text is neither valid UTF-8 nor Shift_JIS: byte 0xE9 at offset 3 is not UTF-8"},
      {"", "qr ''", 1, "[QR] Empty data: the symbol would carry nothing"},
      {"", "datamatrix ''", 1, "[DataMatrix] Empty data: the symbol would carry nothing"},
      {"", "pdf417 ''", 1, "[PDF417] Empty data: the symbol would carry nothing"},
      {"", "databar14 ''", 1, "[GS1 DataBar] Empty data: the symbol carries GTIN 00000000000000"},
      {"ab\\0cd", "qr -", 1, "standard input holds a NUL byte at offset 2"},
      {"\\200\\377\\001", "qr -", 1, "[QR] Text is neither valid UTF-8 nor Shift_JIS: byte 0x80 at offset 0"},
      {"", "-- code128 -minus", 0, "-minus", Symbology::kCode128},
      {"ab\\0cd", "--binary qr -", 0, std::string("ab\0cd", 5), Symbology::kQRCode},
      {"", "--qr-version 1 qr " + long_text, 1, "[QR] Data too long for version 1: it needs version 4"},
      {"", "--qr-version 4 qr " + long_text, 0, long_text, Symbology::kQRCode},
      {"", "yubin 1060032-3-2-5-ABCDEFGHIJ", 1,
       "[YubinCustomer] Address cut: the characters from offset 17 on do not fit the 20 positions"},
      {"", "nec2of5 123", 1, "[NEC2of5] The library's own 2-of-5 patterns"},
      {"", "databar-limited 1501234567890 -f svg", 1,
       "[GS1 DataBar Limited] GS1 DataBar Limited has no SVG form; draw it as PNG"},
      {"", "code39 'A*B'", 1, "[Code39] Invalid character in CODE39: '*' is reserved for start/stop code"},
      {"", "--error-correction H qr '" + std::string(1300, 'x') + "'", 1, "Data too long for QR Code."},
      {"", "--rows 2 pdf417 ABC", 1, "[PDF417] Rows must be 3 to 90, or 0 for automatic: 2"},
      // Command lines the tool cannot carry out.
      {"", "--error-correction X qr a", 2, "--error-correction must be one of L, M, Q, H, not 'X'"},
      {"", "--code-mode Z code128 a", 2, "--code-mode must be one of A, B, C, AUTO, not 'Z'"},
      {"", "--code-size 11x11 datamatrix a", 2, "--code-size must be one of AUTO, 10x10"},
      {"", "--string-encoding latin1 qr a", 2, "--string-encoding must be one of utf-8"},
      {"", "--symbol-type-14 FOO databar14 1", 2, "--symbol-type-14 must be one of OMNIDIRECTIONAL"},
      {"", "--encode-scheme B64 datamatrix a", 2, "--encode-scheme must be one of ASCII"},
      {"", "--format gif qr a", 2, "--format must be one of png, jpg, jpeg, svg, not 'gif'"},
      {"", "--binary code128 -", 2, "--binary reads standard input (TEXT '-') for qr, datamatrix or pdf417"},
      {"", "nosuch ABC", 2, "unknown symbology 'nosuch'"},
      {"", "--width wide code39 ABC", 2, "--width needs a whole number, not 'wide'"},
      {"", "code39", 2, "expected SYMBOLOGY and TEXT"},
      {"", "--width -5 code39 A", 2, "--width must be 1 to"},
      {"", "--fg 300,0,0 code39 A", 2, "--fg must be 0 to 255"},
      {"", "--qr-version 41 qr A", 2, "--qr-version must be 0 to 40"},
      {"", "--text-gap nan code39 A", 2, "--text-gap needs a finite number"},
      {"", "--fit-width=1 code39 A", 2, "--fit-width takes no value"},
  };
  const std::string path = ::testing::TempDir() + "cli_task.png";
  for (const auto& task : tasks) {
    std::remove(path.c_str());
    const std::string environment =
        (task.input.empty() ? "" : "printf '" + task.input + "' | ") + std::string("BARCODE_ORV_QUIET=1");
    const RunResult run = RunCli("-o '" + path + "' " + task.arguments, environment);
    EXPECT_EQ(run.status, task.status) << task.arguments << ": " << run.out;
    const std::vector<uint8_t> written = ReadFile(path);
    if (task.status != 0) {
      EXPECT_EQ(run.out.rfind("barcode-orv: " + task.expected, 0), 0U) << task.arguments << ": " << run.out;
      EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << "one line: " << run.out;
      EXPECT_TRUE(written.empty()) << task.arguments;
    } else if (!task.expected.empty()) {
      EXPECT_EQ(run.out, "") << task.arguments;
      const testing::Decoded decoded = testing::DecodePngBarcode(written, task.reader);
      EXPECT_TRUE(decoded.ok) << task.arguments;
      EXPECT_EQ(task.reader == Symbology::kQRCode ? decoded.bytes : decoded.text, task.expected) << task.arguments;
    }
  }
}

// --compat writes the library's default bytes: the picture as asked, the reason it will not
// read back printed as a warning. A failed write keeps an existing file as it was.
TEST(CliTest, CompatWarnsAndFailedWritesLeaveFilesAlone) {
  const RunResult compat = RunCli("--compat code128 'SHIP TO: ACME' -o /dev/null");
  EXPECT_EQ(compat.status, 0);
  EXPECT_EQ(compat.out,
            "barcode-orv: warning: [Code128] Code set A written with the compatibility values: readers decode other "
            "text (the standard encoding writes ISO/IEC 15417's)\n");
  EXPECT_EQ(RunCli("--compat code128 'Ship to: Acme' -o /dev/null").out, "");
  const std::string kept = ::testing::TempDir() + "cli_kept.png";
  ASSERT_EQ(RunCli("qr first -o '" + kept + "'").status, 0);
  const std::vector<uint8_t> before = ReadFile(kept);
  EXPECT_EQ(RunCli("qr '' -o '" + kept + "'").status, 1);
  EXPECT_EQ(ReadFile(kept), before);
  const RunResult full = RunCli("qr text -o /dev/full");
  EXPECT_EQ(full.status, 1);
  EXPECT_NE(full.out.find("cannot write /dev/full"), std::string::npos) << full.out;
}

// Standard output carries the picture and nothing else, even with the library's progress
// lines allowed by the environment.
TEST(CliTest, StandardOutputIsExactlyThePicture) {
  const RunResult png = RunCli("--no-text code128 'Pure 128'", "BARCODE_ORV_QUIET=0", "2>/dev/null");
  ASSERT_EQ(png.status, 0);
  const std::vector<uint8_t> bytes(png.out.begin(), png.out.end());
  EXPECT_EQ(testing::DecodePngBarcode(bytes, testing::Symbology::kCode128).text, "Pure 128");
  const RunResult from_stdin = RunCli("qr - -f svg", "printf 'piped text\\n' | BARCODE_ORV_QUIET=0", "2>/dev/null");
  ASSERT_EQ(from_stdin.status, 0);
  EXPECT_EQ(from_stdin.out.rfind("<?xml", 0), 0U);
  EXPECT_EQ(from_stdin.out.substr(from_stdin.out.size() - 7), "</svg>\n");
}

TEST(CliTest, OutputFileExtensionPicksTheFormat) {
  const std::string svg_path = ::testing::TempDir() + "cli_ext.svg";
  ASSERT_EQ(RunCli("code39 AB -o '" + svg_path + "'").status, 0);
  const std::vector<uint8_t> svg = ReadFile(svg_path);
  EXPECT_EQ(std::string(svg.begin(), svg.begin() + 5), "<?xml");
  const std::string forced = ::testing::TempDir() + "cli_forced.svg";
  ASSERT_EQ(RunCli("--format png code39 AB -o '" + forced + "'").status, 0);
  EXPECT_EQ(ReadFile(forced)[1], 'P');  // \x89PNG: --format wins over the extension
}

// SVG text is escaped: a text with markup characters is still one well-formed document.
TEST(CliTest, SvgTextIsEscaped) {
  const RunResult svg =
      RunCli("--format svg --width 900 --text-even-spacing 0 code128 '</text><script>x</script> & \"Tom\"'");
  ASSERT_EQ(svg.status, 0) << svg.out;
  EXPECT_EQ(svg.out.find("<script"), std::string::npos);
  EXPECT_NE(svg.out.find(">&lt;/text&gt;&lt;script&gt;x&lt;/script&gt; &amp; &quot;Tom&quot;</text>"),
            std::string::npos)
      << svg.out;
}

TEST(CliTest, VersionNamesTheTool) { EXPECT_EQ(RunCli("--version").out.rfind("barcode-orv ", 0), 0U); }

TEST(CliTest, HelpAndListDescribeTheTool) {
  const RunResult help = RunCli("--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--fit-width", "--quiet-zone", "--compat", "--binary", "Examples:"}) {
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
  }
  const RunResult list = RunCli("--list");
  EXPECT_EQ(list.status, 0);
  EXPECT_NE(list.out.find("qr                yes"), std::string::npos) << list.out;
}

}  // namespace
}  // namespace barcode_orv

#endif  // BARCODE_ORV_CLI
