// Locating the text font and keeping it open, once per process and per point size.
#pragma once

#include <SDL_ttf.h>

#include <mutex>
#include <string>
#include <vector>

#include "core/sdl_handles.h"

namespace barcode_orv::font {

// Directory of the running executable (without the trailing '/'), or "./".
std::string GetExecutablePath();

// Candidate font files in search order, for the given module path.
std::vector<std::string> FontCandidates(const std::string& module_path);

// First candidate that exists on the file system, or "".
std::string FindFontPath(const std::string& module_path);

// Guards every use of the shared fonts.
std::mutex& Mutex();

// The found font opened at `points` with mono hinting, kept open for later draws.
// Null (after logging) when it cannot be opened. Caller holds Mutex().
TTF_Font* SizedFont(const std::string& path, int points);

// `character` (one byte) rendered blended in `color` by the sized font at `points`, as
// TTF_RenderUTF8_Blended renders it: rendered once, then shared from a cache kept with
// that font, since shaping cannot change a lone character. The surface is only to be
// read (a blit writes into its source: copy it first). Null, with SDL's error set, when
// rendering fails. Caller holds Mutex() and has opened the font with SizedFont.
SharedSurface RenderCharacter(int points, char character, SDL_Color color);

// The width in pixels of `text` set in the sized font at `points`, as TTF_SizeUTF8 gives
// it, into `width`: short texts are measured once and then remembered with that font
// (a line is measured on every draw, and shaping it took a twentieth of a draw). False,
// with SDL's error set, when measuring fails. Caller holds Mutex() and has opened the
// font with SizedFont.
bool TextWidth(int points, const std::string& text, int* width);

// Closes every sized font.
void CloseSizedFonts();
// Forgets every sized font without closing it: for faces FreeType already freed.
void AbandonSizedFonts();
// Constructs the cache of sized fonts now, so that it outlives what is constructed after
// (objects of static storage are destroyed in the reverse order).
void CreateSizedFontCache();

// Takes the library's own SDL_ttf reference (its own TTF_Init, once), so that a host's
// TTF_Quit never frees the faces held here. False when SDL_ttf cannot start.
bool HoldTtf();
// Gives that reference back with the matching TTF_Quit, if it is held.
void ReleaseTtf();
// True when the reference is held but SDL_ttf is no longer initialised: a host called
// TTF_Quit once more than its own TTF_Init, and FreeType freed every face with it.
bool TtfDroppedUnderUs();
// Forgets a reference that is gone (see TtfDroppedUnderUs), so HoldTtf takes a new one.
void ForgetTtf();

// Set once the process-wide fonts were closed for good (library unload, process exit).
void MarkTornDown();
bool TornDown();

}  // namespace barcode_orv::font
