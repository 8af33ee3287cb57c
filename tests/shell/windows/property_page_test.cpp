// The property page in a real window.
#include "shell/windows/property_page.h"

#include <commctrl.h>
#include <olectl.h>

#include "host/bitmap.h"
#include "shell/module.h"
#include "shell/windows/page_ids.h"
#include "shell/windows/resource_ids.h"
#include "tests/shell/windows/host_windows.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/fake_buffers.h"
#include "tests/support/fake_settings.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr char settingsKey[] = R"(Software\Tessel Works\Clarivex WMP)";
constexpr char reloadText[] = "Changes may not take immediate effect until video is reloaded.";
constexpr RECT pageRect = {0, 0, 400, 240};

// Where a page tells that it changed.
class FakeSite final : public CountedFake<IPropertyPageSite> {
public:
    FakeSite() : CountedFake(IID_IPropertyPageSite) {}

    std::vector<DWORD> changes;  // flags of each OnStatusChange

    HRESULT STDMETHODCALLTYPE OnStatusChange(DWORD flags) override {
        changes.push_back(flags);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetLocaleID(LCID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetPageContainer(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(MSG*) override { return E_NOTIMPL; }
};

class PropertyPage : public testing::Test {
protected:
    PropertyPage() {
        void* made = nullptr;
        Require(CreatePropertyPage(nullptr, iidPropertyPage, &made), "no page");
        page.reset(static_cast<IPropertyPage*>(made));
        ThisModule().instance = plugin.Handle();
    }
    ~PropertyPage() override {
        page.reset();
        ThisModule().instance = instanceBefore;
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
    bool Dirty() const { return page->IsPageDirty() == S_OK; }
    int Position(int slider) const { return static_cast<int>(SendMessageA(Control(slider), TBM_GETPOS, 0, 0)); }
    void ExpectShown(int edge, int mode, bool bypassHd, bool lighting, const char* title, const char* scaleFactor) {
        EXPECT_EQ(edge, Position(CVX_PAGE_EDGE_SLIDER));
        EXPECT_EQ(mode, Position(CVX_PAGE_MODE_SLIDER));
        EXPECT_EQ(bypassHd, IsDlgButtonChecked(Dialog(), CVX_PAGE_BYPASS_HD) == BST_CHECKED);
        EXPECT_EQ(lighting, IsDlgButtonChecked(Dialog(), CVX_PAGE_LIGHTING) == BST_CHECKED);
        EXPECT_EQ(title, TextOf(Control(CVX_PAGE_STATE_GROUP)));
        EXPECT_EQ(scaleFactor, TextOf(Control(CVX_PAGE_SCALE_FACTOR)));
        EXPECT_FALSE(Dirty());
    }

    void ExpectSaved(uint32_t sharpness, uint32_t mode, uint32_t allowHd, uint32_t enableLighting) const {
        EXPECT_EQ(sharpness, registry.Number(settingsKey, "Sharpness"));
        EXPECT_EQ(mode, registry.Number(settingsKey, "CVXMode"));
        EXPECT_EQ(allowHd, registry.Number(settingsKey, "AllowHD"));
        EXPECT_EQ(enableLighting, registry.Number(settingsKey, "EnableLighting"));
    }

    // What a user does.
    void MoveTo(int slider, int position) const {
        const int steps = position - Position(slider);
        for (int i = 0; i < std::abs(steps); ++i)
            SendMessageA(Control(slider), WM_KEYDOWN, steps > 0 ? VK_DOWN : VK_UP, 0);
        EXPECT_EQ(position, Position(slider));
    }
    void Click(int box) const { SendMessageA(Control(box), BM_CLICK, 0, 0); }

    std::vector<std::string> MessagesOfApply() {
        MessageBoxCloser closer(applyMessageCaption);
        EXPECT_EQ(S_OK, page->Apply());
        return closer.Finish();
    }

    const PluginModule plugin;  // whose resources the page shows
    const HINSTANCE instanceBefore = ThisModule().instance;
    const UserRegistry registry;
    const int32_t locksBefore = ThisModule().lockCount;
    FakeSettings object;
    FakeSite site;
    HostWindow host{"Settings", 400, 240};
    Owned<IPropertyPage> page;
};

TEST_F(PropertyPage, ShowsTheRunningObjectsSettings) {
    object.sharpness = 0.0F;
    object.mode = 0;
    Open();
    ExpectShown(4, 0, true, true, "Clarivex (Currently Off)", "0.25");
    object.sharpness = 65535.0F;
    object.mode = 7;
    object.allowHd = 1;
    object.enableLighting = 0;
    object.scalingActive = 1;
    Reopen();  // the sliders stop at their ends
    ExpectShown(0, 2, false, false, "Clarivex (Currently On)", "0.25");
    EXPECT_EQ(1U, MessagesOfApply().size());
    ExpectSaved(0x20000, 2, 1, 0);
}

TEST_F(PropertyPage, WithoutAnObjectShowsWhatIsSavedAndSavesWhatIsTouched) {
    Open(false);
    ExpectShown(2, 1, true, true, "Clarivex (Currently Off)", "1.00");
    EXPECT_TRUE(MessagesOfApply().empty());
    ExpectSaved(0x10000, 1, 0, 1);
    registry.SetNumber(settingsKey, "Sharpness", 0x11000);  // between two positions
    registry.SetNumber(settingsKey, "CVXMode", 7);          // beyond the last one
    registry.SetNumber(settingsKey, "AllowHD", 1);
    registry.SetNumber(settingsKey, "EnableLighting", 0);
    registry.SetNumber(settingsKey, "ScaleFactor", 0x8000);
    Reopen();
    ExpectShown(2, 2, false, false, "Clarivex (Currently Off)", "0.50");
    EXPECT_TRUE(MessagesOfApply().empty());
    ExpectSaved(0x11000, 7, 1, 0);
    MoveTo(CVX_PAGE_MODE_SLIDER, 1);
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    Click(CVX_PAGE_LIGHTING);
    registry.SetNumber(settingsKey, "Sharpness", 0x14000);  // by another page
    EXPECT_TRUE(MessagesOfApply().empty());
    ExpectSaved(0x14000, 2, 1, 1);
    EXPECT_EQ(0x8000U, registry.Number(settingsKey, "ScaleFactor"));
    EXPECT_TRUE(object.puts.empty());
}

TEST_F(PropertyPage, EveryChoiceMakesItDirtyOnceAndRenewsTheTitle) {
    Open();
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");  // none of these is a choice
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_STATE_GROUP, BN_CLICKED), 0);
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_LIGHTING, BN_SETFOCUS), 0);
    SendMessageA(Dialog(), WM_VSCROLL, TB_ENDTRACK, 0);
    EXPECT_FALSE(Dirty());
    const std::function<void(int)> changes[] = {
        [&](int position) { MoveTo(CVX_PAGE_EDGE_SLIDER, position); },
        [&](int position) { MoveTo(CVX_PAGE_MODE_SLIDER, position); },
        [&](int) { Click(CVX_PAGE_BYPASS_HD); },
        [&](int) { Click(CVX_PAGE_LIGHTING); },
    };
    for (const auto& change : changes) {
        object.scalingActive = 0;
        Reopen();
        site.changes.clear();
        object.scalingActive = 1;
        ExpectShown(2, 1, true, true, "Clarivex (Currently Off)", "0.25");
        change(0);
        EXPECT_TRUE(Dirty());
        EXPECT_EQ("Clarivex (Currently On)", TextOf(Control(CVX_PAGE_STATE_GROUP)));
        change(1);
        change(2);
        EXPECT_EQ((std::vector<DWORD>{3}), site.changes);
    }
}

