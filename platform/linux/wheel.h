// Steps of a mouse wheel.
#pragma once

namespace tintora::platform {

// Adds a turn of the wheel, in eighths of a degree, to the travel that did not make a whole step so
// far, and returns the whole steps that it makes now; upwards is positive. Fine wheels send a step
// in many pieces. Turning back starts anew.
constexpr int wholeSteps(int& travel, int turn) {
  constexpr int step = 120;
  // A wheel that is turned sideways sends events without a vertical part.
  if (turn == 0) return 0;
  if ((turn > 0) != (travel > 0)) travel = 0;
  travel += turn;
  const int steps = travel / step;
  travel -= steps * step;
  return steps;
}

}  // namespace tintora::platform
