// When the updater is started and with what, by objects of a copy of the DLL that has a program of that name beside it.
#include "shell/windows/update_check.h"

#include <ctime>
#include <filesystem>

#include "runtime/owned_handle.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/replaced_import.h"
#include "tests/shell/windows/temporary_folder.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

TEST(UpdateIsDue, InTheHourItself) {
    EXPECT_TRUE(UpdateIsDue(3600 * 1000, 1000));
    EXPECT_FALSE(UpdateIsDue(3600 * 1000 - 1, 1000));
    EXPECT_TRUE(UpdateIsDue(3600 * 1000, 0x80000000U));  // long before 1970
    EXPECT_FALSE(UpdateIsDue(3600 * 1000, 0x7FFFFFFFU));
}

TEST(UpdaterPath, LiesInTheModulesFolder) {
    EXPECT_EQ(R"(C:\My 'own' place\twupdate.exe)", UpdaterPath(R"(C:\My 'own' place\WMP_CVX.dll)"));
    EXPECT_EQ(R"(C:/plain\twupdate.exe)", UpdaterPath("C:/plain/WMP_CVX.dll"));
    EXPECT_EQ("", UpdaterPath("WMP_CVX.dll"));
}

using Starts = std::vector<std::tuple<std::string, std::string, bool, bool>>;
Starts starts;  // program, command line, whether it inherits handles, whether it was started

// Starts the program and waits for its end.
BOOL WINAPI NoteStart(LPCSTR program, LPSTR line, LPSECURITY_ATTRIBUTES process, LPSECURITY_ATTRIBUTES thread,
                      BOOL inherits, DWORD flags, LPVOID environment, LPCSTR folder, LPSTARTUPINFOA startup,
                      LPPROCESS_INFORMATION made) {
    const auto start = reinterpret_cast<decltype(&CreateProcessA)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "CreateProcessA")));
    starts.emplace_back(program, line, inherits != FALSE, false);
    const BOOL done = start(program, line, process, thread, inherits, flags, environment, folder, startup, made);
    std::get<3>(starts.back()) = done != FALSE;
    EXPECT_TRUE(!done || WaitForSingleObject(made->hProcess, 30000) == WAIT_OBJECT_0);
    return done;
}

class UpdateCheckOfTheDll : public testing::Test {
protected:
    // What making one object leads to.
    Starts Made() const {
        starts.clear();
        module.Make<IUnknown>(iidUnknown);
        return starts;
    }
    // In hours from now.
    void SetNextCheck(int hours, DWORD type = REG_DWORD) const {
        const auto number = static_cast<uint32_t>(std::time(nullptr) / 3600 + hours);
        registry.Set(R"(Software\Tessel Works\Applications\CVX1WMP)", "Next Check", type,
                     {reinterpret_cast<const uint8_t*>(&number), sizeof number});
    }

    const UserRegistry registry;
    const TemporaryFolder folder{"update's check"};
    const PluginModule module{folder.Copy("WMP_CVX.dll")};
    const std::string updater = folder.Copy("clarivex.exe", "twupdate.exe");
    const ReplacedImport noted{module.Handle(), "kernel32.dll", "CreateProcessA", &NoteStart};
    const Starts one = {{updater, "CVX1WMP", false, true}};
};

TEST_F(UpdateCheckOfTheDll, StartsTheUpdaterForEachObjectWithTheProductCodeAlone) {
    EXPECT_EQ(one, Made());
    const int32_t before = OpenHandles();  // the first object opened what stays open
    EXPECT_EQ(one, Made());
    EXPECT_EQ(before, OpenHandles());
    std::filesystem::remove(updater);
    EXPECT_EQ((Starts{{updater, "CVX1WMP", false, false}}), Made()) << "a missing updater is no failure";
    starts.clear();
    const ReplacedImport ofThisProgram(GetModuleHandleA(nullptr), "kernel32.dll", "CreateProcessA", &NoteStart);
    UpdateCheck(module.Handle(), "");
    EXPECT_TRUE(starts.empty()) << "for no product";
}

TEST_F(UpdateCheckOfTheDll, WaitsForTheStoredTimeAndForAnUpdaterThatRuns) {
    SetNextCheck(2);
    EXPECT_EQ(Starts{}, Made());
    SetNextCheck(2, REG_BINARY);
    EXPECT_EQ(one, Made()) << "no number, though it has as many bytes as one";
    SetNextCheck(-2);
    const OwnedHandle running(CreateMutexA(nullptr, FALSE, "TW-6B2F90A1-3C7D-4E18-A5D0-91F4C28E7B36"));
    EXPECT_EQ(Starts{}, Made());
}

}  // namespace
}  // namespace clarivex
