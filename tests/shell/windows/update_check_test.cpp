// When the updater is started and with what, by objects of a copy of the DLL that has a stand-in for it beside itself.
#include "shell/windows/update_check.h"

#include <tlhelp32.h>

#include <ctime>
#include <fstream>

#include "runtime/owned_handle.h"
#include "tests/shell/windows/handle_count.h"
#include "tests/shell/windows/plugin_module.h"
#include "tests/shell/windows/temporary_folder.h"
#include "tests/shell/windows/user_registry.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

constexpr char key[] = R"(Software\Tessel Works\Applications\CVX1WMP)";
constexpr char nextCheck[] = "Next Check";

TEST(UpdateIsDue, InTheHourItself) {
    EXPECT_TRUE(UpdateIsDue(3600 * 1000, 1000));
    EXPECT_FALSE(UpdateIsDue(3600 * 1000 - 1, 1000));
    EXPECT_TRUE(UpdateIsDue(3600 * 1000, 0));
    EXPECT_TRUE(UpdateIsDue(3600 * 1000, 0x80000000U));  // long before 1970
    EXPECT_FALSE(UpdateIsDue(3600 * 1000, 0x7FFFFFFFU));
}

TEST(UpdaterPath, LiesInTheModulesFolder) {
    EXPECT_EQ(R"(C:\My 'own' place\twupdate.exe)", UpdaterPath(R"(C:\My 'own' place\WMP_CVX.dll)"));
    EXPECT_EQ(R"(C:/plain\twupdate.exe)", UpdaterPath("C:/plain/WMP_CVX.dll"));
    EXPECT_EQ("", UpdaterPath("WMP_CVX.dll"));
    EXPECT_EQ("", UpdaterPath(""));
}

// The processes that this one started from programs named twupdate.exe and that still run.
std::vector<DWORD> RunningUpdaters() {
    std::vector<DWORD> found;
    const OwnedHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32First(snapshot.get(), &entry); more; more = Process32Next(snapshot.get(), &entry))
        if (entry.th32ParentProcessID == GetCurrentProcessId() && std::string("twupdate.exe") == entry.szExeFile)
            found.push_back(entry.th32ProcessID);
    return found;
}

class UpdateCheckOfTheDll : public testing::Test {
protected:
    // The number of updaters that making one object starts; they have ended when this returns. They hold nothing of this
    // process: a pipe that they could have inherited breaks with its last end here.
    size_t Started() {
        SECURITY_ATTRIBUTES inheritable = {sizeof inheritable, nullptr, TRUE};
        HANDLE reading = nullptr, writing = nullptr;
        EXPECT_TRUE(CreatePipe(&reading, &writing, &inheritable, 0));
        const OwnedHandle pipe(reading);
        module.Make<IUnknown>(iidUnknown);
        const std::vector<DWORD> updaters = RunningUpdaters();
        CloseHandle(writing);
        EXPECT_FALSE(PeekNamedPipe(reading, nullptr, 0, nullptr, nullptr, nullptr)) << "inherited";
        SetEvent(seen.get());
        for (const DWORD updater : updaters) {
            const OwnedHandle process(OpenProcess(SYNCHRONIZE, FALSE, updater));
            EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(process.get(), 30000));
        }
        ResetEvent(seen.get());
        return updaters.size();
    }

    std::string CommandLineSeen() {
        std::ifstream record(updater + ".txt");
        return std::string(std::istreambuf_iterator<char>(record), {});
    }

    static uint32_t HoursFromNow(int hours) { return static_cast<uint32_t>(std::time(nullptr) / 3600 + hours); }

    const UserRegistry registry;
    const TemporaryFolder folder{"update's check"};
    const std::string dll = folder.Copy("WMP_CVX.dll");
    const PluginModule module{dll};
    const std::string updater = folder.Copy("stand_in/twupdate.exe");
    const OwnedHandle seen{CreateEventA(nullptr, TRUE, FALSE, "ClarivexStandInUpdaterSeen")};
};

TEST_F(UpdateCheckOfTheDll, StartsTheUpdaterForEachObjectWithTheProductCodeAlone) {
    EXPECT_EQ(1U, Started());
    EXPECT_EQ("CVX1WMP", CommandLineSeen());
    registry.SetNumber(key, nextCheck, HoursFromNow(-2));
    registry.SetNumber(R"(Software\Tessel Works\Clarivex WMP)", "CVXMode", 1);
    const int32_t before = OpenHandles();  // the first object opened what stays open
    EXPECT_EQ(1U, Started());
    EXPECT_EQ(1U, Started());
    EXPECT_EQ(before, OpenHandles());
    UpdateCheck(module.Handle(), "");
    EXPECT_TRUE(RunningUpdaters().empty()) << "for no product";
    std::filesystem::remove(updater);
    EXPECT_EQ(0U, Started()) << "a missing updater is no failure";
}

TEST_F(UpdateCheckOfTheDll, WaitsForTheStoredTime) {
    registry.SetNumber(key, nextCheck, HoursFromNow(2));
    EXPECT_EQ(0U, Started());
    registry.SetNumber(key, nextCheck, HoursFromNow(-2));
    EXPECT_EQ(1U, Started());
    registry.Set(
        key, nextCheck, REG_SZ,
        std::vector<uint8_t>{'z', 'z', 'z', 0});  // as many bytes as a number has, and far in the future as one
    EXPECT_EQ(1U, Started());
}

TEST_F(UpdateCheckOfTheDll, RunningUpdaterKeepsAnotherFromStarting) {
    OwnedHandle mutex(CreateMutexA(nullptr, FALSE, "TW-6B2F90A1-3C7D-4E18-A5D0-91F4C28E7B36"));
    EXPECT_EQ(0U, Started());
    mutex.reset();
    EXPECT_EQ(1U, Started());
}

}  // namespace
}  // namespace clarivex
