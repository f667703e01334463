// PNG encoding of a canvas into memory.
#pragma once

#include <SDL.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace barcode_orv {

struct PngWorkspace;

// Writes canvases as PNG files, keeping zlib's stream and the row buffers from one image
// to the next as a handle keeps its canvas: set up afresh for every image they cost page
// faults that took up to two fifths of a draw. One owner, one thread at a time.
class PngEncoder {
 public:
  PngEncoder();
  ~PngEncoder();
  PngEncoder(PngEncoder&&) noexcept;
  PngEncoder& operator=(PngEncoder&&) noexcept;

  // As EncodeSurfacePng.
  std::vector<uint8_t> Encode(SDL_Surface* surface);

 private:
  std::unique_ptr<PngWorkspace> workspace_;
};

// The PNG file for `surface` (any 32-bit format). A canvas of at most 256 distinct colours
// is written as a palette image of the smallest bit depth with the same pixels; more
// colours go through SDL_image. Empty on failure, with the reason in SDL_GetError().
std::vector<uint8_t> EncodeSurfacePng(SDL_Surface* surface);

// Writes a pHYs chunk of `dpi` pixels per inch (as pixels per metre, rounded) right after
// the IHDR chunk of the PNG file `png`, which must not carry one yet. Nothing for dpi < 1.
void InsertPngResolution(std::vector<uint8_t>* png, int dpi);

}  // namespace barcode_orv
