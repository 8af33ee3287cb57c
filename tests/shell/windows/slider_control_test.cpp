// SliderControl on a real track bar.
#include "shell/windows/slider_control.h"

#include <commctrl.h>

#include "tests/shell/windows/host_windows.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

class SliderControlTest : public testing::Test {
protected:
    void SetUp() override {
        const INITCOMMONCONTROLSEX classes = {sizeof classes, ICC_BAR_CLASSES};
        ASSERT_TRUE(InitCommonControlsEx(&classes));
        SetWindowLongPtrA(trackBar, GWLP_USERDATA, 4711);
    }
    HWND MakeControl(const char* windowClass, intptr_t id) const {
        return CreateWindowA(windowClass, "", WS_CHILD | WS_VISIBLE, 0, 0, 100, 30, host.Handle(),
                             reinterpret_cast<HMENU>(id), nullptr, nullptr);
    }

    static constexpr int sliderId = 5, textId = 6;
    HostWindow host{200, 100};
    HWND trackBar = MakeControl(TRACKBAR_CLASSA, sliderId);
    HWND companion = MakeControl("STATIC", textId);
    SliderControl slider;
};

TEST_F(SliderControlTest, CompanionFollowsTheUserOnly) {
    slider.Attach(host.Handle(), sliderId, 4, 1, textId);
    EXPECT_EQ("", TextOf(companion));
    SendMessageA(trackBar, WM_CHAR, ' ', 0);
    EXPECT_EQ("0.25", TextOf(companion));
    SendMessageA(trackBar, TBM_SETPOS, TRUE, 3);
    SendMessageA(trackBar, WM_MOUSEMOVE, 0, 0);  // no button is down
    EXPECT_EQ("0.25", TextOf(companion));
    SendMessageA(trackBar, WM_MOUSEWHEEL, 0, 0);
    EXPECT_EQ("0.75", TextOf(companion));
    SendMessageA(trackBar, WM_LBUTTONDOWN, 0, 0);
    SetWindowTextA(companion, "untouched");
    SendMessageA(trackBar, WM_MOUSEMOVE, 0, MAKELPARAM(50, 10));
    EXPECT_NE("untouched", TextOf(companion)) << "while it is dragged";
}

TEST_F(SliderControlTest, KeepsWhatWasSeenLastForOtherThreadsAndAfterTheWindow) {
    const LONG_PTR procedure = GetWindowLongPtrA(trackBar, GWLP_WNDPROC);
    slider.Attach(host.Handle(), sliderId, 4, 1);
    EXPECT_NE(procedure, GetWindowLongPtrA(trackBar, GWLP_WNDPROC));
    EXPECT_EQ(4711, GetWindowLongPtrA(trackBar, GWLP_USERDATA));
    SendMessageA(trackBar, TBM_SETPOS, TRUE, 3);  // nobody has looked yet
    int32_t seen = -1;
    std::thread([&] { seen = slider.Position(); }).join();  // would wait for ever for this thread's answer
    EXPECT_EQ(1, seen);
    EXPECT_EQ(3, slider.Position());
    DestroyWindow(trackBar);
    EXPECT_EQ(3, slider.Position());
    trackBar = MakeControl(TRACKBAR_CLASSA, sliderId);  // the next window starts anew
    slider.Attach(host.Handle(), sliderId, 2, 2);
    EXPECT_EQ(2, slider.Position());
    slider.Attach(host.Handle(), 99, 4, 3);
    EXPECT_EQ(0, slider.Position()) << "there is no such control";
}

BOOL WINAPI NoProperty(HWND, LPCSTR, HANDLE) { return FALSE; }

TEST_F(SliderControlTest, StandsAndAnswersWithoutAWindowProperty) {
    const ReplacedImport failing(GetModuleHandleA(nullptr), "user32.dll", "SetPropA", &NoProperty);
    slider.Attach(host.Handle(), sliderId, 4, 1);
    EXPECT_EQ(4, SendMessageA(trackBar, TBM_GETRANGEMAX, 0, 0));
    SendMessageA(trackBar, WM_KEYDOWN, VK_END, 0);
    EXPECT_EQ(4, slider.Position());
}

}  // namespace
}  // namespace clarivex
