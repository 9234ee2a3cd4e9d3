// The rows of an image through a transform, in the layout that comes nearest to the one they came
// in.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "cli/image.h"
#include "engine/picture_filter.h"

namespace tintora::cli {

// A transform made ready for both depths, the deeper one when it is first needed. It may be used by
// several threads.
struct FilterSet {
  explicit FilterSet(const ColourTransform& transform);

  const PictureFilter& wide() const;

  ColourTransform transform;
  PictureFilter bits8;

 private:
  mutable std::once_flag once;
  mutable PictureFilter bits16;
};

// How the rows of one image become those of the filtered one.
struct RowFilter {
  RowsHeader header;  // of the filtered image
  std::function<void(const std::uint8_t* row, std::uint8_t* filtered)> filterRow;
};

// Plans it for a format: palettes, greys and 16 bits stay what they are where the transform and the
// format allow. In linear light a colour profile other than sRGB is converted to sRGB and left out;
// otherwise it stays if it is for the colours of the filtered image. The filters must outlive the
// plan.
RowFilter planRowFilter(const RowsHeader& header, const FilterSet& filters, ImageFormat format);

// Plans the change of any layout into Bgra8, without a filter.
RowFilter planPlainRows(const RowsHeader& header);

}  // namespace tintora::cli
