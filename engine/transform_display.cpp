#include "engine/transform_display.h"

namespace tintora {

TransformDisplay transformDisplay;

}  // namespace tintora
