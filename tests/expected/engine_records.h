// The engine's process-wide records, for fixtures that put them back.
#pragma once

#include <vector>

#include "engine/custom_transforms.h"
#include "engine/effect_matrix.h"
#include "engine/transform_display.h"
#include "engine/transform_settings.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

// The records as they stand when it is created.
struct EngineRecords {
  TransformSettings settings = transformSettings;
  EffectMatrix effect = effectMatrix;
  ModelContext model = modelContext;
  std::vector<CustomTransform> custom = customTransforms;
  TransformDisplay display = transformDisplay;
};

// Puts the records back to what they were then.
inline void restore(const EngineRecords& records) {
  transformSettings = records.settings;
  effectMatrix = records.effect;
  modelContext = records.model;
  customTransforms = records.custom;
  transformDisplay = records.display;
}

}  // namespace tintora
