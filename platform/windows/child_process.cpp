#include "platform/windows/child_process.h"

#include <fcntl.h>
#include <io.h>

#include <algorithm>
#include <system_error>

#include "platform/windows/wide_text.h"

namespace clarivex {

namespace {

constexpr DWORD pipeBytes = 1 << 20;
constexpr DWORD terminationPatience = 5000;  // milliseconds that the system may take to end a program
constexpr uint64_t mostErrorBytes = 1 << 24;

/// What the system calls failed with, as an error.
[[noreturn]] void ThrowSystemError(const char* what) {
    throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), what);
}

void MakeInheritable(HANDLE handle) {
    if (!SetHandleInformation(handle, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT))
        ThrowSystemError("a handle cannot be handed on");
}

/// Ends all programs in it when this process goes, in whatever way. Null where there are no such jobs.
HANDLE JobOfChildren() {
    static const HANDLE job = [] {
        const HANDLE made = CreateJobObjectW(nullptr, nullptr);
        JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
        limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
        if (made) SetInformationJobObject(made, JobObjectExtendedLimitInformation, &limits, sizeof limits);
        return made;
    }();
    return job;
}

/// The handles that a child inherits; all others stay here, those of other threads included.
class InheritanceList {
public:
    explicit InheritanceList(std::vector<HANDLE> inherited) : handles(std::move(inherited)) {
        SIZE_T bytes = 0;
        InitializeProcThreadAttributeList(nullptr, 1, 0, &bytes);
        memory.resize(bytes);
        if (!InitializeProcThreadAttributeList(List(), 1, 0, &bytes)) ThrowSystemError("no program can be started");
        if (!UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, handles.data(),
                                       handles.size() * sizeof(HANDLE), nullptr, nullptr))
            ThrowSystemError("no program can be started");
    }
    ~InheritanceList() { DeleteProcThreadAttributeList(List()); }
    InheritanceList(const InheritanceList&) = delete;
    InheritanceList& operator=(const InheritanceList&) = delete;

    LPPROC_THREAD_ATTRIBUTE_LIST List() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data()); }

private:
    std::vector<HANDLE> handles;
    std::vector<char> memory;
};

std::wstring CommandLineOf(const std::filesystem::path& program, const std::vector<std::string>& arguments) {
    std::wstring line = QuotedArgument(program.wstring());
    for (const std::string& argument : arguments) line += L' ' + QuotedArgument(WideText(argument));
    return line;
}

}  // namespace

