/* Shows a picture as a deuteranope sees it: example < picture.ppm > seen.ppm */
#include <stdio.h>
#include <stdlib.h>
#include <tintora.h>

int main(void) {
  size_t width, height;
  tintora_transform *transform;
  if (scanf("P6 %zu %zu 255%*c", &width, &height) != 2) return 1;
  unsigned char *pixels = malloc(3 * width * height);
  if (!pixels || fread(pixels, 3 * width, height, stdin) != height) return 1;
  int status = tintora_simulation(TINTORA_DEUTAN, 1.0, TINTORA_BRETTEL_1997, TINTORA_SIMULATE,
                                  TINTORA_LINEAR, &transform);
  if (status == TINTORA_OK) {
    ptrdiff_t stride = 3 * (ptrdiff_t)width;
    status = tintora_filter_rows(transform, TINTORA_RGB8, pixels, stride, pixels, stride, width,
                                 height);
  }
  if (status != TINTORA_OK) fprintf(stderr, "%s\n", tintora_message(status));
  printf("P6 %zu %zu 255\n", width, height);
  return status != TINTORA_OK || fwrite(pixels, 3 * width, height, stdout) != height;
}
