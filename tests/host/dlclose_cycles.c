/* A host that knows nothing of SDL: loads the library, draws Code 128 with its text line
 * and unloads it, five times. SDL is unloaded with the library each time, so anything
 * the library leaves in SDL's keeping shows as lost; run under valgrind, nothing may be. */
#include <dlfcn.h>
#include <stdio.h>

#include "barcode_ffi.h"

typedef BarcodeHandle* (*CreateFn)(int);
typedef void (*DestroyFn)(BarcodeHandle*);
typedef int (*Draw1dFn)(BarcodeHandle*, const char*, int, int);

int main(int argc, char** argv) {
  int cycle;
  if (argc < 2) return 11;
  for (cycle = 0; cycle < 5; ++cycle) {
    void* loaded = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    CreateFn create;
    DestroyFn destroy;
    Draw1dFn draw_1d;
    BarcodeHandle* handle;
    int drawn;
    if (loaded == NULL) {
      fprintf(stderr, "%s\n", dlerror());
      return 12;
    }
    create = (CreateFn)dlsym(loaded, "barcode_create");
    destroy = (DestroyFn)dlsym(loaded, "barcode_destroy");
    draw_1d = (Draw1dFn)dlsym(loaded, "barcode_draw_1d");
    if (!create || !destroy || !draw_1d) return 13;
    handle = create(BARCODE_CODE128);
    drawn = handle != NULL && draw_1d(handle, "HOST-42", 300, 100);
    destroy(handle);
    if (!drawn) return 20;
    if (dlclose(loaded) != 0) return 30;
  }
  return 0;
}
