#include "linear/font_library.h"

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>

#include "core/log.h"
#include "core/sdl_handles.h"

#if defined(__APPLE__)
#include <mach-o/dyld.h>
#endif

namespace barcode_orv::font {
namespace {

constexpr const char* kFontFile = "Roboto-Regular.ttf";
// Draws use a handful of sizes; beyond this many the cache starts over.
constexpr size_t kMaxSizedFonts = 16;
// Texts measured once per size: the longest kept, and how many before starting over.
constexpr size_t kMaxRememberedText = 64;
constexpr size_t kMaxRememberedWidths = 256;
// Rendered characters of every size together; beyond this the glyph caches start over.
// Digits at the sizes of a text line under bars take a few kilobytes each.
constexpr size_t kMaxCachedGlyphBytes = size_t{4} << 20;

// Plain flags with constant initialisation: still readable while other objects of static
// storage are being destroyed.
std::atomic<bool> holds_ttf{false};
std::atomic<bool> torn_down{false};

bool PathExists(const std::string& path) {
  struct stat info {};
  return ::stat(path.c_str(), &info) == 0;
}

// A character and the colour it was rendered in, as one key.
using GlyphKey = uint64_t;
GlyphKey KeyOf(char character, SDL_Color color) {
  return uint64_t{static_cast<uint8_t>(character)} << 32 | uint64_t{color.r} << 24 | uint64_t{color.g} << 16 |
         uint64_t{color.b} << 8 | color.a;
}

struct SizedFontEntry {
  FontPtr font;
  std::map<GlyphKey, SharedSurface> glyphs;
  std::map<std::string, int> widths;
};

// Narrows the clip rectangle of a rendered glyph to the pixels it covers (none for a
// space): a digit's box is mostly clear rows above and below it and clear columns beside
// it, which blending would only pass over.
void ClipToInk(SDL_Surface* glyph) {
  if (glyph->format->BytesPerPixel != 4 || SDL_MUSTLOCK(glyph) || glyph->format->Amask == 0) return;
  const uint32_t alpha_mask = glyph->format->Amask;
  int left = glyph->w;
  int right = 0;
  int top = glyph->h;
  int bottom = 0;
  for (int y = 0; y < glyph->h; ++y) {
    const auto* row =
        reinterpret_cast<const uint32_t*>(static_cast<const uint8_t*>(glyph->pixels) + ptrdiff_t{y} * glyph->pitch);
    for (int x = 0; x < glyph->w; ++x) {
      if ((row[x] & alpha_mask) == 0) continue;
      left = std::min(left, x);
      right = std::max(right, x + 1);
      top = std::min(top, y);
      bottom = y + 1;
    }
  }
  const SDL_Rect ink{left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
  SDL_SetClipRect(glyph, &ink);
}

std::map<int, SizedFontEntry>& SizedFonts() {
  static std::map<int, SizedFontEntry> fonts;
  return fonts;
}

// Bytes of pixels held by every glyph cache.
size_t cached_glyph_bytes = 0;

void ForgetGlyphs() {
  for (auto& sized : SizedFonts()) sized.second.glyphs.clear();
  cached_glyph_bytes = 0;
}

size_t PixelBytes(const SDL_Surface* surface) { return static_cast<size_t>(surface->pitch) * surface->h; }

// Directory of the file this library was loaded from (the shared or the linking
// program), so an installed font is found wherever the prefix was.
std::string LibraryDirectory() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&FindFontPath), &info) == 0 || info.dli_fname == nullptr) return {};
  const std::string path = info.dli_fname;
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

}  // namespace

std::string GetExecutablePath() {
  std::string path;
#if defined(__APPLE__)
  char buffer[1024];
  uint32_t size = sizeof buffer;
  if (_NSGetExecutablePath(buffer, &size) != 0) return "./";
  path = buffer;
#else
  char buffer[PATH_MAX];
  const ssize_t length = ::readlink("/proc/self/exe", buffer, sizeof buffer - 1);
  if (length <= 0) return "./";
  path.assign(buffer, static_cast<size_t>(length));
#endif
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash);
}

