// Paints the property page into a file for people to look at: scripts/show_settings_page.sh runs it. Skipped when
// CLARIVEX_PAGE_PICTURE names no file.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <vector>

#include "platform/guids.h"
#include "shell/class_ids.h"
#include "tests/shell/windows/fake_settings.h"
#include "tests/shell/windows/host_windows.h"
#include "tests/shell/windows/plugin_module.h"

namespace clarivex {
namespace {

// A window's inside as it stands on the screen: rows from the bottom, 32 bits a pixel.
std::vector<uint8_t> PixelsOf(HWND window, BITMAPINFOHEADER& header) {
    const HDC from = GetDC(window);
    const HDC to = CreateCompatibleDC(from);
    void* bits = nullptr;
    const HBITMAP bitmap =
        CreateDIBSection(to, reinterpret_cast<BITMAPINFO*>(&header), DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(to, bitmap);
    BitBlt(to, 0, 0, header.biWidth, header.biHeight, from, 0, 0, SRCCOPY);
    GdiFlush();
    const auto* first = static_cast<const uint8_t*>(bits);
    std::vector<uint8_t> pixels(first, first + header.biSizeImage);
    SelectObject(to, before);
    DeleteObject(bitmap);
    DeleteDC(to);
    ReleaseDC(window, from);
    return pixels;
}

void WriteBitmap(const char* path, const BITMAPINFOHEADER& header, const std::vector<uint8_t>& pixels) {
    BITMAPFILEHEADER file = {};
    file.bfType = 0x4D42;  // "BM"
    file.bfOffBits = sizeof file + sizeof header;
    file.bfSize = file.bfOffBits + header.biSizeImage;
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(&file), sizeof file);
    out.write(reinterpret_cast<const char*>(&header), sizeof header);
    out.write(reinterpret_cast<const char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
    ASSERT_TRUE(out.good()) << path << " cannot be written";
}

TEST(PropertyPagePicture, IsPaintedIntoAFile) {
    const char* path = std::getenv("CLARIVEX_PAGE_PICTURE");
    if (path == nullptr) GTEST_SKIP() << "CLARIVEX_PAGE_PICTURE is not set";
    const PluginModule plugin;
    FakeSettings object;
    object.scalingActive = 1;
    {
        void* made = nullptr;
        Require(plugin.Factory(clsidPropertyPage)->CreateInstance(nullptr, iidPropertyPage, &made), "no page");
        const Owned<IPropertyPage> page(static_cast<IPropertyPage*>(made));
        PROPPAGEINFO info = {};
        ASSERT_EQ(S_OK, page->GetPageInfo(&info));
        for (LPOLESTR text : {info.pszTitle, info.pszDocString, info.pszHelpFile}) CoTaskMemFree(text);

        const HostWindow host("Clarivex Settings", info.size.cx, info.size.cy);
        const RECT rect = {0, 0, info.size.cx, info.size.cy};
        IUnknown* objects[] = {&object};
        ASSERT_EQ(S_OK, page->SetObjects(1, objects));
        ASSERT_EQ(S_OK, page->Activate(host.Handle(), &rect, FALSE));
        ASSERT_EQ(S_OK, page->Show(SW_SHOW));
        RedrawWindow(host.Handle(), nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
        HostWindow::HandleMessages();

        BITMAPINFOHEADER header = {};
        header.biSize = sizeof header;
        header.biWidth = info.size.cx;
        header.biHeight = info.size.cy;
        header.biPlanes = 1;
        header.biBitCount = 32;
        header.biSizeImage = static_cast<DWORD>(info.size.cx * info.size.cy * 4);
        WriteBitmap(path, header, PixelsOf(host.Child(), header));
    }
    EXPECT_EQ(1, object.references);
}

}  // namespace
}  // namespace clarivex
