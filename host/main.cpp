// clarivex, the command line: runs one command and turns errors into a line and an exit code.
#include <cstdio>
#include <exception>
#include <new>
#include <span>
#include <string>

#include "host/caption.h"
#include "host/command_line.h"
#include "host/enhance.h"
#include "host/errors.h"
#include "host/info.h"
#include "host/tune.h"
#include "platform/console.h"
#include "runtime/version.h"

namespace {

using namespace clarivex;

enum ExitCode { done = 0, runFailed = 1, wrongUse = 2 };

void Print(const std::string& text) {
    if (std::fputs(text.c_str(), stdout) < 0 || std::fflush(stdout) != 0)
        throw RunError("standard output: cannot be written");
}

void Run(const CommandLine& commandLine) {
    switch (commandLine.command) {
        case Command::enhance: RunEnhance(commandLine.enhance); break;
        case Command::caption: RunCaption(commandLine.caption); break;
        case Command::tune: RunTune(commandLine.tune); break;
        case Command::info: Print(InfoText()); break;
        case Command::help: Print(helpText); break;
        case Command::version: Print(std::string("clarivex ") + versionText + "\n"); break;
    }
}

int Fail(ExitCode code, const char* what, const char* remedy = "") {
    std::fprintf(stderr, "clarivex: %s%s\n", what, remedy);
    return code;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    FillStandardStreams();
    ReportFailedWrites();
    try {
        Run(ParseCommandLine(
            std::span<const char* const>(arguments, arguments + argumentCount).subspan(argumentCount > 0)));
        return done;
    } catch (const UsageError& error) {
        return Fail(wrongUse, error.what(), "; clarivex --help shows the use");
    } catch (const std::bad_alloc&) {
        return Fail(runFailed, "not enough memory for pictures of this size");
    } catch (const std::exception& error) {
        return Fail(runFailed, error.what());
    }
}
