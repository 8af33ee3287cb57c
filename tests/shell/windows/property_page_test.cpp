// The property page in a real window.
#include "shell/windows/property_page.h"

#include <commctrl.h>
#include <olectl.h>

#include "host/bitmap.h"
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

constexpr char reloadText[] = "Changes may not take immediate effect until video is reloaded.";
constexpr char currentlyOff[] = "Clarivex (Currently Off)", currentlyOn[] = "Clarivex (Currently On)";
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

using Texts = std::vector<std::string>;
Texts messages;  // of the boxes that the page showed
std::function<void()> whileTheMessageStands;

int WINAPI NoteMessage(HWND, LPCSTR text, LPCSTR caption, UINT kind) {
    EXPECT_EQ(std::pair(std::string(applyMessageCaption), UINT{MB_OK}), std::pair(std::string(caption), kind));
    messages.emplace_back(text);
    if (whileTheMessageStands) whileTheMessageStands();
    return IDOK;
}

class PropertyPage : public testing::Test {
protected:
    ~PropertyPage() override {
        whileTheMessageStands = nullptr;
        page.reset();
        EXPECT_EQ(std::pair(1, 1), std::pair(object.references.load(), site.references.load()));
        EXPECT_EQ(S_OK, plugin.CanUnload());
    }

    // As a host opens a page; the fixture's object is shown unless there is none.
    void Open(bool withObject = true) {
        IUnknown* objects[] = {&object};
        ASSERT_EQ(S_OK, page->SetObjects(withObject ? 1 : 0, objects));
        ASSERT_EQ(S_OK, page->SetPageSite(&site));
        ASSERT_EQ(S_OK, page->Activate(host.Handle(), &pageRect, FALSE));
        ASSERT_EQ(S_OK, page->Show(SW_SHOW));
    }
    void Reopen() {
        ASSERT_EQ(S_OK, page->Deactivate());
        ASSERT_EQ(S_OK, page->Activate(host.Handle(), &pageRect, FALSE));
    }

    HWND Dialog() const { return host.Child(); }
    HWND Control(int id) const { return GetDlgItem(Dialog(), id); }
    bool Dirty() const { return page->IsPageDirty() == S_OK; }
    bool Checked(int box) const { return IsDlgButtonChecked(Dialog(), box) == BST_CHECKED; }
    int Position(int slider) const { return static_cast<int>(SendMessageA(Control(slider), TBM_GETPOS, 0, 0)); }
    void ExpectShown(int edge, int mode, bool bypassHd, bool lighting, const char* title, const char* scaleFactor) {
        EXPECT_EQ(std::tuple(edge, mode, bypassHd, lighting),
                  std::tuple(Position(CVX_PAGE_EDGE_SLIDER), Position(CVX_PAGE_MODE_SLIDER),
                             Checked(CVX_PAGE_BYPASS_HD), Checked(CVX_PAGE_LIGHTING)));
        EXPECT_EQ(title, TextOf(Control(CVX_PAGE_STATE_GROUP)));
        EXPECT_EQ(scaleFactor, TextOf(Control(CVX_PAGE_SCALE_FACTOR)));
        EXPECT_FALSE(Dirty());
    }

    // What a user does: moves a slider, or clicks on a box.
    void Choose(int control, int position = -1) const {
        if (position < 0) SendMessageA(Control(control), BM_CLICK, 0, 0);
        const int steps = position < 0 ? 0 : position - Position(control);
        for (int i = 0; i < std::abs(steps); ++i)
            SendMessageA(Control(control), WM_KEYDOWN, steps > 0 ? VK_DOWN : VK_UP, 0);
    }

    Texts MessagesOfApply() {
        messages.clear();
        EXPECT_EQ(S_OK, page->Apply());
        return messages;
    }

    const PluginModule plugin;
    const ReplacedImport boxes{plugin.Handle(), "user32.dll", "MessageBoxA", &NoteMessage};
    const UserRegistry registry;
    FakeSettings object;
    FakeSite site;
    HostWindow host{400, 240};
    Owned<IPropertyPage> page = plugin.Make<IPropertyPage>(iidPropertyPage, clsidPropertyPage);
};

