// Colour profiles for pictures of the tests.
#pragma once

#include <gtest/gtest.h>
#include <lcms2.h>

#include "tests/cli/bytes.h"

namespace tintora::cli {

inline constexpr cmsCIExyY d65{0.3127, 0.3290, 1.0};
inline constexpr cmsCIExyYTRIPLE srgbPrimaries{
    {0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};

// Returns the profile as it stands in a file, and closes it.
inline Bytes savedProfile(cmsHPROFILE profile) {
  cmsUInt32Number size = 0;
  EXPECT_TRUE(cmsSaveProfileToMem(profile, nullptr, &size));
  Bytes bytes(size);
  EXPECT_TRUE(cmsSaveProfileToMem(profile, bytes.data(), &size));
  cmsCloseProfile(profile);
  return bytes;
}

}  // namespace tintora::cli