std::wstring QuotedArgument(const std::wstring& argument) {
    if (!argument.empty() && argument.find_first_of(L" \t\n\v\"") == std::wstring::npos) return argument;
    std::wstring quoted = L"\"";
    size_t backslashes = 0;  // just passed; before a quotation mark each counts half
    for (const wchar_t letter : argument) {
        if (letter == L'"') quoted.append(backslashes + 1, L'\\');
        backslashes = letter == L'\\' ? backslashes + 1 : 0;
        quoted += letter;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::vector<std::string>& arguments, Pipe pipe)
    : errors(MakeErrorFile()) {
    const OwnedHandle null = OpenNullDevice();
    const OwnedHandle theirs = MakePipe(pipe);
    const bool feeds = pipe == Pipe::toItsInput;
    Start(program, CommandLineOf(program, arguments), feeds ? theirs.get() : null.get(),
          feeds ? null.get() : theirs.get());
}

ChildProcess::~ChildProcess() {
    if (Wait(0)) return;
    TerminateProcess(process.get(), 1);
    Wait(terminationPatience);
}

/// Goes with its last handle.
ChildProcess::OwnedHandle ChildProcess::MakeErrorFile() {
    wchar_t folder[MAX_PATH + 1] = {};
    wchar_t name[MAX_PATH + 1] = {};
    if (GetTempPathW(MAX_PATH, folder) == 0 || GetTempFileNameW(folder, L"cvx", 0, name) == 0)
        ThrowSystemError("the folder for temporary files takes none");
    const HANDLE file =
        CreateFileW(name, GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
    if (file == INVALID_HANDLE_VALUE) ThrowSystemError("the folder for temporary files takes none");
    OwnedHandle owned(file);
    MakeInheritable(file);
    return owned;
}

ChildProcess::OwnedHandle ChildProcess::OpenNullDevice() {
    const HANDLE device = CreateFileW(L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                      OPEN_EXISTING, 0, nullptr);
    if (device == INVALID_HANDLE_VALUE) ThrowSystemError("the null device cannot be opened");
    OwnedHandle owned(device);
    MakeInheritable(device);
    return owned;
}

/// Keeps this end as the stream and gives the child's.
ChildProcess::OwnedHandle ChildProcess::MakePipe(Pipe pipe) {
    HANDLE ends[2] = {};  // to read from, to write to
    if (!CreatePipe(&ends[0], &ends[1], nullptr, pipeBytes)) ThrowSystemError("a pipe cannot be made");
    const bool feeds = pipe == Pipe::toItsInput;
    OwnedHandle ours(ends[feeds ? 1 : 0]);
    OwnedHandle theirs(ends[feeds ? 0 : 1]);
    MakeInheritable(theirs.get());
    const int number = _open_osfhandle(reinterpret_cast<intptr_t>(ours.get()), _O_BINARY | _O_NOINHERIT);
    if (number < 0) throw std::system_error(errno, std::generic_category(), "a pipe cannot be made");
    (void)ours.release();  // the number's from here on
    stream.reset(_fdopen(number, feeds ? "wb" : "rb"));
    if (stream) return theirs;
    const int error = errno;
    _close(number);
    throw std::system_error(error, std::generic_category(), "a pipe cannot be made");
}

/// The child begins to run only when it is sure to end with this process.
void ChildProcess::Start(const std::filesystem::path& program, std::wstring commandLine, HANDLE input, HANDLE output) {
    InheritanceList inherited({input, output, errors.get()});
    STARTUPINFOEXW setup = {};
    setup.StartupInfo.cb = sizeof setup;
    setup.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
    setup.StartupInfo.hStdInput = input;
    setup.StartupInfo.hStdOutput = output;
    setup.StartupInfo.hStdError = errors.get();
    setup.lpAttributeList = inherited.List();
    PROCESS_INFORMATION started = {};
    constexpr DWORD manner = CREATE_NO_WINDOW | CREATE_SUSPENDED | EXTENDED_STARTUPINFO_PRESENT;
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, TRUE, manner, nullptr, nullptr,
                        &setup.StartupInfo, &started))
        ThrowSystemError("cannot be started");
    process.reset(started.hProcess);
    const OwnedHandle thread(started.hThread);
    if (HANDLE job = JobOfChildren()) AssignProcessToJobObject(job, process.get());
    ResumeThread(thread.get());
}

std::optional<uint32_t> ChildProcess::Wait(DWORD milliseconds) {
    DWORD code = 0;
    if (WaitForSingleObject(process.get(), milliseconds) != WAIT_OBJECT_0 || !GetExitCodeProcess(process.get(), &code))
        return std::nullopt;
    return code;
}

std::string ChildProcess::ErrorText() {
    LARGE_INTEGER size = {};
    if (!GetFileSizeEx(errors.get(), &size)) return {};
    const auto bytes = static_cast<uint64_t>(size.QuadPart);
    const uint64_t skipped = bytes - std::min(bytes, mostErrorBytes);
    std::string text(static_cast<size_t>(bytes - skipped), '\0');
    OVERLAPPED place = {};
    place.Offset = static_cast<DWORD>(skipped);
    place.OffsetHigh = static_cast<DWORD>(skipped >> 32);
    DWORD count = 0;
    if (!ReadFile(errors.get(), text.data(), static_cast<DWORD>(text.size()), &count, &place)) count = 0;
    text.resize(count);
    return text;
}

}  // namespace clarivex