TEST_F(PropertyPage, ShowsTheRunningObjectsSettings) {
    object.sharpness = 0.0F;
    object.mode = 0;
    Open();
    ExpectShown(4, 0, true, true, currentlyOff, "0.25");
    object.sharpness = 65535.0F;
    object.mode = 7;
    object.allowHd = 1;
    object.enableLighting = 0;
    object.scalingActive = 1;
    Reopen();  // the sliders stop at their ends
    ExpectShown(0, 2, false, false, currentlyOn, "0.25");
    EXPECT_EQ(1U, MessagesOfApply().size());
    EXPECT_EQ((SettingValues{2.0F, 2, true, false, 0.0}), SavedSettings());
}

TEST_F(PropertyPage, WithoutAnObjectShowsWhatIsSavedAndSavesWhatIsTouched) {
    Open(false);
    ExpectShown(2, 1, true, true, currentlyOff, "1.00");
    EXPECT_EQ(Texts{}, MessagesOfApply());
    EXPECT_EQ((SettingValues{1.0F, 1, false, true, 0.0}), SavedSettings());
    const uint32_t odd[] = {0x11000, 7, 1, 0, 0x8000};  // between two positions, beyond the last one
    for (size_t i = 0; i < std::size(odd); ++i) registry.SetNumber(settingsKey, settingNames[i], odd[i]);
    Reopen();
    ExpectShown(2, 2, false, false, currentlyOff, "0.50");
    EXPECT_EQ(Texts{}, MessagesOfApply());
    EXPECT_EQ((SettingValues{1.0625F, 7, true, false, 0.5}), SavedSettings());
    Choose(CVX_PAGE_MODE_SLIDER, 1);
    Choose(CVX_PAGE_MODE_SLIDER, 2);
    Choose(CVX_PAGE_LIGHTING);
    registry.SetNumber(settingsKey, "Sharpness", 0x14000);  // by another page
    EXPECT_EQ(Texts{}, MessagesOfApply());
    EXPECT_EQ((SettingValues{1.25F, 2, true, true, 0.5}), SavedSettings());
    EXPECT_TRUE(object.puts.empty());
}

TEST_F(PropertyPage, EveryChoiceMakesItDirtyOnceAndRenewsTheTitle) {
    Open();
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");  // none of these is a choice
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_STATE_GROUP, BN_CLICKED), 0);
    SendMessageA(Dialog(), WM_COMMAND, MAKEWPARAM(CVX_PAGE_LIGHTING, BN_SETFOCUS), 0);
    SendMessageA(Dialog(), WM_VSCROLL, TB_ENDTRACK, 0);
    EXPECT_FALSE(Dirty());
    for (const int control : {CVX_PAGE_EDGE_SLIDER, CVX_PAGE_MODE_SLIDER, CVX_PAGE_BYPASS_HD, CVX_PAGE_LIGHTING}) {
        const bool isBox = control == CVX_PAGE_BYPASS_HD || control == CVX_PAGE_LIGHTING;
        object.scalingActive = 0;
        Reopen();
        site.changes.clear();
        object.scalingActive = 1;
        ExpectShown(2, 1, true, true, currentlyOff, "0.25");
        Choose(control, isBox ? -1 : 0);
        EXPECT_TRUE(Dirty());
        EXPECT_EQ(currentlyOn, TextOf(Control(CVX_PAGE_STATE_GROUP)));
        Choose(control, isBox ? -1 : 2);
        EXPECT_EQ((std::vector<DWORD>{3}), site.changes);
    }
}

TEST_F(PropertyPage, ApplyStoresTheChoicesAndHandsThemOver) {
    object.mode = 0;
    Open();
    Choose(CVX_PAGE_EDGE_SLIDER, 1);
    Choose(CVX_PAGE_MODE_SLIDER, 1);
    Choose(CVX_PAGE_BYPASS_HD);
    Choose(CVX_PAGE_LIGHTING);
    SetDlgItemTextA(Dialog(), CVX_PAGE_SCALE_FACTOR, "0.75");
    EXPECT_EQ(Texts{reloadText}, MessagesOfApply());
    EXPECT_EQ((SettingValues{1.5F, 1, true, false, 0.0}), SavedSettings());
    EXPECT_EQ((Texts{"ScaleFactor", "Sharpness", "CVXMode", "EnableLighting", "AllowHD"}), object.puts);
    EXPECT_EQ(std::tuple(0.75, 1.5F, 1U, 0, 1),
              std::tuple(object.scaleFactor, object.sharpness, object.mode, object.enableLighting, object.allowHd));
    EXPECT_FALSE(Dirty());
    Choose(CVX_PAGE_LIGHTING);
    EXPECT_EQ((std::vector<DWORD>{3, 3}), site.changes);  // a change after Apply is told again
    EXPECT_EQ(Texts{}, MessagesOfApply());                // and need not wait
    Choose(CVX_PAGE_BYPASS_HD);
    EXPECT_EQ(Texts{reloadText}, MessagesOfApply());
    EXPECT_EQ(Texts{}, MessagesOfApply());
}

