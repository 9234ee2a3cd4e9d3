// A display that records what the engine tells it, and a fixture that restores the process-wide
// records to their state at the program's start.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "engine/apply_transform.h"
#include "engine/effect_matrix.h"
#include "engine/transform_display.h"
#include "engine/transform_settings.h"
#include "engine_records.h"
#include "spectral/simulation_matrix.h"

namespace tintora {

struct DisplayRecord {
  std::vector<std::string> calls;  // such as "main 4 on", "title Greyscale", "matrix", "refresh"
  std::string title;               // the last one
  EffectMatrix matrix{};           // the last one shown
  ModelContext modelAtRefresh;
};

inline DisplayRecord displayRecord;

// The records as they were before the first test.
inline const EngineRecords& recordsAtStart() {
  static const EngineRecords records;
  return records;
}

// Takes the records before the first test, because some tests change them without this fixture.
class RecordsTaker : public testing::Environment {
  void SetUp() override { recordsAtStart(); }
};
inline testing::Environment* const recordsTaker =
    testing::AddGlobalTestEnvironment(new RecordsTaker);

// All different, and none of the type items 1 to 3.
inline constexpr ViewerItemPositions testPositions{5, 6, 7, 9, 12};

// The positions in the menu, in the order of SimulationAlgorithm.
inline constexpr AlgorithmPositions testAlgorithmPositions{1, 4, 5, 2, 3};

inline TransformDisplay recordingDisplay() {
  TransformDisplay display;
  display.showEffectMatrix = [](const EffectMatrix& matrix) {
    displayRecord.calls.emplace_back("matrix");
    displayRecord.matrix = matrix;
  };
  display.showTitle = [](std::string_view title) {
    displayRecord.calls.emplace_back("title ").append(title);
    displayRecord.title = title;
  };
  display.checkMenuItem = [](TransformMenu menu, int position, bool checked) {
    displayRecord.calls.emplace_back(menu == TransformMenu::Main ? "main " : "alternative ")
        .append(std::to_string(position))
        .append(checked ? " on" : " off");
  };
  display.refreshTransformViews = [] {
    displayRecord.calls.emplace_back(transformSettings.transformOff ? "refresh while off"
                                                                    : "refresh");
    displayRecord.modelAtRefresh = modelContext;
  };
  display.positions = testPositions;
  display.algorithmPositions = testAlgorithmPositions;
  return display;
}

// Applies the settings in force and returns the calls that this makes.
inline std::vector<std::string> callsOfApplication() {
  displayRecord.calls.clear();
  applyTransform();
  return displayRecord.calls;
}

class EngineTest : public testing::Test {
 protected:
  EngineTest() {
    restore(recordsAtStart());
    initialiseModelContext(modelContext);
    displayRecord = {};
    transformDisplay = recordingDisplay();
  }
  ~EngineTest() override { restore(recordsAtStart()); }

 public:
  EngineTest(const EngineTest&) = delete;
  EngineTest& operator=(const EngineTest&) = delete;
  EngineTest(EngineTest&&) = delete;
  EngineTest& operator=(EngineTest&&) = delete;
};

}  // namespace tintora
