// An ffmpeg.exe for tests under Wine: hands its arguments to the system's own ffmpeg. Wine gives such a program no pipe of
// its own and tells nobody of its end, so all passes through files in the current folder.
#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "platform/windows/child_process.h"
#include "platform/windows/wide_text.h"

#include <shellapi.h>

namespace {

using clarivex::QuotedArgument;
using clarivex::WideText;

/// Runs what follows and notes its exit code at last; $0 is how the files are named.
constexpr const wchar_t* script =
    L"ffmpeg \"$@\" <\"$0.in\" >\"$0.out\" 2>\"$0.err\"; echo $? >\"$0.end\"; mv \"$0.end\" \"$0.code\"";

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void Store(std::FILE* from, const std::string& path) {
    std::ofstream file(path, std::ios::binary);
    char bytes[1 << 16];
    while (const size_t count = std::fread(bytes, 1, sizeof bytes, from))
        file.write(bytes, static_cast<std::streamsize>(count));
}

void Pass(const std::string& path, std::FILE* to) {
    const std::string content = ContentOf(path);
    std::fwrite(content.data(), 1, content.size(), to);
    std::fflush(to);
}

/// The other system's paths know one kind of stroke.
std::wstring WithItsStrokes(std::wstring argument) {
    if (argument.starts_with(L"file:")) std::ranges::replace(argument, L'\\', L'/');
    return argument;
}

bool StartSystemProgram(const std::string& name) {
    std::wstring line = L"sh -c " + QuotedArgument(script) + L" " + WideText(name);
    int count = 0;
    wchar_t** const arguments = CommandLineToArgvW(GetCommandLineW(), &count);
    for (int i = 1; i < count; ++i) line += L" " + QuotedArgument(WithItsStrokes(arguments[i]));
    LocalFree(arguments);
    STARTUPINFOW setup = {};
    setup.cb = sizeof setup;
    PROCESS_INFORMATION started = {};
    return CreateProcessW(L"Z:\\bin\\sh", line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &setup, &started);
}

}  // namespace

int main() {
    for (std::FILE* stream : {stdin, stdout, stderr}) _setmode(_fileno(stream), _O_BINARY);
    const std::string name = "bridge-" + std::to_string(GetCurrentProcessId());
    Store(stdin, name + ".in");
    if (!StartSystemProgram(name)) return 99;
    while (ContentOf(name + ".code").empty()) Sleep(20);
    Pass(name + ".out", stdout);
    Pass(name + ".err", stderr);
    const int code = std::atoi(ContentOf(name + ".code").c_str());
    for (const char* ending : {".in", ".out", ".err", ".code"}) std::remove((name + ending).c_str());
    return code;
}
