// Steps of a mouse wheel.
#pragma once

namespace tintora::platform {

// Adds a turn of the wheel, in eighths of a degree, to the travel that makes no whole step yet.
// Returns the number of whole steps, upwards positive. Fine wheels send a step in many pieces. A
// turn in the other direction resets the travel.
constexpr int wholeSteps(int& travel, int turn) {
  constexpr int step = 120;
  // A wheel turned sideways sends events without a vertical part.
  if (turn == 0) return 0;
  if ((turn > 0) != (travel > 0)) travel = 0;
  travel += turn;
  const int steps = travel / step;
  travel -= steps * step;
  return steps;
}

}  // namespace tintora::platform
