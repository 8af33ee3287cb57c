// The property page in a real window.
#include "shell/windows/property_page.h"

#include <commctrl.h>
#include <gtest/gtest.h>
#include <olectl.h>

#include <cstdlib>
#include <functional>
#include <map>

#include "shell/module.h"
#include "shell/windows/page_ids.h"
#include "shell/windows/resource_ids.h"
#include "tests/shell/windows/fake_settings.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/host_windows.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/fake_buffers.h"

namespace clarivex {
namespace {

constexpr char settingsKey[] = R"(Software\Tessel Works\Clarivex WMP)";
constexpr char reloadText[] = "Changes may not take immediate effect until video is reloaded.";
constexpr char bothTexts[] =
    "Setting Clarivex to ALWAYS may result in jerky or slow\nplayback on high resolution videos.\n\n"
    "Changes may not take immediate effect until video is reloaded.";
constexpr RECT pageRect = {0, 0, 400, 240};

Owned<IPropertyPage> MakePage(IUnknown* outer = nullptr) {
    void* page = nullptr;
    Require(CreatePropertyPage(outer, outer != nullptr ? iidUnknown : iidPropertyPage, &page), "no page");
    return Owned<IPropertyPage>(static_cast<IPropertyPage*>(page));
}

// Has the code linked in read its resources out of a module.
class ResourcesOf {
public:
    explicit ResourcesOf(HMODULE module) : before(ThisModule().instance) { ThisModule().instance = module; }
    ~ResourcesOf() { ThisModule().instance = before; }
    ResourcesOf(const ResourcesOf&) = delete;
    ResourcesOf& operator=(const ResourcesOf&) = delete;

private:
    HMODULE before;
};

class PropertyPage : public testing::Test {
protected:
    ~PropertyPage() override {
        page.reset();
        EXPECT_EQ(1, object.references);
        EXPECT_EQ(1, site.references);
        EXPECT_EQ(locksBefore, ThisModule().lockCount);
    }

    // As a host opens a page; the fixture's object is shown unless there is none.
    void Open(bool withObject = true) {
        IUnknown* objects[] = {&object};
        ASSERT_EQ(S_OK, page->SetObjects(withObject ? 1 : 0, objects));
        ASSERT_EQ(S_OK, page->SetPageSite(&site));
        ASSERT_EQ(S_OK, page->Activate(host.Handle(), &pageRect, FALSE));
        ASSERT_EQ(S_OK, page->Show(SW_SHOW));
        HostWindow::HandleMessages();
    }
    void Reopen() {
        ASSERT_EQ(S_OK, page->Deactivate());
        ASSERT_EQ(S_OK, page->Activate(host.Handle(), &pageRect, FALSE));
    }

    HWND Dialog() const { return host.Child(); }
    HWND Control(int id) const { return GetDlgItem(Dialog(), id); }
    std::string Text(int id) const { return TextOf(Control(id)); }
    std::string Title() const { return Text(CVX_PAGE_STATE_GROUP); }
    int Position(int id) const { return static_cast<int>(SendMessageA(Control(id), TBM_GETPOS, 0, 0)); }
    bool Checked(int id) const { return IsDlgButtonChecked(Dialog(), id) == BST_CHECKED; }
    bool Dirty() const { return page->IsPageDirty() == S_OK; }

    // What a user does.
    void Press(int slider, WPARAM key) const { SendMessageA(Control(slider), WM_KEYDOWN, key, 0); }
    void MoveTo(int slider, int position) const {
        const int steps = position - Position(slider);
        for (int i = 0; i < std::abs(steps); ++i) Press(slider, steps > 0 ? VK_DOWN : VK_UP);
        EXPECT_EQ(position, Position(slider));
    }
    void Click(int box) const { SendMessageA(Control(box), BM_CLICK, 0, 0); }

    std::vector<std::string> MessagesOfApply() {
        MessageBoxCloser closer(applyMessageCaption);
        EXPECT_EQ(S_OK, page->Apply());
        return closer.Finish();
    }

