/* The library as a C program has it: the header in strict C11, and the shared library. */
#include <math.h>
#include <stdio.h>
#include <string.h>
#include <tintora.h>

static int failures = 0;

static void expect(int holds, const char *what) {
  if (holds) return;
  failures += 1;
  fprintf(stderr, "Does not hold: %s\n", what);
}
#define EXPECT(condition) expect((condition), #condition)

static int simulation(int vision, double severity, int algorithm, int use, int light) {
  tintora_transform *transform = (tintora_transform *)&failures;
  const int status = tintora_simulation(vision, severity, algorithm, use, light, &transform);
  expect((status == TINTORA_OK) == (transform != NULL), "a transform is made on success only");
  tintora_free(transform);
  return status;
}

static int effect(int number, double amount, int light) {
  tintora_transform *transform = (tintora_transform *)&failures;
  const int status = tintora_colour_effect(number, amount, light, &transform);
  expect((status == TINTORA_OK) == (transform != NULL), "an effect is made on success only");
  tintora_free(transform);
  return status;
}

static void expectSimulationsRefused(void) {
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, TINTORA_JUDD_1948, 0, 0) == TINTORA_OK);
  EXPECT(simulation(TINTORA_DEUTAN, 0.0, TINTORA_JUDD_1948, 0, 0) == TINTORA_OK);
  EXPECT(simulation(TINTORA_DEUTAN, 1.0, TINTORA_JUDD_1948, 0, 0) == TINTORA_OK);
  EXPECT(simulation(-1, 0.5, 0, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(4, 0.5, 0, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, -0.01, 0, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 1.01, 0, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, (double)NAN, 0, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, -1, 0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, 6, 0, 1) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, 0, 3, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, 0, 0, 2) == TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 0.5, TINTORA_BRETTEL_1997, 0, TINTORA_ENCODED) ==
         TINTORA_BAD_ARGUMENT);
  EXPECT(simulation(TINTORA_DEUTAN, 1.0, TINTORA_JUDD_1948, TINTORA_INVERT, 0) ==
         TINTORA_NO_INVERSE);
  EXPECT(simulation(TINTORA_DEUTAN, 1.0, TINTORA_BRETTEL_1997, TINTORA_INVERT, 1) ==
         TINTORA_NO_INVERSE);
  EXPECT(simulation(TINTORA_DEUTAN, 0.999, TINTORA_BRETTEL_1997, TINTORA_INVERT, 1) == TINTORA_OK);
  EXPECT(tintora_simulation(TINTORA_DEUTAN, 1.0, 0, 0, 0, NULL) == TINTORA_BAD_ARGUMENT);
}

