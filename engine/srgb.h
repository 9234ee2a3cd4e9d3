// The transfer function between the values a display takes and the light it gives.
#pragma once

namespace tintora {

// The values that a colour transform works on.
enum class Light {
  Encoded,  // as they stand in a picture and on the screen
  Linear,   // proportional to the light that the display gives
};

// Maps a channel of 0..1 to 0..1, strictly rising: IEC 61966-2-1 (sRGB), the piecewise function.
double decodeSrgb(double encoded);
double encodeSrgb(double linear);

}  // namespace tintora
