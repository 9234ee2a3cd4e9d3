// The camera of the colour space window, and the mouse that turns it.
#pragma once

namespace tintora {

// What is held down while the mouse moves.
struct DragKeys {
  bool left = false;
  bool right = false;
  bool shift = false;
};

// Sets the projection for the view's size. With reset, first puts the camera in front of the scene.
void setCamera(bool reset);

// Starts a drag of the RGB cube at a place in client coordinates: the next drag with the right
// button chooses its axis anew.
void beginDrag(int x, int y);

// Handles a move of the mouse to a place in client coordinates. With a button held, turns the cube
// by a quarter of a degree for each pixel and draws a frame: Shift rolls the cube, the right button
// keeps to one axis.
void rotateByMouse(const DragKeys& held, int x, int y);

}  // namespace tintora
