#include "core/barcode_base.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <mutex>
#include <stdexcept>

#include "core/fixed_format.h"
#include "core/log.h"
#include "core/pixel_blend.h"
#include "core/png_encoder.h"

namespace barcode_orv {
namespace {

// A valid 1 x 1 PNG (one white grey pixel), returned when there is no canvas to encode.
constexpr const char* kFallbackImage =
    "data:image/png;base64,"
    "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR42mP4DwABAQEAHLCMmQAAAABJRU5ErkJggg==";

constexpr const char* kSvgNamespace = "http://www.w3.org/2000/svg";

std::mutex& ModulePathMutex() {
  static std::mutex mutex;
  return mutex;
}

std::string& ModulePathStorage() {
  static std::string path;
  return path;
}

SDL_Color ColorFrom(int r, int g, int b, int a) {
  // Each component keeps its low 8 bits, so 256 wraps to 0.
  return SDL_Color{static_cast<Uint8>(r), static_cast<Uint8>(g), static_cast<Uint8>(b), static_cast<Uint8>(a)};
}

// One reference to the canvas pixel format, held from the first canvas to unload or exit.
struct KeptPixelFormat {
  KeptPixelFormat() : format(SDL_AllocFormat(SDL_PIXELFORMAT_ABGR8888)) {}
  ~KeptPixelFormat() { SDL_FreeFormat(format); }
  KeptPixelFormat(const KeptPixelFormat&) = delete;
  KeptPixelFormat& operator=(const KeptPixelFormat&) = delete;
  SDL_PixelFormat* format;
};

void AppendInt(std::string& out, long long value) {
  char buffer[24];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  out.append(buffer, result.ptr);
}

// Character data of an XML element: '&', '<', '>' and '"' as their entities, and the C0
// controls XML 1.0 forbids (a Code 128 text may hold them) as their pictures, U+2400 on.
void AppendEscapedXml(std::string& out, const std::string& text) {
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    switch (c) {
      case '&': out += "&amp;"; break;
      case '<': out += "&lt;"; break;
      case '>': out += "&gt;"; break;
      case '"': out += "&quot;"; break;
      default:
        if (byte < 0x20 && c != '\t' && c != '\n' && c != '\r') {
          out += "\xE2\x90";
          out += static_cast<char>(0x80 + byte);
        } else {
          out += c;
        }
    }
  }
}

}  // namespace

BarcodeBase::BarcodeBase(std::string output_format) : output_format_(std::move(output_format)) {}

BarcodeBase::BarcodeBase(SDL_Renderer* canvas) : external_canvas_(canvas) {}

BarcodeBase::~BarcodeBase() = default;

void BarcodeBase::SetForegroundColor(int r, int g, int b, int a) { fore_color = ColorFrom(r, g, b, a); }

void BarcodeBase::SetBackgroundColor(int r, int g, int b, int a) { back_color = ColorFrom(r, g, b, a); }

bool BarcodeBase::IsSvgOutput() const { return output_format_ == "svg" || output_format_ == "SVG"; }

bool BarcodeBase::IsRasterOutput() const {
  return output_format_ == "png" || output_format_ == "jpg" || output_format_ == "jpeg";
}

bool BarcodeBase::Draw(const std::string& /*text*/, int /*x*/, int /*y*/, int width, int height) {
  draw_width = width;
  draw_height = height;
  if (!IsRasterOutput()) {
    // Silent by default; a host can still read why nothing was drawn.
    if (!IsSvgOutput() && external_canvas_ == nullptr) log::Reason("Unknown output format \"" + output_format_ + "\"");
    return true;
  }
  if (!CreateSurface(width, height)) return false;
  ClearCanvas(back_color);
  return true;
}