    const PluginModule plugin;  // whose resources the page shows
    const ResourcesOf resources{plugin.Handle()};
    const UserRegistry registry;
    const int32_t locksBefore = ThisModule().lockCount;
    FakeSettings object;
    FakeSite site;
    HostWindow host{"Settings", 400, 240};
    Owned<IPropertyPage> page = MakePage();
};

TEST_F(PropertyPage, ShowsTheRunningObjectsSettings) {
    object.sharpness = 1.5F;
    object.mode = 2;
    object.allowHd = 1;
    object.enableLighting = 0;
    object.scalingActive = 1;
    Open();
    EXPECT_EQ(1, Position(CVX_PAGE_EDGE_SLIDER));
    EXPECT_EQ(2, Position(CVX_PAGE_MODE_SLIDER));
    EXPECT_FALSE(Checked(CVX_PAGE_BYPASS_HD));  // the opposite of what is allowed
    EXPECT_FALSE(Checked(CVX_PAGE_LIGHTING));
    EXPECT_EQ("Clarivex (Currently On)", Title());
    EXPECT_EQ("0.25", Text(CVX_PAGE_SCALE_FACTOR));
    EXPECT_FALSE(Dirty());

    object.sharpness = 0.0F;
    object.mode = 0;
    object.allowHd = 0;
    object.enableLighting = 1;
    object.scalingActive = 0;
    Reopen();
    EXPECT_EQ(4, Position(CVX_PAGE_EDGE_SLIDER));
    EXPECT_EQ(0, Position(CVX_PAGE_MODE_SLIDER));
    EXPECT_TRUE(Checked(CVX_PAGE_BYPASS_HD));
    EXPECT_TRUE(Checked(CVX_PAGE_LIGHTING));
    EXPECT_EQ("Clarivex (Currently Off)", Title());
}

TEST_F(PropertyPage, SlidersStopAtTheirEndsForOtherNumbers) {
    object.sharpness = 65535.0F;
    object.mode = 7;
    Open();
    EXPECT_EQ(0, Position(CVX_PAGE_EDGE_SLIDER));
    EXPECT_EQ(2, Position(CVX_PAGE_MODE_SLIDER));
    Press(CVX_PAGE_EDGE_SLIDER, VK_UP);
    Press(CVX_PAGE_MODE_SLIDER, VK_DOWN);
    EXPECT_EQ(0, Position(CVX_PAGE_EDGE_SLIDER));
    EXPECT_EQ(2, Position(CVX_PAGE_MODE_SLIDER));
}

TEST_F(PropertyPage, WithoutAnObjectShowsTheStoredScaleFactorAndWritesTheRegistry) {
    Open(false);
    EXPECT_EQ("1.00", Text(CVX_PAGE_SCALE_FACTOR));
    registry.SetNumber(settingsKey, "ScaleFactor", 0x8000);
    Reopen();
    EXPECT_EQ("0.50", Text(CVX_PAGE_SCALE_FACTOR));
    EXPECT_EQ(2, Position(CVX_PAGE_EDGE_SLIDER));
    EXPECT_EQ(1, Position(CVX_PAGE_MODE_SLIDER));
    EXPECT_EQ("Clarivex (Currently Off)", Title());
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    EXPECT_TRUE(MessagesOfApply().empty());
    EXPECT_EQ(2U, registry.Number(settingsKey, "CVXMode"));
    EXPECT_EQ(0x8000U, registry.Number(settingsKey, "ScaleFactor"));
    EXPECT_TRUE(object.puts.empty());
}

TEST_F(PropertyPage, EveryChoiceMakesItDirtyOnce) {
    Open();
    const std::function<void()> changes[] = {
        [&] { Press(CVX_PAGE_EDGE_SLIDER, VK_DOWN); },
        [&] { Press(CVX_PAGE_MODE_SLIDER, VK_UP); },
        [&] { Click(CVX_PAGE_BYPASS_HD); },
        [&] { Click(CVX_PAGE_LIGHTING); },
    };
    for (const auto& change : changes) {
        Reopen();
        site.changes.clear();
        ASSERT_FALSE(Dirty());
        change();
        EXPECT_TRUE(Dirty());
        change();
        change();
        EXPECT_EQ((std::vector<DWORD>{3}), site.changes);
    }
}

TEST_F(PropertyPage, TextOfTheHiddenBoxAndOtherControlsDoNotMakeItDirty) {
    Open();
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_STATE_GROUP, BN_CLICKED), 0);
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_LIGHTING, BN_SETFOCUS), 0);
    EXPECT_FALSE(Dirty());
}

