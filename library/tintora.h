/* libtintora: how colours look to viewers with a colour vision deficiency, and other colour
 * transforms, as matrices and on the pixels of pictures.
 *
 * Every function takes what it works on as arguments and may be called from several threads at
 * once. Where a parameter or result is an int, the enumeration that is named holds its values. */
#ifndef TINTORA_H
#define TINTORA_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif
#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

/* What functions return. After a failure nothing was done or written. */
enum tintora_status {
  TINTORA_OK = 0,
  TINTORA_BAD_ARGUMENT = 1, /* an argument is not what the function accepts */
  TINTORA_NO_MATRIX = 2,    /* the transform is no single matrix */
  TINTORA_NO_INVERSE = 3,   /* the simulation cannot be inverted */
  TINTORA_OUT_OF_MEMORY = 4
};

/* Types of colour vision. */
enum tintora_vision {
  TINTORA_NORMAL = 0, /* the variation of normal vision: a fifth of protan */
  TINTORA_PROTAN = 1, /* long-wave deficient */
  TINTORA_DEUTAN = 2, /* medium-wave deficient */
  TINTORA_TRITAN = 3  /* short-wave deficient */
};

/* Published simulation algorithms. */
enum tintora_algorithm {
  TINTORA_JUDD_1948 = 0,
  TINTORA_YANG_2008 = 1,
  TINTORA_MACHADO_2009 = 2,
  TINTORA_VIENOT_1997 = 3, /* approximated by one matrix */
  TINTORA_VIENOT_1999 = 4,
  TINTORA_BRETTEL_1997 = 5 /* two half planes in linear light, no single matrix */
};

/* What is made of a simulation. */
enum tintora_use {
  TINTORA_SIMULATE = 0,
  TINTORA_DALTONIZE = 1, /* correct for a viewer with the deficiency */
  TINTORA_INVERT = 2     /* undo the simulation */
};

/* What a transform works on. */
enum tintora_light {
  TINTORA_ENCODED = 0, /* the values in the picture */
  TINTORA_LINEAR = 1   /* the light they stand for on an sRGB display (IEC 61966-2-1) */
};

/* Other colour effects, with the range of their amount. */
enum tintora_effect {
  TINTORA_GREYSCALE = 0,       /* 1 */
  TINTORA_INVERT_CHANNELS = 1, /* 1 */
  TINTORA_BRIGHTNESS = 2,      /* -1 to 1, added to every channel */
  TINTORA_CONTRAST = 3,        /* 0 for mid-grey to 1 for no change */
  TINTORA_SATURATION = 4,      /* 0 for grey to 1 for no change */
  TINTORA_NO_BLUE_LIGHT = 5,   /* 0 to 1: the brightness of red and green */
  TINTORA_SWAP_RED_BLUE = 6,   /* 0 to 1, as for all that follow: the strength */
  TINTORA_SWAP_RED_GREEN = 7,
  TINTORA_SWAP_GREEN_BLUE = 8,
  TINTORA_PASS_RED = 9, /* filters that pass some channels */
  TINTORA_PASS_GREEN = 10,
  TINTORA_PASS_BLUE = 11,
  TINTORA_PASS_YELLOW = 12,
  TINTORA_PASS_MAGENTA = 13,
  TINTORA_PASS_CYAN = 14
};

/* How pixels stand in memory: the channels in this order, each of 8 or 16 bits; 16 bits in the
 * byte order of the machine and on even addresses. */
enum tintora_layout { TINTORA_BGRA8 = 0, TINTORA_RGBA8 = 1, TINTORA_RGB8 = 2, TINTORA_RGBA16 = 3 };

/* A transform made ready for use. It never changes. */
typedef struct tintora_transform tintora_transform;

/* Makes the simulation of a tintora_vision at a severity of 0 to 1 by a tintora_algorithm, or the
 * tintora_use of it, that works in a tintora_light. TINTORA_BRETTEL_1997 takes TINTORA_LINEAR
 * only. On success release *transform with tintora_free; after a failure it is NULL. Returns
 * TINTORA_NO_INVERSE if the simulation cannot be inverted. */
int tintora_simulation(int vision, double severity, int algorithm, int use, int light,
                       tintora_transform** transform);

/* Makes a tintora_effect of this amount. *transform is as for tintora_simulation. */
int tintora_colour_effect(int effect, double amount, int light, tintora_transform** transform);

/* Makes the transform of a matrix that is laid out as for tintora_matrix. Its entries must be
 * finite. The alpha row and column are not used: pixels keep their alpha. */
int tintora_from_matrix(const float matrix[25], int light, tintora_transform** transform);

/* Releases a transform. Does nothing for NULL. */
void tintora_free(tintora_transform* transform);

/* Copies the 5x5 matrix, row by row: the rows are input red, green, blue, alpha (each 0 to 1) and
 * offset, the columns output red, green, blue, alpha and 1. Returns TINTORA_NO_MATRIX for
 * TINTORA_BRETTEL_1997. */
int tintora_matrix(const tintora_transform* transform, float matrix[25]);

/* Puts pixels of a tintora_layout through the transform. Each sample becomes the nearest step to
 * the result in double precision; alpha stays. The strides are bytes from one row to the next, of
 * any sign, and at least a row long. Source and destination must be the same place with the same
 * stride, or not overlap. */
int tintora_filter_rows(const tintora_transform* transform, int layout, const void* source,
                        ptrdiff_t source_stride, void* destination, ptrdiff_t destination_stride,
                        size_t width, size_t height);

/* Returns what a tintora_status means, in a few words. */
const char* tintora_message(int status);

/* Returns the version of the library, such as "1.1.4". */
const char* tintora_version(void);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
#ifdef __cplusplus
}
#endif

#endif