std::vector<std::string> FontCandidates(const std::string& module_path) {
  std::vector<std::string> candidates;
  if (!module_path.empty()) candidates.push_back(module_path + "/fonts/" + kFontFile);
  const std::string exe_dir = GetExecutablePath();
  if (!exe_dir.empty()) candidates.push_back(exe_dir + "/assets/fonts/" + kFontFile);
  candidates.push_back(std::string("./assets/fonts/") + kFontFile);
  candidates.emplace_back("/Library/Fonts/Arial.ttf");
#if defined(__linux__)
  if (const std::string library_dir = LibraryDirectory(); !library_dir.empty()) {
    candidates.push_back(library_dir + "/../share/barcode_orv/fonts/" + kFontFile);
  }
#ifdef BARCODE_ORV_INSTALLED_FONT
  candidates.emplace_back(BARCODE_ORV_INSTALLED_FONT);
#endif
  candidates.emplace_back("/usr/share/fonts/truetype/roboto/unhinted/RobotoTTF/Roboto-Regular.ttf");
#endif
  return candidates;
}

std::string FindFontPath(const std::string& module_path) {
  for (const std::string& candidate : FontCandidates(module_path)) {
    if (PathExists(candidate)) return candidate;
  }
  return {};
}

std::mutex& Mutex() {
  static std::mutex mutex;
  return mutex;
}

TTF_Font* SizedFont(const std::string& path, int points) {
  auto& fonts = SizedFonts();
  const auto found = fonts.find(points);
  if (found != fonts.end()) return found->second.font.get();
  if (fonts.size() >= kMaxSizedFonts) {
    fonts.clear();
    cached_glyph_bytes = 0;
  }
  FontPtr opened(TTF_OpenFont(path.c_str(), points));
  if (!opened) {
    log::Error(std::string("TTF_OpenFont error: ") + SDL_GetError());
    return nullptr;
  }
  TTF_SetFontHinting(opened.get(), TTF_HINTING_MONO);
  TTF_Font* font = opened.get();
  fonts.emplace(points, SizedFontEntry{std::move(opened), {}, {}});
  return font;
}

SharedSurface RenderCharacter(int points, char character, SDL_Color color) {
  const auto sized = SizedFonts().find(points);
  if (sized == SizedFonts().end()) {
    SDL_SetError("no font open at %d points", points);
    return nullptr;
  }
  auto& glyphs = sized->second.glyphs;
  const GlyphKey key = KeyOf(character, color);
  if (const auto found = glyphs.find(key); found != glyphs.end()) return found->second;
  const char text[] = {character, '\0'};
  SharedSurface rendered = ShareSurface(TTF_RenderUTF8_Blended(sized->second.font.get(), text, color));
  if (!rendered) return nullptr;
  ClipToInk(rendered.get());
  const size_t bytes = PixelBytes(rendered.get());
  if (bytes > kMaxCachedGlyphBytes) return rendered;
  if (cached_glyph_bytes + bytes > kMaxCachedGlyphBytes) ForgetGlyphs();
  cached_glyph_bytes += bytes;
  glyphs.emplace(key, rendered);
  return rendered;
}

bool TextWidth(int points, const std::string& text, int* width) {
  const auto sized = SizedFonts().find(points);
  if (sized == SizedFonts().end()) {
    SDL_SetError("no font open at %d points", points);
    return false;
  }
  auto& widths = sized->second.widths;
  if (const auto found = widths.find(text); found != widths.end()) {
    *width = found->second;
    return true;
  }
  if (TTF_SizeUTF8(sized->second.font.get(), text.c_str(), width, nullptr) != 0) return false;
  if (text.size() <= kMaxRememberedText) {
    if (widths.size() >= kMaxRememberedWidths) widths.clear();
    widths.emplace(text, *width);
  }
  return true;
}

void CloseSizedFonts() {
  SizedFonts().clear();
  cached_glyph_bytes = 0;
}

void AbandonSizedFonts() {
  for (auto& sized : SizedFonts()) (void)sized.second.font.release();
  SizedFonts().clear();
  cached_glyph_bytes = 0;
}

void CreateSizedFontCache() { (void)SizedFonts(); }

bool HoldTtf() {
  if (holds_ttf) return true;
  if (TTF_Init() != 0) return false;
  holds_ttf = true;
  return true;
}

void ReleaseTtf() {
  if (holds_ttf.exchange(false)) TTF_Quit();
}

bool TtfDroppedUnderUs() { return holds_ttf && TTF_WasInit() == 0; }

void ForgetTtf() { holds_ttf = false; }

void MarkTornDown() { torn_down = true; }

bool TornDown() { return torn_down; }

}  // namespace barcode_orv::font
