// Settings from one run to the next, and what happens if they cannot be stored.
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>

#include "program_run.h"
#include "session_manager.h"

namespace tintora::desktop_test {
namespace {

using Settings = ProgramTest;

const StoredValues someValues{{"Selected", 11}, {"ScrollPc", 35},  {"Filter", 104},
                              {"Swap", 201},    {"Option", 3},     {"Inversion", 0},
                              {"Daltonize", 1}, {"ColorSpace", 0}, {"View", 704}};
constexpr const char* defaultTitle = " Simulation - Protanope 100% severity";

TEST_F(Settings, NineValuesAreStoredByName) {
  start();
  ASSERT_TRUE(titleBecomes(defaultTitle));
  end();
  EXPECT_EQ(storedValues(), (StoredValues{{"Selected", 1},
                                          {"ScrollPc", 100},
                                          {"Filter", 100},
                                          {"Swap", 200},
                                          {"Option", 0},
                                          {"Inversion", 0},
                                          {"Daltonize", 0},
                                          {"ColorSpace", 1},
                                          {"View", 705}}));
}

TEST_F(Settings, ComeBackAtTheNextStart) {
  start();
  press(XK_d);
  x().moveMouse(view());
  turnWheel(false, 13);
  press(XK_a);
  press(XK_c);
  ASSERT_TRUE(titleBecomes(" Daltonize - Deuteranomalous 35% severity"));
  end();
  StoredValues expected{{"Selected", 2},  {"ScrollPc", 35},  {"Filter", 100},
                        {"Swap", 200},    {"Option", 0},     {"Inversion", 0},
                        {"Daltonize", 1}, {"ColorSpace", 1}, {"View", 704}};
  EXPECT_EQ(storedValues(), expected);
  start();
  EXPECT_TRUE(titleBecomes(" Daltonize - Deuteranomalous 35% severity"));
  EXPECT_TRUE(eventually([this] { return title(colourSpace()) == "Chromaticity Diagram"; }));
  EXPECT_TRUE(viewShows(expected::effectOf(expected::daltonized(expected::juddDeutan(0.35)))));
  end();
  EXPECT_EQ(storedValues(), expected);
}

TEST_F(Settings, AreLeftAsTheyWereWhereNothingChanges) {
  storeValues(someValues);
  start();
  EXPECT_FALSE(x().isShown(colourSpace()));
  end();
  EXPECT_EQ(storedValues(), someValues);
}

TEST_F(Settings, SignalsThatEndTheProgramDoNotLoseThem) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    storeValues({{"Selected", 1}});
    start();
    press(XK_g);
    ASSERT_TRUE(titleBecomes("Greyscale"));
    process().signal(number);
    expectNormalEnd();
    EXPECT_EQ(storedValues()["Selected"], 4) << number;
  }
}

// A program that is asked to save cannot know when it will be ended.
TEST_F(Settings, TheSessionsEndSavesThemAtOnce) {
  SessionManager session;
  setVariables({{"SESSION_MANAGER", session.address()}});
  storeValues({{"Selected", 1}});
  start({"-st"});
  ASSERT_TRUE(eventually([&] { return session.timesSaved() == 1; }));
  press(XK_g);
  ASSERT_TRUE(titleBecomes("Greyscale"));
  ASSERT_EQ(storedValues()["Selected"], 1);
  session.announceEnd();
  ASSERT_TRUE(eventually([&] { return session.timesSaved() == 2; }));
  EXPECT_EQ(storedValues()["Selected"], 4);
  EXPECT_TRUE(process().isRunning());
  EXPECT_EQ(session.restartCommand(), (std::vector<std::string>{programPath, "-st"}));
  session.endProgram();
  expectNormalEnd();
  EXPECT_EQ(storedValues()["Selected"], 4);
}

// This happens at the end of a session.
TEST_F(Settings, TheServersEndDoesNotLoseThem) {
  useDisplay({}, Manager::Openbox);
  storeValues({{"Selected", 1}});
  start();
  press(XK_g);
  ASSERT_TRUE(titleBecomes("Greyscale"));
  display().endServer();
  ASSERT_TRUE(process().result(2 * conditionTimeout).has_value());
  EXPECT_EQ(storedValues()["Selected"], 4);
}