TEST_F(PropertyPage, EdgeSliderBackInTheMiddleIsNoChange) {
    Open();
    SendMessageA(Dialog(), WM_VSCROLL, TB_ENDTRACK, 0);
    EXPECT_FALSE(Dirty());
    object.sharpness = 2.0F;
    Reopen();
    SendMessageA(Dialog(), WM_VSCROLL, TB_ENDTRACK, 0);
    EXPECT_TRUE(Dirty());  // compared from the other end
}

TEST_F(PropertyPage, TitleFollowsTheStreamWithTheNextChange) {
    Open();
    object.scalingActive = 1;
    EXPECT_EQ("Clarivex (Currently Off)", Title());
    Click(CVX_PAGE_LIGHTING);
    EXPECT_EQ("Clarivex (Currently On)", Title());
    object.scalingActive = 0;
    Press(CVX_PAGE_EDGE_SLIDER, VK_UP);
    EXPECT_EQ("Clarivex (Currently Off)", Title());
    object.scalingActive = 1;
    page->Apply();
    EXPECT_EQ("Clarivex (Currently On)", Title());
    Reopen();
    EXPECT_EQ("Clarivex (Currently On)", Title());
}

TEST_F(PropertyPage, ApplyStoresTheChoicesAndHandsThemOver) {
    object.mode = 0;
    Open();
    MoveTo(CVX_PAGE_EDGE_SLIDER, 1);
    MoveTo(CVX_PAGE_MODE_SLIDER, 1);
    Click(CVX_PAGE_BYPASS_HD);
    Click(CVX_PAGE_LIGHTING);
    EXPECT_EQ(std::vector<std::string>{reloadText}, MessagesOfApply());
    EXPECT_EQ(0x18000U, registry.Number(settingsKey, "Sharpness"));
    EXPECT_EQ(1U, registry.Number(settingsKey, "CVXMode"));
    EXPECT_EQ(1U, registry.Number(settingsKey, "AllowHD"));
    EXPECT_EQ(0U, registry.Number(settingsKey, "EnableLighting"));
    EXPECT_EQ(std::nullopt, registry.Number(settingsKey, "ScaleFactor"));
    EXPECT_EQ((std::vector<std::string>{"ScaleFactor", "Sharpness", "CVXMode", "EnableLighting", "AllowHD"}),
              object.puts);
    EXPECT_EQ(0.25, object.scaleFactor);
    EXPECT_EQ(1.5F, object.sharpness);
    EXPECT_EQ(1U, object.mode);
    EXPECT_EQ(0, object.enableLighting);
    EXPECT_EQ(1, object.allowHd);
    EXPECT_FALSE(Dirty());
    Click(CVX_PAGE_LIGHTING);
    EXPECT_EQ((std::vector<DWORD>{3, 3}), site.changes);  // a change after Apply is told again
}

TEST_F(PropertyPage, ApplySpeaksOnlyOfWhatHasToWait) {
    Open();
    MoveTo(CVX_PAGE_EDGE_SLIDER, 0);
    Click(CVX_PAGE_LIGHTING);
    EXPECT_TRUE(MessagesOfApply().empty());
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    EXPECT_EQ(std::vector<std::string>{bothTexts}, MessagesOfApply());
    EXPECT_TRUE(MessagesOfApply().empty());
    Click(CVX_PAGE_BYPASS_HD);
    EXPECT_EQ(std::vector<std::string>{reloadText}, MessagesOfApply());
}