TEST_F(PropertyPage, ApplyStoresTheChoicesAndHandsThemOver) {
    object.mode = 0;
    Open();
    MoveTo(CVX_PAGE_EDGE_SLIDER, 1);
    MoveTo(CVX_PAGE_MODE_SLIDER, 1);
    Click(CVX_PAGE_BYPASS_HD);
    Click(CVX_PAGE_LIGHTING);
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");
    EXPECT_EQ(std::vector<std::string>{reloadText}, MessagesOfApply());
    ExpectSaved(0x18000, 1, 1, 0);
    EXPECT_EQ(std::nullopt, registry.Number(settingsKey, "ScaleFactor"));
    EXPECT_EQ((std::vector<std::string>{"ScaleFactor", "Sharpness", "CVXMode", "EnableLighting", "AllowHD"}),
              object.puts);
    EXPECT_EQ(std::tuple(0.75, 1.5F, 1U, 0, 1),
              std::tuple(object.scaleFactor, object.sharpness, object.mode, object.enableLighting, object.allowHd));
    EXPECT_FALSE(Dirty());
    Click(CVX_PAGE_LIGHTING);
    EXPECT_EQ((std::vector<DWORD>{3, 3}), site.changes);  // a change after Apply is told again
    EXPECT_TRUE(MessagesOfApply().empty());               // and need not wait
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    EXPECT_EQ(1U, MessagesOfApply().size());
    EXPECT_TRUE(MessagesOfApply().empty());
}

