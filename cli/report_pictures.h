// The pictures of a report: made smaller, simulated, and ready for a web page.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "cli/image_file.h"
#include "cli/palette_options.h"

namespace tintora::cli {

// A picture as a web page holds it.
struct ShownPicture {
  std::string label;    // who sees it, or with which algorithm
  std::string address;  // "data:image/..."
};

struct PictureRow {
  CvdType type;
  std::vector<ShownPicture> pictures;
};

struct ReportPicture {
  std::uint32_t width = 0, height = 0;  // of the original and what is seen of it
  ShownPicture original;
  std::vector<ShownPicture> seen;      // by each of the viewers
  ShownPicture small;                  // the original again
  std::vector<PictureRow> severities;  // small, from mild to full
  std::vector<PictureRow> algorithms;  // small, at full severity
};

// Makes every picture that the report shows of one, at most that many pixels wide.
ReportPicture showPicture(const Image& picture, const PaletteOptions& options,
                          std::uint32_t mostWidth);

// Returns the picture at most that wide, each pixel the mean of the light that it stands for.
Image reducePicture(const Image& picture, std::uint32_t mostWidth);

// Returns the bytes in base 64 (RFC 4648).
std::string base64(std::span<const std::uint8_t> bytes);

}  // namespace tintora::cli