TEST_F(PropertyPage, TheHiddenScaleFactorGoesBackToTheObject) {
    Open();
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");
    page->Apply();
    EXPECT_EQ(0.75, object.scaleFactor);
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "much");
    page->Apply();
    EXPECT_EQ(1.0, object.scaleFactor);
}

TEST_F(PropertyPage, ARegistryThatCannotBeWrittenStopsNothing) {
    Open();
    MoveTo(CVX_PAGE_EDGE_SLIDER, 0);
    registry.SetNumber("Elsewhere", "Value", 1);
    HKEY readOnly = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExA(HKEY_CURRENT_USER, "Elsewhere", 0, KEY_QUERY_VALUE, &readOnly));
    ASSERT_EQ(ERROR_SUCCESS, RegOverridePredefKey(HKEY_CURRENT_USER, readOnly));
    EXPECT_TRUE(MessagesOfApply().empty());
    RegCloseKey(readOnly);
    EXPECT_EQ(std::nullopt, registry.Number(settingsKey, "Sharpness"));
    EXPECT_EQ(2.0F, object.sharpness);
    EXPECT_FALSE(Dirty());
}

TEST_F(PropertyPage, MayBeClosedAndLetGoWhileItsMessageStands) {
    Open();
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    host.onRequest = [&] {
        page->SetPageSite(nullptr);
        page->SetObjects(0, nullptr);
        page->Deactivate();
        page.reset();
    };
    IPropertyPage* const applied = page.get();
    MessageBoxCloser closer(applyMessageCaption, [&] { SendMessageA(host.Handle(), WM_APP, 0, 0); });
    EXPECT_EQ(S_OK, applied->Apply());
    EXPECT_EQ(1U, closer.Finish().size());
    EXPECT_EQ(nullptr, Dialog());
    EXPECT_EQ(2U, object.mode);
}

