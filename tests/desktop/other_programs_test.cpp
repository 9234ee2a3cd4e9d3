// Exchange with other programs: files dropped on the window, and the user guide that it opens.
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "menu_run.h"

namespace tintora::desktop_test {
namespace {

// Drags files by the XDND protocol, and suggests moving them.
class Drop : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    source_ = xcb_generate_id(x().connection());
    xcb_create_window(x().connection(), XCB_COPY_FROM_PARENT, source_, x().root(), 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(x().connection(), source_, x().atom("XdndSelection"), XCB_CURRENT_TIME);
    x().sync();
  }
  void offer(const std::vector<std::string>& actions) {
    std::vector<std::uint32_t> atoms;
    for (const std::string& action : actions) atoms.push_back(x().atom(action));
    x().setNumbers(source_, "XdndActionList", XCB_ATOM_ATOM, atoms);
    x().sync();
  }
  void tell(const std::string& message, const std::array<std::uint32_t, 4>& values) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = main();
    event.type = x().atom(message);
    event.data.data32[0] = source_;
    std::ranges::copy(values, event.data.data32 + 1);
    xcb_send_event(x().connection(), 0, main(), XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&event));
    x().sync();
  }
  // Drags data of a type over the middle of the view and suggests moving it.
  void dragOver(const std::string& type) {
    constexpr std::uint32_t version = 5U << 24U;
    tell("XdndEnter", {version, x().atom(type), 0, 0});
    const Area area = view();
    const auto place = u32(area.x + area.width / 2) << 16U | u32(area.y + area.height / 2);
    tell("XdndPosition", {0, place, XCB_CURRENT_TIME, x().atom("XdndActionMove")});
  }
  // Waits for the program's answer, and delivers the files meanwhile.
  std::optional<xcb_client_message_event_t> answer(const std::string& message) {
    std::optional<xcb_client_message_event_t> found;
    eventually([&] {
      x().takeEvents([&](const xcb_generic_event_t& event) {
        const int kind = event.response_type & 0x7F;
        if (kind == XCB_SELECTION_REQUEST) {
          handOut(reinterpret_cast<const xcb_selection_request_event_t&>(event));
        }
        if (kind != XCB_CLIENT_MESSAGE) return;
        const auto& told = reinterpret_cast<const xcb_client_message_event_t&>(event);
        if (told.type == x().atom(message)) found = told;
      });
      return found.has_value();
    });
    return found;
  }

 private:
  void handOut(const xcb_selection_request_event_t& request) {
    const std::string files = "file:///etc/hostname\r\n";
    xcb_change_property(x().connection(), XCB_PROP_MODE_REPLACE, request.requestor,
                        request.property, request.target, 8, u32(static_cast<int>(files.size())),
                        files.data());
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = request.property;
    xcb_send_event(x().connection(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&notify));
    x().sync();
  }

  xcb_window_t source_ = XCB_NONE;
};

// After a move, the source would delete the file.
TEST_F(Drop, FilesAreTakenAsACopy) {
  offer({"XdndActionMove", "XdndActionCopy"});
  dragOver("text/uri-list");
  const auto status = answer("XdndStatus");
  ASSERT_TRUE(status.has_value());
  EXPECT_EQ(status->data.data32[1] & 1U, 1U) << "The program refuses the files.";
  EXPECT_EQ(status->data.data32[4], x().atom("XdndActionCopy"));
  tell("XdndDrop", {0, XCB_CURRENT_TIME, 0, 0});
  const auto finished = answer("XdndFinished");
  ASSERT_TRUE(finished.has_value());
  EXPECT_EQ(finished->data.data32[1] & 1U, 1U) << "The program does not take the files.";
  EXPECT_EQ(finished->data.data32[2], x().atom("XdndActionCopy"));
  settle();
  EXPECT_TRUE(process().isRunning());
}

TEST_F(Drop, FilesThatCanOnlyBeMovedAreNotTaken) {
  offer({"XdndActionMove"});
  dragOver("text/uri-list");
  const auto status = answer("XdndStatus");
  ASSERT_TRUE(status.has_value());
  EXPECT_EQ(status->data.data32[1] & 1U, 0U);
}

TEST_F(Drop, TextIsNotTaken) {
  offer({"XdndActionMove", "XdndActionCopy"});
  dragOver("text/plain");
  const auto status = answer("XdndStatus");
  ASSERT_TRUE(status.has_value());
  EXPECT_EQ(status->data.data32[1] & 1U, 0U);
}

// The desktop's program for pages is one that records its arguments.
class Guide : public MenuTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    const std::string opener = folder() + "/bin/xdg-open";
    writeFile(opener, "#!/bin/sh\nprintf '%s' \"$1\" > '" + opened() + "'\n");
    std::filesystem::permissions(opener, std::filesystem::perms::owner_all);
    setenv("PATH", (folder() + "/bin:" + path_).c_str(), 1);
  }
  void TearDown() override {
    setenv("PATH", path_.c_str(), 1);
    programPath = program_;
    ProgramTest::TearDown();
  }
  std::string opened() const { return folder() + "/opened"; }
  void openGuide() {
    storeValues({{"Selected", 4}, {"ColorSpace", 0}});
    start();
    choose({"Help", "User Guide"});
  }
  testing::AssertionResult isOpened(const std::string& page) const {
    const std::string address = "file://" + std::filesystem::canonical(page).string();
    if (eventually([&] { return readFile(opened()) == address; })) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << readFile(opened()) << " instead of " << address;
  }

 private:
  std::string path_ = std::getenv("PATH");
  std::string program_ = programPath;
};

TEST_F(Guide, BesideTheProgramIsOpened) {
  openGuide();
  EXPECT_TRUE(isOpened(std::filesystem::path(programPath).replace_filename("guide.html")));
}

TEST_F(Guide, OfAnInstalledProgramIsOpened) {
  const std::string page = folder() + "/share/doc/tintora/guide.html";
  writeFile(page, "<p>guide</p>");
  std::filesystem::copy(programPath, folder() + "/bin/tintora");
  programPath = folder() + "/bin/tintora";
  openGuide();
  EXPECT_TRUE(isOpened(page));
}

}  // namespace
}  // namespace tintora::desktop_test
