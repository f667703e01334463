/* The public header as a C program sees it: every declaration compiles as C and links. */
#include <stdio.h>
#include <string.h>

#include "barcode_ffi.h"

int main(void) {
  BarcodeHandle* handle = barcode_create(BARCODE_CODE39);
  uint32_t size = 0;
  const uint8_t* png;
  int ok;
  if (handle == NULL) return 1;
  barcode_set_foreground_color(handle, 0, 0, 0, 255);
  barcode_set_show_text(handle, 0);
  ok = barcode_draw_1d(handle, "C-API", 300, 100);
  png = barcode_get_image_data(handle, &size);
  if (!ok || png == NULL || size < 8 || memcmp(png, "\x89PNG", 4) != 0) return 2;
  barcode_set_output_format(handle, "svg");
  if (!barcode_draw_1d(handle, "C-API", 300, 100)) return 3;
  if (strncmp(barcode_get_svg(handle), "<?xml", 5) != 0) return 4;
  barcode_destroy(handle);
  barcode_destroy(NULL);
  if (barcode_create(19) != NULL) return 5;
  printf("C interface usable from C\n");
  return 0;
}