INT_PTR CALLBACK TakesNothing(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

TEST_F(PropertyPage, TellsItsTextsAndTheSizeThatTheDialogWillHave) {
    PROPPAGEINFO info = {};
    EXPECT_EQ(E_POINTER, page->GetPageInfo(nullptr));
    ASSERT_EQ(S_OK, page->GetPageInfo(&info));
    EXPECT_EQ(sizeof info, info.cb);
    EXPECT_STREQ(L"Clarivex Settings", info.pszTitle);
    EXPECT_STREQ(L"Clarivex Plugin", info.pszDocString);
    EXPECT_STREQ(L"Help File Name", info.pszHelpFile);
    CoTaskMemFree(info.pszTitle);
    CoTaskMemFree(info.pszDocString);
    CoTaskMemFree(info.pszHelpFile);

    const HWND asMade =
        CreateDialogParamA(plugin.Handle(), MAKEINTRESOURCEA(CVX_DIALOG_PAGE), host.Handle(), &TakesNothing, 0);
    RECT client = {};
    GetClientRect(asMade, &client);
    EXPECT_GT(client.right, 214);
    EXPECT_EQ(client.right, info.size.cx);
    EXPECT_EQ(client.bottom, info.size.cy);
    DestroyWindow(asMade);
}

// Pixels that a control's text wants when it is drawn into `width`.
SIZE WantedSize(HWND control, const std::string& text, int width, UINT format) {
    const HDC context = GetDC(control);
    const HGDIOBJ before = SelectObject(context, reinterpret_cast<HFONT>(SendMessageA(control, WM_GETFONT, 0, 0)));
    RECT rect = {0, 0, width, 0};
    DrawTextA(context, text.c_str(), -1, &rect, format | DT_CALCRECT);
    SelectObject(context, before);
    ReleaseDC(control, context);
    return {rect.right, rect.bottom};
}

TEST_F(PropertyPage, EveryVisibleTextFitsItsControl) {
    Open();
    int texts = 0;
    for (HWND control = GetWindow(Dialog(), GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        const std::string text = TextOf(control);
        if (IsWindowVisible(control) == FALSE || ClassOf(control) == TRACKBAR_CLASSA) continue;
        RECT client = {};
        GetClientRect(control, &client);
        const bool isButton = ClassOf(control) == "Button";
        const bool isGroup = isButton && (GetWindowLongA(control, GWL_STYLE) & BS_TYPEMASK) == BS_GROUPBOX;
        const int checkMark = isButton && !isGroup ? 16 : 0;
        const int room = client.right - checkMark;
        const SIZE wanted = WantedSize(control, text, room, isGroup ? DT_SINGLELINE : DT_WORDBREAK);
        EXPECT_LE(wanted.cx, room) << text;
        EXPECT_LE(wanted.cy, client.bottom) << text;
        ++texts;
    }
    EXPECT_EQ(12, texts);
}

TEST_F(PropertyPage, ControlsStandInTheDialogAndTheHiddenOnesStayHidden) {
    Open();
    std::map<std::string, int> classes;
    for (HWND control = GetWindow(Dialog(), GW_CHILD); control != nullptr; control = GetWindow(control, GW_HWNDNEXT)) {
        ++classes[ClassOf(control)];
    }
    EXPECT_EQ((std::map<std::string, int>{{"Button", 5}, {"Edit", 1}, {"Static", 8}, {TRACKBAR_CLASSA, 2}}), classes);
    EXPECT_EQ("Scale Factor (0.0 to 1.0):", TextOf(GetWindow(Dialog(), GW_CHILD)));
    EXPECT_FALSE(IsWindowVisible(GetWindow(Dialog(), GW_CHILD)));
    EXPECT_FALSE(IsWindowVisible(Control(CVX_PAGE_SCALE_FACTOR)));
    EXPECT_TRUE(IsWindowVisible(Control(CVX_PAGE_EDGE_SLIDER)));
}

TEST_F(PropertyPage, RefusesASecondSiteUntilTheFirstOneIsGone) {
    FakeSite second;
    EXPECT_EQ(S_OK, page->SetPageSite(&site));
    EXPECT_EQ(2, site.references);
    EXPECT_EQ(E_UNEXPECTED, page->SetPageSite(&second));
    EXPECT_EQ(E_UNEXPECTED, page->SetPageSite(&site));
    EXPECT_EQ(2, site.references);
    EXPECT_EQ(S_OK, page->SetPageSite(nullptr));
    EXPECT_EQ(S_OK, page->SetPageSite(nullptr));
    EXPECT_EQ(1, site.references);
    EXPECT_EQ(S_OK, page->SetPageSite(&second));
    page.reset();
    EXPECT_EQ(1, second.references);
}

TEST_F(PropertyPage, TakesTheFirstObjectThatHasSettings) {
    FakeSettings other;
    FakeBuffer foreign(4);
    IUnknown* objects[] = {nullptr, &foreign, &object, &other};
    EXPECT_EQ(E_POINTER, page->SetObjects(1, nullptr));
    EXPECT_EQ(S_OK, page->SetObjects(4, objects));
    EXPECT_EQ(2, object.references);
    EXPECT_EQ(E_POINTER, page->SetObjects(1, nullptr));
    EXPECT_EQ(2, object.references);
    IUnknown* others[] = {&other};
    EXPECT_EQ(S_OK, page->SetObjects(1, others));
    EXPECT_EQ(1, object.references);
    EXPECT_EQ(2, other.references);
    EXPECT_EQ(S_OK, page->SetObjects(2, objects));  // nobody with settings among them
    EXPECT_EQ(1, other.references);
    EXPECT_EQ(S_OK, page->SetObjects(0, nullptr));
    EXPECT_EQ(1, foreign.references);
}

TEST_F(PropertyPage, NeedsAWindowForWhatWorksOnIt) {
    MSG message = {nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(E_UNEXPECTED, page->Show(SW_SHOW));
    EXPECT_EQ(E_UNEXPECTED, page->Move(&pageRect));
    EXPECT_EQ(E_UNEXPECTED, page->Apply());
    EXPECT_EQ(S_FALSE, page->TranslateAccelerator(&message));
    EXPECT_EQ(S_FALSE, page->IsPageDirty());
    EXPECT_EQ(S_OK, page->Deactivate());
    EXPECT_EQ(E_POINTER, page->Activate(host.Handle(), nullptr, FALSE));
    EXPECT_EQ(E_UNEXPECTED, page->Activate(nullptr, &pageRect, FALSE));  // a child needs a parent
    EXPECT_EQ(std::nullopt, registry.Number(settingsKey, "CVXMode"));
    Open();
    EXPECT_EQ(E_UNEXPECTED, page->Activate(host.Handle(), &pageRect, FALSE));
    EXPECT_EQ(E_POINTER, page->Move(nullptr));
    EXPECT_EQ(E_POINTER, page->TranslateAccelerator(nullptr));
}

TEST_F(PropertyPage, StandsWhereItIsPut) {
    Open();
    const RECT wanted = {11, 7, 211, 107};
    EXPECT_EQ(S_OK, page->Move(&wanted));
    RECT found = {};
    GetWindowRect(Dialog(), &found);
    MapWindowPoints(nullptr, host.Handle(), reinterpret_cast<POINT*>(&found), 2);
    EXPECT_TRUE(EqualRect(&wanted, &found));
    EXPECT_TRUE(IsWindowVisible(Dialog()));
    EXPECT_EQ(S_OK, page->Show(SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(Dialog()));
    EXPECT_EQ(S_OK, page->Deactivate());
    EXPECT_EQ(nullptr, Dialog());
}

TEST_F(PropertyPage, TakesKeysAndMouseAndNothingElse) {
    Open();
    SetFocus(Control(CVX_PAGE_EDGE_SLIDER));
    MSG message = {Control(CVX_PAGE_EDGE_SLIDER), WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(S_OK, page->TranslateAccelerator(&message));
    EXPECT_EQ(Control(CVX_PAGE_BYPASS_HD), GetFocus());
    message = {Control(CVX_PAGE_LIGHTING), 525, 0, 0, 0, {}};
    EXPECT_EQ(S_OK, page->TranslateAccelerator(&message));
    for (const UINT other : {255U, 266U, 511U, 526U, UINT{WM_TIMER}}) {
        message = {Control(CVX_PAGE_LIGHTING), other, 0, 0, 0, {}};
        EXPECT_EQ(S_FALSE, page->TranslateAccelerator(&message)) << other;
    }
    message = {host.Handle(), WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(S_FALSE, page->TranslateAccelerator(&message));  // not this dialog's
}

TEST_F(PropertyPage, StaysAControlParentWhateverItsHostSets) {
    Open();
    SetWindowLongA(Dialog(), GWL_EXSTYLE, 0);
    EXPECT_NE(0, GetWindowLongA(Dialog(), GWL_EXSTYLE) & WS_EX_CONTROLPARENT);
}

// What the help viewer is asked to open.
std::wstring helpAskedFor;

LRESULT CALLBACK HelpViewer(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COPYDATA) return DefWindowProcA(window, message, wParam, lParam);
    const auto* data = reinterpret_cast<const COPYDATASTRUCT*>(lParam);
    const std::string bytes(static_cast<const char*>(data->lpData), data->cbData);
    const size_t name = bytes.find("Help File Name");
    helpAskedFor = name == std::string::npos ? L"" : L"Help File Name";
    if (bytes.find(R"(C:\help\Help File Name)") != std::string::npos) helpAskedFor = LR"(C:\help\Help File Name)";
    return TRUE;
}

TEST_F(PropertyPage, AsksForItsHelpFileInTheFolderGiven) {
    WNDCLASSA description = {};
    description.lpfnWndProc = &HelpViewer;
    description.hInstance = GetModuleHandleA(nullptr);
    description.lpszClassName = "MS_WINHELP";
    RegisterClassA(&description);
    const HWND viewer =
        CreateWindowA("MS_WINHELP", "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, description.hInstance, nullptr);
    Open();
    EXPECT_EQ(S_OK, page->Help(nullptr));
    EXPECT_EQ(L"Help File Name", helpAskedFor);
    EXPECT_EQ(S_OK, page->Help(LR"(C:\help)"));
    EXPECT_EQ(LR"(C:\help\Help File Name)", helpAskedFor);
    EXPECT_EQ(E_INVALIDARG, page->Help(std::wstring(1000, L'x').c_str()));
    DestroyWindow(viewer);
    UnregisterClassA("MS_WINHELP", description.hInstance);
}

TEST_F(PropertyPage, EndsWithItsHostsWindow) {
    auto other = std::make_unique<HostWindow>("Settings", 400, 240);
    ASSERT_EQ(S_OK, page->Activate(other->Handle(), &pageRect, FALSE));
    other.reset();
    EXPECT_EQ(E_UNEXPECTED, page->Show(SW_SHOW));
    EXPECT_EQ(S_OK, page->Deactivate());
    EXPECT_EQ(S_OK, page->Activate(host.Handle(), &pageRect, FALSE));
    page.reset();
    EXPECT_EQ(nullptr, Dialog());
}

TEST_F(PropertyPage, ShowsNothingWithoutItsResources) {
    const ResourcesOf none(GetModuleHandleA(nullptr));
    EXPECT_EQ(E_UNEXPECTED, page->Activate(host.Handle(), &pageRect, FALSE));
    EXPECT_EQ(nullptr, Dialog());
    PROPPAGEINFO info = {};
    EXPECT_EQ(S_OK, page->GetPageInfo(&info));
    EXPECT_EQ(0, info.size.cx);
    EXPECT_EQ(0, info.size.cy);
    EXPECT_STREQ(L"", info.pszTitle);
    CoTaskMemFree(info.pszTitle);
    CoTaskMemFree(info.pszDocString);
    CoTaskMemFree(info.pszHelpFile);
}

TEST_F(PropertyPage, HasOneInterfaceAndOneIdentity) {
    const auto identity = Ask<IUnknown>(page.get(), iidUnknown);
    EXPECT_EQ(static_cast<IUnknown*>(page.get()), identity.get());
    EXPECT_EQ(nullptr, Ask<IUnknown>(page.get(), iidCvxSettings));
    EXPECT_EQ(E_POINTER, page->QueryInterface(iidPropertyPage, nullptr));
    EXPECT_EQ(E_POINTER, CreatePropertyPage(nullptr, iidPropertyPage, nullptr));
    void* out = &out;
    EXPECT_EQ(E_NOINTERFACE, CreatePropertyPage(nullptr, iidMediaObject, &out));
    EXPECT_EQ(nullptr, out);
}

TEST_F(PropertyPage, WorksAsAPartOfAnotherObject) {
    FakeOuter outer;
    void* made = nullptr;
    ASSERT_EQ(S_OK, CreatePropertyPage(&outer, iidUnknown, &made));
    const Owned<IUnknown> inner(static_cast<IUnknown*>(made));
    outer.inner = inner.get();
    EXPECT_EQ(1, outer.references);
    auto part = Ask<IPropertyPage>(&outer, iidPropertyPage);
    EXPECT_EQ(2, outer.references);
    EXPECT_EQ(&outer, Ask<IUnknown>(part.get(), iidUnknown).get());
    EXPECT_EQ(S_OK, part->Activate(host.Handle(), &pageRect, FALSE));
    EXPECT_EQ(S_OK, part->Apply());
    EXPECT_EQ(2, outer.references);
    part.reset();
    EXPECT_EQ(1, outer.references);
}

TEST_F(PropertyPage, OpeningAndApplyingLeavesNoHandleBehind) {
    Open();
    const auto round = [&] {
        Reopen();
        Click(CVX_PAGE_LIGHTING);
        EXPECT_EQ(S_OK, page->Apply());
    };
    round();  // what the system keeps for itself from the first time on
    const int64_t before = OpenHandles();
    for (int i = 0; i < 5; ++i) round();
    EXPECT_EQ(before, OpenHandles());
}

}  // namespace
}  // namespace clarivex