std::function<void()> whileTheMessageStands;

// A timer's, so that it runs inside the message box on the page's own thread.
void CALLBACK RunOnce(HWND, UINT, UINT_PTR timer, DWORD) {
    KillTimer(nullptr, timer);
    whileTheMessageStands();
}

TEST_F(PropertyPage, MayBeClosedAndLetGoWhileItsMessageStands) {
    Open();
    MoveTo(CVX_PAGE_MODE_SLIDER, 2);
    std::optional<MessageBoxCloser> closer;
    whileTheMessageStands = [&] {
        page->SetPageSite(nullptr);
        page->SetObjects(0, nullptr);
        page->Deactivate();
        page.reset();
        closer.emplace(applyMessageCaption);
    };
    SetTimer(nullptr, 0, 1, &RunOnce);
    EXPECT_EQ(S_OK, page->Apply());
    ASSERT_TRUE(closer);
    EXPECT_EQ(1U, closer->Finish().size());
    EXPECT_EQ(nullptr, Dialog());
    EXPECT_EQ(2U, object.mode);
}

// What a page tells of itself, with its texts owned.
struct PageInfo : PROPPAGEINFO {
    explicit PageInfo(IPropertyPage& page) : PROPPAGEINFO() { Require(page.GetPageInfo(this), "no page info"); }
    ~PageInfo() {
        for (const LPOLESTR text : {pszTitle, pszDocString, pszHelpFile}) CoTaskMemFree(text);
    }
};

int blocksLeft = 0;  // that a text can be handed over in

LPVOID WINAPI TakeBlock(SIZE_T size) { return blocksLeft-- > 0 ? HeapAlloc(GetProcessHeap(), 0, size) : nullptr; }

INT_PTR CALLBACK TakesNothing(HWND, UINT, WPARAM, LPARAM) { return FALSE; }

TEST_F(PropertyPage, TellsItsTextsAndTheSizeThatItWillHaveOrNothing) {
    EXPECT_EQ(E_POINTER, page->GetPageInfo(nullptr));
    const PageInfo info(*page);
    EXPECT_EQ(sizeof(PROPPAGEINFO), info.cb);
    EXPECT_STREQ(L"Clarivex Settings", info.pszTitle);
    EXPECT_STREQ(L"Clarivex Plugin", info.pszDocString);
    EXPECT_STREQ(L"Help File Name", info.pszHelpFile);
    const HWND asMade =
        CreateDialogParamA(plugin.Handle(), MAKEINTRESOURCEA(CVX_DIALOG_PAGE), host.Handle(), &TakesNothing, 0);
    RECT client = {};
    GetClientRect(asMade, &client);
    EXPECT_GT(client.right, 214);
    EXPECT_EQ(std::pair(client.right, client.bottom), std::pair(info.size.cx, info.size.cy));
    DestroyWindow(asMade);
    const ReplacedImport taking(GetModuleHandleA(nullptr), "ole32.dll", "CoTaskMemAlloc", &TakeBlock);
    for (int blocks = 0; blocks < 3; ++blocks) {
        PROPPAGEINFO none = {};
        blocksLeft = blocks;
        EXPECT_EQ(E_OUTOFMEMORY, page->GetPageInfo(&none));
        EXPECT_EQ(nullptr, none.pszTitle);
    }
}

TEST_F(PropertyPage, RefusesASecondSiteAndTakesTheFirstObjectThatHasSettings) {
    FakeSite second;
    EXPECT_EQ(S_OK, page->SetPageSite(&site));
    for (FakeSite* other : {&second, &site}) EXPECT_EQ(E_UNEXPECTED, page->SetPageSite(other));
    EXPECT_EQ(S_OK, page->SetPageSite(nullptr));
    EXPECT_EQ(S_OK, page->SetPageSite(&second));
    FakeSettings other;
    FakeBuffer foreign(4);
    IUnknown* objects[] = {nullptr, &foreign, &object, &other};
    EXPECT_EQ(S_OK, page->SetObjects(4, objects));
    EXPECT_EQ(E_POINTER, page->SetObjects(1, nullptr));
    EXPECT_EQ(std::pair(2, 1), std::pair(object.references.load(), other.references.load()));
    EXPECT_EQ(S_OK, page->SetObjects(2, objects));  // nobody with settings among them
    EXPECT_EQ(std::pair(1, 1), std::pair(object.references.load(), foreign.references.load()));
    page.reset();
    EXPECT_EQ(1, second.references);
}

