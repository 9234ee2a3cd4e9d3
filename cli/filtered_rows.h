// Filters the rows of an image and keeps their layout as far as possible.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "cli/image.h"
#include "engine/picture_filter.h"

namespace tintora::cli {

// A transform prepared for samples of 8 bits and, once they are needed, of 16. Several threads may
// use it.
struct FilterSet {
  explicit FilterSet(const ColourTransform& chosen);

  const PictureFilter& wide() const;

  ColourTransform transform;
  PictureFilter bits8;

 private:
  mutable std::once_flag once;
  mutable PictureFilter bits16;
};

// The header of the filtered image, and the function that filters a row.
struct RowFilter {
  RowsHeader header;  // of the filtered image
  std::function<void(const std::uint8_t* row, std::uint8_t* filtered)> filterRow;
};

// Returns the row filter for an output format. Keeps palettes, greys and 16 bits if the transform
// and the format allow it. In linear light, converts colours to sRGB by the colour profile and
// leaves the profile out; otherwise keeps a profile that suits the filtered colours. The filters
// must outlive the result.
RowFilter planRowFilter(const RowsHeader& header, const FilterSet& filters, ImageFormat format);

// Returns the row filter that converts any layout to Bgra8 and changes no colour.
RowFilter planPlainRows(const RowsHeader& header);

}  // namespace tintora::cli