TEST_F(Settings, ADamagedFileIsNoReasonToStop) {
  for (const std::string& text :
       {std::string("\0\xFF\xFE[General\nSelected", 18), std::string("Selected=4"),
        std::string("[General]\nSelected=four\nScrollPc=\nView=1e9\nSwap=99999999999999\n"),
        std::string(100000, '['), std::string("[General]\nSelected=@Variant(\\0\\0)\n")}) {
    writeFile(settingsFile(), text);
    start();
    EXPECT_TRUE(process().isRunning());
    end();
    const StoredValues values = storedValues();
    for (const auto& [name, value] : someValues) EXPECT_TRUE(values.contains(name)) << name;
  }
}

TEST_F(Settings, OneMissingValueDoesNotTouchTheOthers) {
  for (const auto& [missing, ignored] : someValues) {
    StoredValues values = someValues;
    values.erase(missing);
    storeValues(values);
    start();
    end();
    StoredValues after = storedValues();
    EXPECT_EQ(after.size(), someValues.size());
    // A missing selection means protan.
    after.erase(missing);
    EXPECT_EQ(after, values) << missing;
  }
}

TEST_F(Settings, AFolderInThePlaceOfTheFileIsLeftAlone) {
  std::filesystem::create_directories(settingsFile() + "/inside");
  start();
  EXPECT_TRUE(titleBecomes(defaultTitle));
  end();
  EXPECT_TRUE(std::filesystem::is_directory(settingsFile() + "/inside"));
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_F(Settings, AFileInThePlaceOfTheFolderIsLeftAlone) {
  writeFile(configFolder(), "a file");
  start();
  EXPECT_TRUE(titleBecomes(defaultTitle));
  end();
  EXPECT_EQ(readFile(configFolder()), "a file");
  EXPECT_EQ(readFile(errorsFile()), "");
}

TEST_F(Settings, AFileThatMayNotBeWrittenIsNotTakenAndNotTouched) {
  if (geteuid() == 0) GTEST_SKIP() << "Root may write to any file.";
  storeValues(someValues);
  const std::string before = readFile(settingsFile());
  chmod(settingsFile().c_str(), 0400);
  start();
  EXPECT_TRUE(titleBecomes(defaultTitle));
  end();
  EXPECT_EQ(readFile(settingsFile()), before);
}

TEST_F(Settings, NothingIsLeftBesideTheFile) {
  start();
  end();
  int files = 0;
  for (const auto& entry : std::filesystem::directory_iterator(configFolder() + "/tintora")) {
    EXPECT_EQ(entry.path().filename(), "settings.ini");
    ++files;
  }
  EXPECT_EQ(files, 1);
}

// If the program is killed while it ends, it leaves either the old file or the new one.
TEST_F(Settings, TheFileIsOldOrNewAtEveryMoment) {
  StoredValues changed = someValues;
  changed["Selected"] = 4;
  for (int delay = 0; delay < 12; delay += 2) {
    storeValues(someValues);
    start();
    press(XK_g);
    ASSERT_TRUE(titleBecomes("Greyscale"));
    process().signal(SIGTERM);
    std::this_thread::sleep_for(std::chrono::milliseconds(delay));
    process().signal(SIGKILL);
    ASSERT_TRUE(process().result());
    const StoredValues values = storedValues();
    EXPECT_TRUE(values == someValues || values == changed) << readFile(settingsFile());
  }
}

TEST_F(Settings, StoredValuesOutOfRangeAreTakenAsTheirRulesSay) {
  storeValues({{"Selected", 5}, {"ScrollPc", 250}, {"Swap", 999}, {"ColorSpace", 7}});
  start();
  EXPECT_TRUE(titleBecomes("Invert "));
  end();
  StoredValues values = storedValues();
  EXPECT_EQ(values["ScrollPc"], 100);
  EXPECT_EQ(values["Swap"], 203);
  EXPECT_EQ(values["ColorSpace"], 1);
  storeValues({{"Selected", 2}, {"ScrollPc", -5}, {"Swap", 150}});
  start();
  EXPECT_TRUE(titleBecomes(" Simulation - Deuteranomalous 0% severity"));
  end();
  values = storedValues();
  EXPECT_EQ(values["ScrollPc"], 0);
  EXPECT_EQ(values["Swap"], 200);
}

}  // namespace
}  // namespace tintora::desktop_test
