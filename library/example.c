/* Shows a picture as a deuteranope sees it: example < picture.ppm > seen.ppm */
#include <stdio.h>
#include <stdlib.h>
#include <tintora.h>

int main(void) {
  size_t width, height;
  tintora_transform *transform = NULL;
  if (scanf("P6 %zu %zu 255%*c", &width, &height) != 2) return 1;
  const ptrdiff_t row = 3 * (ptrdiff_t)width;
  unsigned char *pixels = malloc(height * (size_t)row);
  int status = tintora_simulation(TINTORA_DEUTAN, 1.0, TINTORA_BRETTEL_1997, TINTORA_SIMULATE,
                                  TINTORA_LINEAR, &transform);
  int done = status == TINTORA_OK && pixels && fread(pixels, (size_t)row, height, stdin) == height;
  if (done) {
    tintora_filter_rows(transform, TINTORA_RGB8, pixels, row, pixels, row, width, height);
    printf("P6 %zu %zu 255\n", width, height);
    done = fwrite(pixels, (size_t)row, height, stdout) == height;
  }
  free(pixels);
  tintora_free(transform);
  return !done;
}
