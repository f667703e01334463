// The command-line tool: outputs, options reaching the library, exit statuses.
#include <gtest/gtest.h>

#include <sys/wait.h>

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

TEST(CliTest, WritesPicturesThatDecode) {
  const struct {
    std::string arguments;
    testing::Symbology reader;
    std::string text;
  } cases[] = {
      {"--width 400 --no-text 2 'Cli-128 test'", testing::Symbology::kCode128, "Cli-128 test"},  // a type by its number
      {"jan13 4901234567894+12", testing::Symbology::kEAN13, "4901234567894 12"},
      {"--extended-guard 0 upce 0123456", testing::Symbology::kUPCE, "01234565"},
      {"--width 500 gs1-128 '(01)04912345678904(10)AB'", testing::Symbology::kCode128, "010491234567890410AB"},
      {"--draw convenience --width 600 --height 240 gs1-128 9191234512345678901234567890123425013102500",
       testing::Symbology::kCode128, "91912345123456789012345678901234250131025001"},
  };
  for (const auto& c : cases) {
    const std::string path = ::testing::TempDir() + "cli_decode.png";
    const RunResult run = RunCli(c.arguments + " -o '" + path + "'");
    ASSERT_EQ(run.status, 0) << run.out;
    const testing::Decoded decoded = testing::DecodePngBarcode(ReadFile(path), c.reader);
    EXPECT_TRUE(decoded.ok && decoded.text == c.text) << c.arguments << " read " << decoded.text;
  }
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

TEST(CliTest, FailuresExitNonZeroWithTheLibrarysMessage) {
  const std::pair<std::string, std::string> failures[] = {
      {"code39 'A*B'", "[Code39] Invalid character in CODE39: '*' is reserved for start/stop code"},
      {"--error-correction H qr '" + std::string(1300, 'x') + "'", "Data too long for QR Code."},
      {"--rows 2 pdf417 ABC", "[PDF417] Rows must be 3 to 90, or 0 for automatic: 2"},
  };
  for (const auto& [arguments, message] : failures) {
    const RunResult run = RunCli(arguments + " -o /dev/null");
    EXPECT_EQ(run.status, 1) << arguments;
    EXPECT_NE(run.out.find(message), std::string::npos) << run.out;
  }
  EXPECT_EQ(RunCli("nosuch ABC").status, 2);
  EXPECT_EQ(RunCli("--width wide code39 ABC").status, 2);
  EXPECT_EQ(RunCli("code39").status, 2);
  // A type the build leaves out, as --list names it.
  const RunResult list = RunCli("--list");
  const size_t missing = list.out.find("  no  ");
  if (missing != std::string::npos) {
    const size_t line = list.out.rfind('\n', missing) + 1;
    const std::string name = list.out.substr(line + 6, list.out.find(' ', line + 6) - line - 6);
    const RunResult planned = RunCli(name + " ABC");
    EXPECT_EQ(planned.status, 1) << name;
    EXPECT_NE(planned.out.find("not provided by this build"), std::string::npos) << name;
  }
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

TEST(CliTest, BadValuesAndCompatibilityForms) {
  for (const char* arguments : {"--width -5 code39 A", "--height 0 code39 A", "--fg 300,0,0 code39 A",
                                "--qr-version 41 qr A", "--text-gap nan code39 A", "--fit-width=1 code39 A"}) {
    const RunResult run = RunCli(arguments);
    EXPECT_EQ(run.status, 2) << arguments << ": " << run.out;
  }
  EXPECT_EQ(RunCli("--version").out.rfind("barcode-orv ", 0), 0U);
  const char* warning = "--standard draws the standard form";
  EXPECT_NE(RunCli("code128 'SHIP TO: ACME' -o /dev/null").out.find(warning), std::string::npos);
  EXPECT_NE(RunCli("matrix2of5 123 -o /dev/null").out.find(warning), std::string::npos);
  EXPECT_EQ(RunCli("code128 'Ship to: Acme' -o /dev/null").out.find(warning), std::string::npos);
  EXPECT_EQ(RunCli("--standard code128 'SHIP TO: ACME' -o /dev/null").out, "");
}

TEST(CliTest, HelpAndListDescribeTheTool) {
  const RunResult help = RunCli("--help");
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--fit-width", "--quiet-zone", "--standard", "Examples:"}) {
    EXPECT_NE(help.out.find(option), std::string::npos) << option;
  }
  const RunResult list = RunCli("--list");
  EXPECT_EQ(list.status, 0);
  EXPECT_NE(list.out.find("qr                yes"), std::string::npos) << list.out;
}

}  // namespace
}  // namespace barcode_orv

#endif  // BARCODE_ORV_CLI