static void expectEffectsRefused(void) {
  int number;
  for (number = TINTORA_GREYSCALE; number <= TINTORA_PASS_CYAN; ++number) {
    EXPECT(effect(number, 1.0, TINTORA_LINEAR) == TINTORA_OK);
    EXPECT(effect(number, 1.01, TINTORA_LINEAR) == TINTORA_BAD_ARGUMENT);
    EXPECT(effect(number, -1.01, TINTORA_LINEAR) == TINTORA_BAD_ARGUMENT);
    EXPECT(effect(number, (double)NAN, TINTORA_LINEAR) == TINTORA_BAD_ARGUMENT);
  }
  EXPECT(effect(TINTORA_GREYSCALE, 0.99, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(effect(TINTORA_INVERT_CHANNELS, 0.99, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(effect(TINTORA_BRIGHTNESS, -1.0, 0) == TINTORA_OK);
  for (number = TINTORA_CONTRAST; number <= TINTORA_PASS_CYAN; ++number) {
    EXPECT(effect(number, 0.0, 0) == TINTORA_OK);
    EXPECT(effect(number, -0.01, 0) == TINTORA_BAD_ARGUMENT);
  }
  EXPECT(effect(-1, 1.0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(effect(TINTORA_PASS_CYAN + 1, 1.0, 0) == TINTORA_BAD_ARGUMENT);
  EXPECT(effect(TINTORA_GREYSCALE, 1.0, -1) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_colour_effect(TINTORA_GREYSCALE, 1.0, 0, NULL) == TINTORA_BAD_ARGUMENT);
}

static void expectMatricesRefused(void) {
  static const float identity[25] = {1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1,
                                     0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1};
  float matrix[25] = {0};
  int i;
  tintora_transform *transform = NULL;
  /* The alpha row and column are not used. */
  memcpy(matrix, identity, sizeof matrix);
  for (i = 0; i < 5; ++i) matrix[15 + i] = matrix[5 * i + 3] = matrix[5 * i + 4] = 7;
  EXPECT(tintora_from_matrix(matrix, 0, &transform) == TINTORA_OK);
  EXPECT(tintora_matrix(transform, matrix) == TINTORA_OK);
  EXPECT(memcmp(matrix, identity, sizeof matrix) == 0);
  tintora_free(transform);
  EXPECT(tintora_from_matrix(NULL, 0, &transform) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_from_matrix(matrix, 2, &transform) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_from_matrix(matrix, 0, NULL) == TINTORA_BAD_ARGUMENT);
  matrix[22] = (float)INFINITY;
  transform = (tintora_transform *)&failures;
  EXPECT(tintora_from_matrix(matrix, 0, &transform) == TINTORA_BAD_ARGUMENT);
  EXPECT(transform == NULL);
  EXPECT(tintora_matrix(NULL, matrix) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_simulation(TINTORA_PROTAN, 1.0, TINTORA_BRETTEL_1997, 0, 1, &transform) ==
         TINTORA_OK);
  EXPECT(tintora_matrix(transform, matrix) == TINTORA_NO_MATRIX);
  EXPECT(tintora_matrix(transform, NULL) == TINTORA_BAD_ARGUMENT);
  tintora_free(transform);
  tintora_free(NULL);
}

/* A refused call writes nothing. */
static void expectRowsRefused(void) {
  unsigned char pixels[64], before[64];
  tintora_transform *transform = NULL;
  memset(pixels, 77, sizeof pixels);
  memcpy(before, pixels, sizeof pixels);
  EXPECT(tintora_colour_effect(TINTORA_INVERT_CHANNELS, 1.0, 0, &transform) == TINTORA_OK);
  EXPECT(tintora_filter_rows(NULL, 0, pixels, 16, pixels, 16, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, -1, pixels, 16, pixels, 16, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 4, pixels, 16, pixels, 16, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, NULL, 16, pixels, 16, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 16, NULL, 16, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 15, pixels, 15, 4, 4) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 16, pixels, 16, (size_t)-1, 1) ==
         TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 16, pixels, 16, (size_t)-1 / 4, 1) ==
         TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 0, pixels, 0, 4, 2) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, pixels, -15, pixels, -15, 4, 2) == TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, TINTORA_RGBA16, pixels + 1, 16, pixels + 1, 16, 2, 2) ==
         TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, TINTORA_RGBA16, pixels, 17, pixels, 17, 2, 2) ==
         TINTORA_BAD_ARGUMENT);
  EXPECT(tintora_filter_rows(transform, 0, NULL, 0, NULL, 0, 0, 4) == TINTORA_OK);
  EXPECT(tintora_filter_rows(transform, 0, NULL, 0, NULL, 0, 4, 0) == TINTORA_OK);
  EXPECT(memcmp(before, pixels, sizeof pixels) == 0);
  EXPECT(tintora_filter_rows(transform, 0, pixels, 16, pixels, 16, 4, 4) == TINTORA_OK);
  EXPECT(pixels[0] == 255 - 77 && pixels[3] == 77);
  /* One row needs no stride; rows may follow each other downwards without a gap. */
  EXPECT(tintora_filter_rows(transform, 0, pixels, 0, pixels, 0, 4, 1) == TINTORA_OK);
  EXPECT(tintora_filter_rows(transform, 0, pixels + 48, -16, pixels + 48, -16, 4, 3) == TINTORA_OK);
  EXPECT(memcmp(before, pixels, sizeof pixels) == 0);
  tintora_free(transform);
}

int main(int argc, char **argv) {
  expectSimulationsRefused();
  expectEffectsRefused();
  expectMatricesRefused();
  expectRowsRefused();
  EXPECT(argc == 2 && strcmp(tintora_version(), argv[1]) == 0);
  EXPECT(strcmp(tintora_message(TINTORA_NO_INVERSE), "the simulation has no inverse") == 0);
  EXPECT(strcmp(tintora_message(5), "unknown status") == 0);
  EXPECT(strcmp(tintora_message(-1), "unknown status") == 0);
  return failures != 0;
}
