#include "host/windows/ffmpeg_program.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <system_error>

#include "host/byte_stream.h"
#include "host/errors.h"
#include "platform/console.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

constexpr const wchar_t* programName = L"ffmpeg.exe";
constexpr DWORD longestPath = 32768;  // letters, the end included
constexpr size_t mostLastWords = 3;   // lines
constexpr size_t mostOutput = 1 << 20;

files::path OwnFolder() {
    std::wstring path(longestPath, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
    return files::path(path).parent_path();
}

/// Not in the current folder, where anybody may have put one, unless PATH says so.
std::optional<files::path> FindInPath() {
    std::wstring folders(longestPath, L'\0');
    folders.resize(GetEnvironmentVariableW(L"PATH", folders.data(), longestPath));
    std::wstring found(longestPath, L'\0');
    found.resize(SearchPathW(folders.c_str(), programName, nullptr, longestPath, found.data(), nullptr));
    if (folders.empty() || found.empty()) return std::nullopt;
    return files::path(found);
}

files::path FindFfmpeg() {
    std::error_code ignored;
    const files::path beside = OwnFolder() / programName;
    if (files::is_regular_file(beside, ignored)) return beside;
    if (const auto inPath = FindInPath()) return *inPath;
    throw RunError(
        "needs an ffmpeg.exe, which is neither in PATH nor beside clarivex.exe; without one only Y4M is read and "
        "written");
}

bool IsProgress(std::string_view line) {
    const size_t equals = line.find('=');
    return equals != std::string_view::npos && std::ranges::all_of(line.substr(0, equals), [](char letter) {
               return letter == '_' || (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9');
           });
}

/// "[h264 @ 000001] what is wrong" without the part that says so.
std::string_view WithoutSpeaker(std::string_view line) {
    while (line.starts_with('[')) {
        const size_t end = line.find("] ");
        if (end == std::string_view::npos) break;
        line.remove_prefix(end + 2);
    }
    return line;
}

}  // namespace

std::unique_ptr<ChildProcess> StartFfmpeg(const FfmpegArguments& arguments, ChildProcess::Pipe pipe) {
    const files::path program = FindFfmpeg();
    try {
        return std::make_unique<ChildProcess>(program, arguments, pipe);
    } catch (const std::system_error& error) {
        throw RunError(std::string("ffmpeg.exe cannot be run: ") + error.what());
    }
}

FfmpegRun RunFfmpeg(const FfmpegArguments& arguments) {
    const auto child = StartFfmpeg(arguments, ChildProcess::Pipe::fromItsOutput);
    FfmpegRun run;
    std::vector<uint8_t> bytes(mostOutput);
    {
        FileSource source{OwnedFile(child->TakeStream())};
        bytes.resize(source.Read(bytes));
    }
    if (NotedSignal() != 0) throw RunError("interrupted");
    run.code = child->Wait(INFINITE).value_or(1);
    run.output.assign(bytes.begin(), bytes.end());
    run.errors = child->ErrorText();
    return run;
}

std::vector<std::string> Complaints(std::string_view errors) {
    std::vector<std::string> lines;
    while (!errors.empty()) {
        const size_t end = std::min(errors.find_first_of("\r\n"), errors.size());
        std::string_view line = WithoutSpeaker(errors.substr(0, end));
        line = line.substr(0, line.find_last_not_of(" -") + 1);
        if (!line.empty() && !IsProgress(line) && line != "Conversion failed!") lines.push_back(PrintablePath(line));
        errors.remove_prefix(std::min(end + 1, errors.size()));
    }
    return lines;
}

std::string FailureText(uint32_t code, std::string_view errors) {
    const std::vector<std::string> lines = Complaints(errors);
    if (lines.empty()) return "ffmpeg.exe failed with exit code " + std::to_string(code) + " and said nothing";
    std::string text = "ffmpeg.exe failed: ";
    const size_t first = lines.size() - std::min(lines.size(), mostLastWords);
    for (size_t line = first; line < lines.size(); ++line) text += (line == first ? "" : "; ") + lines[line];
    return text;
}

}  // namespace clarivex