bool BarcodeBase::DrawSvg(const std::string& /*text*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/) {
  return false;
}

std::string BarcodeBase::CanvasSizeProblem(int width, int height) {
  // SDL addresses the pixels with int offsets and lays rectangles out in float: beyond
  // either limit it writes outside the canvas instead of failing.
  constexpr int64_t kMaxSide = int64_t{1} << 24;
  constexpr int64_t kMaxBytes = INT_MAX;
  if (width <= 0 || height <= 0) return {};
  // Sides first: within them the byte count cannot overflow.
  if (width <= kMaxSide && height <= kMaxSide && int64_t{width} * height * 4 <= kMaxBytes) return {};
  return "canvas " + std::to_string(width) + "x" + std::to_string(height) + " is larger than " +
         std::to_string(kMaxBytes) + " bytes or " + std::to_string(kMaxSide) + " pixels a side";
}

bool BarcodeBase::CreateSurface(int width, int height) {
  if (const std::string problem = CanvasSizeProblem(width, height); !problem.empty()) {
    log::Error("サーフェス作成に失敗: " + problem);
    return false;
  }
  // A canvas of the same size is reused: every draw clears it before painting, so the
  // result is the same as a fresh one without the allocation.
  if (surface_ && renderer_ && surface_->w == width && surface_->h == height) return true;
  // So is the one a data URI retired (it reads as gone until this draw takes it back).
  if (spare_surface_ && spare_surface_->w == width && spare_surface_->h == height) {
    surface_ = std::move(spare_surface_);
    renderer_ = std::move(spare_renderer_);
    return true;
  }
  DropCanvas();
  // SDL shares one format object among all surfaces of a format and frees it with the
  // last of them. Keeping it for the process saves that allocation per canvas and keeps
  // threads drawing on separate handles from freeing and re-making it under each other
  // (SDL's spinlock around its refcount is invisible to thread sanitizers).
  // Given back when the library is unloaded: SDL may be unloaded with it, taking the
  // list that still points to the format.
  static const KeptPixelFormat kept_format;
  SurfacePtr surface(SDL_CreateRGBSurfaceWithFormat(0, width, height, 32, SDL_PIXELFORMAT_ABGR8888));
  if (!surface) {
    log::Error(std::string("サーフェス作成に失敗: ") + SDL_GetError());
    return false;
  }
  RendererPtr renderer(SDL_CreateSoftwareRenderer(surface.get()));
  if (!renderer) {
    log::Error(std::string("レンダラー作成に失敗: ") + SDL_GetError());
    return false;
  }
  surface_ = std::move(surface);
  renderer_ = std::move(renderer);
  return true;
}

void BarcodeBase::ReleaseCanvas() {
  spare_renderer_ = std::move(renderer_);
  spare_surface_ = std::move(surface_);
}

void BarcodeBase::DiscardOutput() {
  ReleaseCanvas();
  svg_.clear();
}

void BarcodeBase::DropCanvas() {
  renderer_.reset();
  surface_.reset();
  spare_renderer_.reset();
  spare_surface_.reset();
}

void BarcodeBase::ClearCanvas(SDL_Color color) {
  SDL_Renderer* renderer = canvas_renderer();
  if (renderer == nullptr) return;
  if (OwnsCanvas()) {
    FillOwnCanvas(0, 0, surface_->w, surface_->h, color);
    return;
  }
  SDL_SetRenderDrawColor(renderer, color.r, color.g, color.b, color.a);
  SDL_RenderClear(renderer);
}

bool BarcodeBase::OwnsCanvas() const {
  return surface_ && renderer_ && surface_->format->BytesPerPixel == 4 && !SDL_MUSTLOCK(surface_.get());
}

Uint32 BarcodeBase::OwnCanvasPixel(SDL_Color color) {
  SDL_RenderFlush(renderer_.get());  // queued renderer work lands first
  return SDL_MapRGBA(surface_->format, color.r, color.g, color.b, color.a);
}

void BarcodeBase::FillOwnCanvas(int left, int top, int width, int height, SDL_Color color) {
  // The same pixels the software renderer writes for a fill without blending, without
  // its per-call overhead, and with ordinary stores: SDL's clear streams past the cache,
  // so every bar painted after it would start with a cache miss.
  const Uint32 pixel = OwnCanvasPixel(color);
  auto* row = static_cast<uint8_t*>(surface_->pixels) + static_cast<ptrdiff_t>(top) * surface_->pitch +
              static_cast<ptrdiff_t>(left) * 4;
  if (width <= 0 || height <= 0) return;
  // The first row pixel by pixel, the others copied from it: a wide copy moves whole
  // vector registers where the fill stores one pixel at a time.
  constexpr int kCopiedWidth = 16;
  const uint8_t* first = row;
  std::fill_n(reinterpret_cast<Uint32*>(row), width, pixel);
  for (int y = 1; y < height; ++y) {
    row += surface_->pitch;
    if (width >= kCopiedWidth) {
      std::memcpy(row, first, static_cast<size_t>(width) * 4);
    } else {
      std::fill_n(reinterpret_cast<Uint32*>(row), width, pixel);
    }
  }
}

void BarcodeBase::FillRectF(float x, float y, float width, float height, SDL_Color color) {
  // The software renderer truncates position and size separately, which thins every
  // fractional bar by up to a pixel in favour of the spaces. Snapping both edges to the
  // nearest pixel keeps bars and spaces unbiased (and keeps at least one pixel).
  const double left = std::round(static_cast<double>(x));
  const double top = std::round(static_cast<double>(y));
  const double right = std::max(std::round(static_cast<double>(x) + width), left + 1.0);
  const double bottom = std::max(std::round(static_cast<double>(y) + height), top + 1.0);
  FillClipped(left, top, right, bottom, color);
}

void BarcodeBase::FillBars(const std::vector<SDL_FRect>& bars, SDL_Color color) {
  int canvas_w = 0;
  int canvas_h = 0;
  if (bars.empty() || !OwnsCanvas() || canvas_renderer() != renderer_.get() || !CanvasExtent(&canvas_w, &canvas_h)) {
    for (const SDL_FRect& bar : bars) FillRectF(bar.x, bar.y, bar.w, bar.h, color);
    return;
  }
  // The pixels FillRectF and FillClipped give each bar.
  struct Pixels {
    int left;
    int top;
    int right;
    int bottom;
  };
  std::vector<Pixels> boxes;
  boxes.reserve(bars.size());
  std::vector<int> edges;  // the rows where the set of bars changes
  const auto clamp = [](double value, int high) { return std::clamp(value, 0.0, static_cast<double>(high)); };
  for (const SDL_FRect& bar : bars) {
    const double left = std::round(static_cast<double>(bar.x));
    const double top = std::round(static_cast<double>(bar.y));
    const double right = clamp(std::max(std::round(static_cast<double>(bar.x) + bar.w), left + 1.0), canvas_w);
    const double bottom = clamp(std::max(std::round(static_cast<double>(bar.y) + bar.h), top + 1.0), canvas_h);
    const double clipped_left = clamp(left, canvas_w);
    const double clipped_top = clamp(top, canvas_h);
    if (!(right > clipped_left) || !(bottom > clipped_top)) continue;  // also false for NaN
    boxes.push_back(Pixels{static_cast<int>(clipped_left), static_cast<int>(clipped_top), static_cast<int>(right),
                           static_cast<int>(bottom)});
    edges.push_back(boxes.back().top);
    edges.push_back(boxes.back().bottom);
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  // Between two edges every row holds the same bars (and, before them, background only):
  // FillSpans paints the first and copies it down.
  std::vector<Span> spans;
  for (size_t band = 0; band + 1 < edges.size(); ++band) {
    spans.clear();
    for (const Pixels& box : boxes) {
      if (box.top <= edges[band] && box.bottom >= edges[band + 1])
        spans.push_back(Span{box.left, box.right - box.left});
    }
    FillSpans(spans, edges[band], edges[band + 1] - edges[band], color);
  }
}

void BarcodeBase::FillRect(int x, int y, int width, int height, SDL_Color color) {
  if (width <= 0 || height <= 0) return;
  FillClipped(x, y, static_cast<double>(x) + width, static_cast<double>(y) + height, color);
}

void BarcodeBase::FillSpans(const std::vector<Span>& spans, int top, int height, SDL_Color color) {
  if (spans.empty() || height <= 0) return;
  if (!OwnsCanvas() || height == 1) {
    for (const Span& span : spans) FillRect(span.x, top, span.width, height, color);
    return;
  }
  const int first = std::max(top, 0);
  const int end = static_cast<int>(std::min<int64_t>(int64_t{top} + height, surface_->h));
  if (first >= end) return;
  // The pixels FillOwnCanvas writes, with one flush and colour mapping for all spans.
  const Uint32 pixel = OwnCanvasPixel(color);
  auto* const first_row = reinterpret_cast<Uint32*>(static_cast<uint8_t*>(surface_->pixels) +
                                                    static_cast<ptrdiff_t>(first) * surface_->pitch);
  int64_t left = surface_->w;
  int64_t right = 0;
  for (const Span& span : spans) {
    const int64_t from = std::clamp<int64_t>(span.x, 0, surface_->w);
    const int64_t to = std::clamp<int64_t>(int64_t{span.x} + std::max(span.width, 0), 0, surface_->w);
    if (to <= from) continue;
    std::fill(first_row + from, first_row + to, pixel);
    left = std::min(left, from);
    right = std::max(right, to);
  }
  if (right <= left) return;
  auto* const pixels = static_cast<uint8_t*>(surface_->pixels) + left * 4;
  const uint8_t* const source = pixels + static_cast<ptrdiff_t>(first) * surface_->pitch;
  const auto bytes = static_cast<size_t>(right - left) * 4;
  for (int y = first + 1; y < end; ++y)
    std::memcpy(pixels + static_cast<ptrdiff_t>(y) * surface_->pitch, source, bytes);
}

void BarcodeBase::FillClipped(double left, double top, double right, double bottom, SDL_Color color) {
  SDL_Renderer* renderer = canvas_renderer();
  if (renderer == nullptr) return;
  // Clip to the canvas here: coordinates far outside it (huge pixel adjustments) would
  // overflow the renderer's own integer arithmetic.
  int output_w = 0;
  int output_h = 0;
  if (!CanvasExtent(&output_w, &output_h)) return;
  const double canvas_w = output_w;
  const double canvas_h = output_h;
  left = std::clamp(left, 0.0, canvas_w);
  right = std::clamp(right, 0.0, canvas_w);
  top = std::clamp(top, 0.0, canvas_h);
  bottom = std::clamp(bottom, 0.0, canvas_h);
  if (!(right > left) || !(bottom > top)) return;  // also false for NaN
  const SDL_Rect rect{static_cast<int>(left), static_cast<int>(top), static_cast<int>(right - left),
                      static_cast<int>(bottom - top)};
  if (renderer == renderer_.get() && OwnsCanvas()) {
    FillOwnCanvas(rect.x, rect.y, rect.w, rect.h, color);
    return;
  }
  SDL_SetRenderDrawColor(renderer, color.r, color.g, color.b, color.a);
  SDL_RenderFillRect(renderer, &rect);
}

bool BarcodeBase::CanvasExtent(int* width, int* height) const {
  SDL_Renderer* renderer = canvas_renderer();
  if (renderer == nullptr) return false;
  if (surface_ && renderer == renderer_.get()) {
    *width = surface_->w;
    *height = surface_->h;
    return true;
  }
  return SDL_GetRendererOutputSize(renderer, width, height) == 0;
}

bool BarcodeBase::BlendOntoCanvas(const SDL_Surface* image, int left, int top) {
  SDL_Renderer* renderer = canvas_renderer();
  if (renderer == nullptr) return false;
  if (OwnsCanvas()) {
    SDL_RenderFlush(renderer);
    if (CanBlendGlyph(image, surface_.get())) {
      BlendGlyph(image, surface_.get(), left, top);
      return true;
    }
  }
  // SDL writes into the source surface it blits or uploads: a copy, as the image may be
  // a glyph other draws share.
  SurfacePtr copy(SDL_ConvertSurface(const_cast<SDL_Surface*>(image), image->format, 0));
  if (!copy) return false;
  if (OwnsCanvas()) {
    // The blit the software renderer's copy ends in, without first copying the image
    // into a texture: the same pixels.
    SDL_SetSurfaceBlendMode(copy.get(), SDL_BLENDMODE_BLEND);
    SDL_Rect target{left, top, copy->w, copy->h};
    return SDL_BlitSurface(copy.get(), nullptr, surface_.get(), &target) == 0;
  }
  TexturePtr texture(SDL_CreateTextureFromSurface(renderer, copy.get()));
  if (!texture) return false;
  SDL_SetTextureBlendMode(texture.get(), SDL_BLENDMODE_BLEND);
  const SDL_Rect target{left, top, copy->w, copy->h};
  SDL_RenderCopy(renderer, texture.get(), nullptr, &target);
  return true;
}

std::vector<uint8_t> BarcodeBase::SaveSurfaceToMemory(SDL_Surface* surface) {
  PngEncoder encoder;
  return SaveSurfaceToMemory(surface, &encoder);
}

std::vector<uint8_t> BarcodeBase::SaveSurfaceToMemory(SDL_Surface* surface, PngEncoder* encoder) {
  if (surface == nullptr) {
    log::Progress("ERROR: サーフェスがnullです");
    return {};
  }
  std::vector<uint8_t> png = encoder->Encode(surface);
  if (png.empty()) {
    const std::string line = std::string("ERROR: PNG保存に失敗しました: ") + SDL_GetError();
    log::Progress(line);
    log::Reason(line);
    return {};
  }
  if (!log::Quiet()) {
    log::Progress("PNG保存: " + std::to_string(surface->w) + "x" + std::to_string(surface->h) + " → " +
                  std::to_string(png.size()) + " バイト");
  }
  return png;
}

std::vector<uint8_t> BarcodeBase::GetImageMemory() {
  if (SDL_Renderer* renderer = canvas_renderer()) SDL_RenderPresent(renderer);
  std::vector<uint8_t> png = SaveSurfaceToMemory(surface_.get(), &png_encoder_);
  InsertPngResolution(&png, dpi_);
  return png;
}

std::string BarcodeBase::GetImageBase64() {
  if (IsSvgOutput()) {
    throw std::runtime_error("GetImageBase64() is not available in SVG mode. Use GetSvg() instead.");
  }
  try {
    if (SDL_Renderer* renderer = canvas_renderer()) SDL_RenderPresent(renderer);
    std::vector<uint8_t> png = SaveSurfaceToMemory(surface_.get(), &png_encoder_);
    InsertPngResolution(&png, dpi_);
    // The canvas is consumed: a data URI is fetched once per draw.
    ReleaseCanvas();
    if (png.empty()) return GetFallbackImage();
    const bool jpeg_label = output_format_ == "jpg" || output_format_ == "jpeg";
    // Deliberate: "jpg"/"jpeg" only relabel the data URI; the bytes are always PNG.
    std::string uri = jpeg_label ? "data:image/jpeg;base64," : "data:image/png;base64,";
    uri += Base64Encode(png.data(), png.size());
    return uri;
  } catch (const std::exception& error) {
    return std::string("Error: ") + error.what();
  }
}

std::string BarcodeBase::GetSvg() const {
  if (!IsSvgOutput()) {
    throw std::runtime_error("GetSvg() requires SVG output mode. Use constructor with \"svg\" parameter.");
  }
  return svg_;
}

std::string BarcodeBase::Base64Encode(const uint8_t* bytes, size_t length) {
  static constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((length + 2) / 3 * 4);
  size_t i = 0;
  for (; i + 3 <= length; i += 3) {
    const uint32_t triple = (uint32_t{bytes[i]} << 16) | (uint32_t{bytes[i + 1]} << 8) | bytes[i + 2];
    out.push_back(kAlphabet[(triple >> 18) & 63]);
    out.push_back(kAlphabet[(triple >> 12) & 63]);
    out.push_back(kAlphabet[(triple >> 6) & 63]);
    out.push_back(kAlphabet[triple & 63]);
  }
  const size_t rest = length - i;
  if (rest > 0) {
    uint32_t triple = uint32_t{bytes[i]} << 16;
    if (rest == 2) triple |= uint32_t{bytes[i + 1]} << 8;
    out.push_back(kAlphabet[(triple >> 18) & 63]);
    out.push_back(kAlphabet[(triple >> 12) & 63]);
    out.push_back(rest == 2 ? kAlphabet[(triple >> 6) & 63] : '=');
    out.push_back('=');
  }
  return out;
}

std::string BarcodeBase::GetFallbackImage() { return kFallbackImage; }

void BarcodeBase::SetModulePath(const std::string& path) {
  const std::lock_guard<std::mutex> lock(ModulePathMutex());
  ModulePathStorage() = path;
}

std::string BarcodeBase::GetModulePath() {
  const std::lock_guard<std::mutex> lock(ModulePathMutex());
  return ModulePathStorage();
}

// ---- SVG document builder ----

void BarcodeBase::AppendFixed(double value) {
  // Same bytes as a stream in fixed notation with two decimals.
  AppendFixed2(svg_, value);
}

void BarcodeBase::SvgBegin(int width, int height) {
  svg_width = width;
  svg_height = height;
  svg_.clear();
  AppendSvgHeader(svg_, std::to_string(width), std::to_string(height), width, height);
  svg_body_ = svg_.size();
}

void BarcodeBase::AppendSvgHeader(std::string& out, const std::string& width, const std::string& height, int view_width,
                                  int view_height) {
  out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"";
  out += kSvgNamespace;
  out += "\" version=\"1.1\" width=\"";
  out += width;
  out += "\" height=\"";
  out += height;
  out += "\" viewBox=\"0 0 ";
  AppendInt(out, view_width);
  out += ' ';
  AppendInt(out, view_height);
  out += "\">\n";
}

void BarcodeBase::SvgRect(float x, float y, float width, float height, SDL_Color color) {
  svg_ += "  <rect x=\"";
  AppendFixed(x);
  svg_ += "\" y=\"";
  AppendFixed(y);
  svg_ += "\" width=\"";
  AppendFixed(width);
  svg_ += "\" height=\"";
  AppendFixed(height);
  svg_ += '"';
  AppendFill(color);
  svg_ += "/>\n";
}

void BarcodeBase::SvgPath(const std::string& d, SDL_Color color) {
  svg_ += "  <path d=\"";
  svg_ += d;
  svg_ += '"';
  AppendFill(color);
  svg_ += " shape-rendering=\"crispEdges\"/>\n";
}

void BarcodeBase::AppendFill(SDL_Color color) {
  svg_ += " fill=\"";
  svg_ += ColorToRgbString(color);
  svg_ += '"';
  if (color.a < 255) {
    svg_ += " fill-opacity=\"";
    AppendFixed(color.a / 255.0);
    svg_ += '"';
  }
}

void BarcodeBase::SvgText(float x, float y, const std::string& text, int font_size, SDL_Color color,
                          const std::string& anchor) {
  svg_ += "  <text x=\"";
  AppendFixed(x);
  svg_ += "\" y=\"";
  AppendFixed(y);
  svg_ += "\" font-family=\"Arial, sans-serif\" font-size=\"";
  AppendInt(svg_, font_size);
  svg_ += "\" fill=\"";
  svg_ += ColorToRgbString(color);
  svg_ += "\" text-anchor=\"";
  svg_ += anchor;
  svg_ += "\" dominant-baseline=\"hanging\">";
  AppendEscapedXml(svg_, text);  // a '<' or '&' copied as it is would end the document
  svg_ += "</text>\n";
}

void BarcodeBase::SvgEnd() { svg_ += "</svg>\n"; }

std::string BarcodeBase::ColorToRgbString(SDL_Color color) {
  std::string out = "rgb(";
  AppendInt(out, color.r);
  out += ',';
  AppendInt(out, color.g);
  out += ',';
  AppendInt(out, color.b);
  out += ')';
  return out;
}

}  // namespace barcode_orv
