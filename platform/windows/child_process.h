// Other programs, started with a pipe to or from them. Include in Windows sources only.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/win32.h"

namespace clarivex {

/// One argument as it must stand in a command line for the child to find it whole: in quotes where it needs them.
std::wstring QuotedArgument(const std::wstring& argument);

/// A program that runs without a window of its own and ends with this process at the latest. It gets no handle but its three
/// standard streams: one is a pipe, standard error a file that is read when it has ended, the third one the null device.
class ChildProcess {
public:
    enum class Pipe { toItsInput, fromItsOutput };

    /// Starts a program. `arguments`, in the process's code page, are those behind its name. Throws std::system_error.
    ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments, Pipe pipe);

    /// Ends a program that still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// This end of the pipe, once: from then on the caller's to close, before the child goes.
    std::FILE* TakeStream() { return stream.release(); }

    /// Waits for the program's end, INFINITE for as long as it takes. Its exit code, or nothing where it still runs.
    std::optional<uint32_t> Wait(DWORD milliseconds);

    /// What it wrote to standard error, at most the last 16 MiB. Call when it has ended.
    std::string ErrorText();

private:
    struct HandleCloser {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };
    using OwnedHandle = std::unique_ptr<void, HandleCloser>;
    struct StreamCloser {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };

    static OwnedHandle MakeErrorFile();
    static OwnedHandle OpenNullDevice();
    OwnedHandle MakePipe(Pipe pipe);
    void Start(const std::filesystem::path& program, std::wstring commandLine, HANDLE input, HANDLE output);

    OwnedHandle errors;
    OwnedHandle process;
    std::unique_ptr<std::FILE, StreamCloser> stream;
};

}  // namespace clarivex
