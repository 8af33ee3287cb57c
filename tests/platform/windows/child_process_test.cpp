// Other programs, started with a pipe to or from them.
#include "platform/windows/child_process.h"

#include <shellapi.h>

#include <random>

#include "platform/file_stream.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

using Pipe = ChildProcess::Pipe;
constexpr DWORD patience = 20000;  // milliseconds; nothing here takes as long

ChildProcess Command(const std::string& words, Pipe pipe) {
    wchar_t folder[MAX_PATH] = {};
    GetSystemDirectoryW(folder, MAX_PATH);
    return {std::filesystem::path(folder) / "cmd.exe", {"/c", words}, pipe};
}

/// Arguments as the system's own rule takes them apart again.
std::vector<std::wstring> TakenApart(const std::wstring& line) {
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(line.c_str(), &count);
    const std::vector<std::wstring> taken(words, words + count);
    LocalFree(words);
    return taken;
}

TEST(QuotedArguments, ComeApartAsTheyWere) {
    std::mt19937 random(1);
    constexpr wchar_t letters[] = L"a\\\\\"\" \t%^中";
    for (int attempt = 0; attempt < 2000; ++attempt) {
        std::vector<std::wstring> arguments = {L"program"};
        std::wstring line = arguments[0];
        for (int i = 0; i < 3; ++i) {
            std::wstring argument;
            for (unsigned length = random() % 6; length > 0; --length) argument += letters[random() % 10];
            line += L' ' + QuotedArgument(argument);
            arguments.push_back(argument);
        }
        ASSERT_EQ(TakenApart(line), arguments) << "attempt " << attempt;
    }
}

TEST(ChildProcesses, TellWhatTheyWroteAndHowTheyEnded) {
    ChildProcess child = Command("echo out&echo words>&2&exit 7", Pipe::fromItsOutput);
    std::FILE* const output = child.TakeStream();
    uint8_t bytes[64] = {};
    std::string written;
    for (size_t count = 1; count > 0; written.append(bytes, bytes + count))
        count = ReadBytes(output, bytes).value_or(0);
    EXPECT_EQ(written, "out\r\n");
    std::fclose(output);
    EXPECT_EQ(child.Wait(patience), 7u);
    EXPECT_EQ(child.ErrorText(), "words\r\n");
}

TEST(ChildProcesses, HoldNoPipeOfAnother) {
    ChildProcess first = Command("set /p word=", Pipe::toItsInput);
    ChildProcess second = Command("set /p word=", Pipe::toItsInput);
    EXPECT_EQ(first.Wait(0), std::nullopt) << "it waits for its input";
    std::fclose(first.TakeStream());
    EXPECT_TRUE(first.Wait(patience)) << "nobody else may keep its input open";
    EXPECT_EQ(second.Wait(0), std::nullopt);  // ended by the destructor
}

TEST(ChildProcesses, ThatAreNotThereAreNamed) {
    EXPECT_THROW(ChildProcess("C:\\no_such_program.exe", {}, Pipe::toItsInput), std::system_error);
}

}  // namespace
}  // namespace clarivex