TEST_F(PropertyPage, MayBeClosedAndLetGoWhileItsMessageStands) {
    Open();
    Choose(CVX_PAGE_MODE_SLIDER, 2);
    whileTheMessageStands = [&] {
        page->SetPageSite(nullptr);
        page->SetObjects(0, nullptr);
        page->Deactivate();
        page.reset();
    };
    EXPECT_EQ(1U, MessagesOfApply().size());
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
    CreateDialogParamA(plugin.Handle(), MAKEINTRESOURCEA(CVX_DIALOG_PAGE), host.Handle(), &TakesNothing, 0);
    RECT client = {};  // of the dialog as the system makes it
    GetClientRect(Dialog(), &client);
    EXPECT_GT(client.right, 214);
    EXPECT_EQ(std::pair(client.right, client.bottom), std::pair(info.size.cx, info.size.cy));
    const ReplacedImport taking(plugin.Handle(), "ole32.dll", "CoTaskMemAlloc", &TakeBlock);
    for (int blocks = 0; blocks < 3; ++blocks) {
        PROPPAGEINFO none = {};
        blocksLeft = blocks;
        EXPECT_EQ(E_OUTOFMEMORY, page->GetPageInfo(&none));
        EXPECT_EQ(nullptr, none.pszTitle);
    }
}

TEST_F(PropertyPage, RefusesASecondSiteAndTakesTheFirstObjectThatHasSettings) {
    FakeSite second;
    EXPECT_EQ(S_OK, page->SetPageSite(&second));
    for (FakeSite* each : {&second, &site}) EXPECT_EQ(E_UNEXPECTED, page->SetPageSite(each));
    EXPECT_EQ(S_OK, page->SetPageSite(nullptr));
    EXPECT_EQ(1, second.references);
    EXPECT_EQ(S_OK, page->SetPageSite(&site));
    FakeSettings other;
    FakeBuffer foreign(4);
    IUnknown* objects[] = {nullptr, &foreign, &object, &other};
    EXPECT_EQ(S_OK, page->SetObjects(4, objects));
    EXPECT_EQ(E_POINTER, page->SetObjects(1, nullptr));
    EXPECT_EQ(std::pair(2, 1), std::pair(object.references.load(), other.references.load()));
    EXPECT_EQ(S_OK, page->SetObjects(2, objects));  // nobody with settings among them
    EXPECT_EQ(std::pair(1, 1), std::pair(object.references.load(), foreign.references.load()));
}

TEST_F(PropertyPage, NeedsAWindowForWhatWorksOnItAndEndsWithItsHosts) {
    MSG message = {nullptr, WM_KEYDOWN, VK_TAB, 0, 0, {}};
    EXPECT_EQ(E_UNEXPECTED, page->Show(SW_SHOW));
    EXPECT_EQ(E_UNEXPECTED, page->Move(&pageRect));
    EXPECT_EQ(E_UNEXPECTED, page->Apply());
    EXPECT_EQ(S_FALSE, page->TranslateAccelerator(&message));
    EXPECT_EQ(E_POINTER, page->Activate(host.Handle(), nullptr, FALSE));
    EXPECT_EQ(E_UNEXPECTED, page->Activate(nullptr, &pageRect, FALSE));  // a child needs a parent
    ASSERT_EQ(S_OK, page->Activate(HostWindow(400, 240).Handle(), &pageRect, FALSE));
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
    Bitmap picture = {{size.cx, size.cy}, {}};
    const HDC context = GetDC(Dialog());
    for (int i = 0; i < size.cx * size.cy; ++i) {
        const COLORREF colour = GetPixel(context, i % size.cx, i / size.cx);
        picture.pixels.insert(picture.pixels.end(), {GetBValue(colour), GetGValue(colour), GetRValue(colour)});
    }
    ReleaseDC(Dialog(), context);
    FileSink file(path);
    WriteBitmap(file, picture);
}

}  // namespace
}  // namespace clarivex