TEST_F(PropertyPage, NeedsAWindowForWhatWorksOnItAndEndsWithItsHosts) {
    MSG message = {nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(E_UNEXPECTED, page->Show(SW_SHOW));
    EXPECT_EQ(E_UNEXPECTED, page->Move(&pageRect));
    EXPECT_EQ(E_UNEXPECTED, page->Apply());
    EXPECT_EQ(S_FALSE, page->TranslateAccelerator(&message));
    EXPECT_EQ(E_POINTER, page->Activate(host.Handle(), nullptr, FALSE));
    EXPECT_EQ(E_UNEXPECTED, page->Activate(nullptr, &pageRect, FALSE));  // a child needs a parent
    {
        const HostWindow other("Settings", 400, 240);
        ASSERT_EQ(S_OK, page->Activate(other.Handle(), &pageRect, FALSE));
    }
    EXPECT_EQ(E_UNEXPECTED, page->Show(SW_SHOW));
    EXPECT_EQ(S_OK, page->Deactivate());
    Open();
    EXPECT_EQ(E_UNEXPECTED, page->Activate(host.Handle(), &pageRect, FALSE));
    EXPECT_EQ(E_POINTER, page->Move(nullptr));
    EXPECT_EQ(E_POINTER, page->TranslateAccelerator(nullptr));
    EXPECT_EQ(E_INVALIDARG, page->Help(std::wstring(1000, L'x').c_str()));
    page.reset();
    EXPECT_EQ(nullptr, Dialog());
}

TEST_F(PropertyPage, StandsWhereItIsPutAsAControlParentAndTakesKeysAndMouse) {
    Open();
    SetWindowLongA(Dialog(), GWL_EXSTYLE, 0);  // as some hosts do
    EXPECT_NE(0, GetWindowLongA(Dialog(), GWL_EXSTYLE) & WS_EX_CONTROLPARENT);
    SetFocus(Control(CVX_PAGE_EDGE_SLIDER));
    const auto takes = [&](HWND window, UINT code) {
        MSG message = {window, code, VK_TAB, 0, 0, {}};
        return page->TranslateAccelerator(&message) == S_OK;
    };
    EXPECT_TRUE(takes(Control(CVX_PAGE_EDGE_SLIDER), WM_KEYDOWN));
    EXPECT_EQ(Control(CVX_PAGE_BYPASS_HD), GetFocus());
    EXPECT_TRUE(takes(Control(CVX_PAGE_LIGHTING), 525));
    for (const UINT other : {255U, 266U, 511U, 526U}) EXPECT_FALSE(takes(Control(CVX_PAGE_LIGHTING), other)) << other;
    EXPECT_FALSE(takes(host.Handle(), WM_KEYDOWN));  // not this dialog's
    const RECT wanted = {11, 7, 211, 107};
    EXPECT_EQ(S_OK, page->Move(&wanted));
    RECT found = {};
    GetWindowRect(Dialog(), &found);
    MapWindowPoints(nullptr, host.Handle(), reinterpret_cast<POINT*>(&found), 2);
    EXPECT_TRUE(EqualRect(&wanted, &found));
    EXPECT_EQ(S_OK, page->Show(SW_HIDE));
    EXPECT_FALSE(IsWindowVisible(Dialog()));
}

// For people to look at: scripts/show_settings_page.sh runs it.
TEST_F(PropertyPage, IsPaintedIntoAFile) {
    const char* path = std::getenv("CLARIVEX_PAGE_PICTURE");
    if (path == nullptr) GTEST_SKIP() << "CLARIVEX_PAGE_PICTURE is not set";
    object.scalingActive = 1;
    Open();
    const SIZE size = PageInfo(*page).size;
    const RECT whole = {0, 0, size.cx, size.cy};
    page->Move(&whole);
    RedrawWindow(host.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    HostWindow::HandleMessages();
    Bitmap picture = {{size.cx, size.cy}, {}};
    const HDC context = GetDC(Dialog());
    for (int y = 0; y < size.cy; ++y) {
        for (int x = 0; x < size.cx; ++x) {
            const COLORREF colour = GetPixel(context, x, y);
            picture.pixels.insert(picture.pixels.end(), {GetBValue(colour), GetGValue(colour), GetRValue(colour)});
        }
    }
    ReleaseDC(Dialog(), context);
    FileSink file(path);
    WriteBitmap(file, picture);
}

}  // namespace
}  // namespace clarivex
