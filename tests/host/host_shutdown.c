/* A host that uses SDL, SDL_ttf and SDL_image itself around the library:
 *   exit    draw with the text line, then TTF_Quit, IMG_Quit, SDL_Quit and return;
 *   reinit  draw, TTF_Quit, TTF_Init, draw again (same bytes), then shut everything down;
 *   dlclose load the library at run time, draw, unload it, then shut SDL down (built
 *           without linking the library, so that dlclose really unloads it);
 *   extra-quit  draw, then TTF_Quit twice (once more than the host's TTF_Init, which
 *           takes the library's own reference and every face with it), draw again (same
 *           bytes) and exit.
 * Each mode must end with status 0 and no memory error. */
#include <SDL.h>
#include <SDL_image.h>
#include <SDL_ttf.h>
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "barcode_ffi.h"

typedef BarcodeHandle* (*CreateFn)(int);
typedef void (*DestroyFn)(BarcodeHandle*);
typedef int (*Draw1dFn)(BarcodeHandle*, const char*, int, int);
typedef const uint8_t* (*ImageFn)(BarcodeHandle*, uint32_t*);

struct Library {
  CreateFn create;
  DestroyFn destroy;
  Draw1dFn draw_1d;
  ImageFn image_data;
};

/* Draws Code 128 with its text line; copies the PNG into `out` (malloc'd). */
static int DrawOnce(const struct Library* lib, uint8_t** out, uint32_t* out_size) {
  BarcodeHandle* handle = lib->create(BARCODE_CODE128);
  const uint8_t* png = NULL;
  if (handle != NULL && lib->draw_1d(handle, "HOST-42", 300, 100)) png = lib->image_data(handle, out_size);
  if (png != NULL && *out_size > 0) {
    *out = (uint8_t*)malloc(*out_size);
    memcpy(*out, png, *out_size);
  }
  if (handle != NULL) lib->destroy(handle);
  return *out != NULL;
}

int main(int argc, char** argv) {
  const char* mode = argc > 1 ? argv[1] : "exit";
#ifdef HOST_LOADS_LIBRARY_AT_RUN_TIME
  struct Library lib = {NULL, NULL, NULL, NULL};
#else
  struct Library lib = {barcode_create, barcode_destroy, barcode_draw_1d, barcode_get_image_data};
#endif
  uint8_t* first = NULL;
  uint8_t* second = NULL;
  uint32_t first_size = 0;
  uint32_t second_size = 0;
  void* loaded = NULL;
  int same;

  if (SDL_Init(0) != 0 || TTF_Init() != 0) return 10;
  IMG_Init(IMG_INIT_PNG);
  if (strcmp(mode, "dlclose") == 0) {
    if (argc < 3) return 11;
    loaded = dlopen(argv[2], RTLD_NOW | RTLD_LOCAL);
    if (loaded == NULL) {
      fprintf(stderr, "%s\n", dlerror());
      return 12;
    }
    lib.create = (CreateFn)dlsym(loaded, "barcode_create");
    lib.destroy = (DestroyFn)dlsym(loaded, "barcode_destroy");
    lib.draw_1d = (Draw1dFn)dlsym(loaded, "barcode_draw_1d");
    lib.image_data = (ImageFn)dlsym(loaded, "barcode_get_image_data");
    if (!lib.create || !lib.destroy || !lib.draw_1d || !lib.image_data) return 13;
  }
  if (!DrawOnce(&lib, &first, &first_size)) return 20;
  if (strcmp(mode, "reinit") == 0) {
    TTF_Quit();
    if (TTF_Init() != 0) return 21;
    if (!DrawOnce(&lib, &second, &second_size)) return 22;
    same = first_size == second_size && memcmp(first, second, first_size) == 0;
    free(second);
    if (!same) return 23;
  }
  if (strcmp(mode, "extra-quit") == 0) {
    TTF_Quit();
    TTF_Quit();
    if (!DrawOnce(&lib, &second, &second_size)) return 24;
    same = first_size == second_size && memcmp(first, second, first_size) == 0;
    free(second);
    if (!same) return 25;
  }
  free(first);
  if (loaded != NULL && dlclose(loaded) != 0) return 30;
  TTF_Quit();
  IMG_Quit();
  SDL_Quit();
  return 0;
}
