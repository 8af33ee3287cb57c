// clarivex, the command line: runs one command and turns errors into a line and an exit code.
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <new>
#include <span>
#include <string>

#include "host/byte_stream.h"
#include "host/caption.h"
#include "host/command_line.h"
#include "host/compare.h"
#include "host/enhance.h"
#include "host/errors.h"
#include "host/help_text.h"
#include "host/info.h"
#include "host/play.h"
#include "host/tune.h"
#include "platform/console.h"
#include "runtime/version.h"
#include "shell/memory_wait.h"

namespace {

using namespace clarivex;

enum ExitCode { done = 0, runFailed = 1, wrongUse = 2 };

/// Some systems tell only here that they could not keep what was written.
void CloseOutput() {
    if (std::fclose(stdout) != 0) throw RunError(std::string("standard output: ") + std::strerror(errno));
}

void Run(const CommandLine& commandLine) {
    switch (commandLine.command) {
        case Command::enhance: RunEnhance(commandLine.enhance); break;
        case Command::play: RunPlay(commandLine.play);
        case Command::compare: RunCompare(commandLine.compare); break;
        case Command::caption: RunCaption(commandLine.caption); break;
        case Command::tune: RunTune(commandLine.tune); break;
        case Command::info: PrintResult(InfoText()); break;
        case Command::help: PrintResult(HelpText(commandLine.help)); break;
        case Command::version: PrintResult(std::string("clarivex ") + versionText + "\n"); break;
    }
}

constexpr uint32_t memoryPatienceSeconds = 10;

/// Memory that did not come is the cause of whatever failed after it.
std::string WithItsCause(const std::string& failure) {
    const auto bytes = MemoryGivenUp();
    if (!bytes) return failure;
    const std::string size = *bytes != 0 ? std::to_string(*bytes) + " bytes in one block were" : "memory was";
    return failure + ": not enough memory: " + size + " not to be had for " + std::to_string(memoryPatienceSeconds) +
           " seconds; smaller pictures need less";
}

int Fail(int code, const char* what, const char* remedy = "") {
    std::fprintf(stderr, "clarivex: %s%s\n", what, remedy);
    return code;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    FillStandardStreams();
    ReportFailedWrites();
    NoteSignals();
    GiveUpOnMemoryAfter(1000 * memoryPatienceSeconds);
    try {
        Run(ParseCommandLine(
            std::span<const char* const>(arguments, arguments + argumentCount).subspan(argumentCount > 0)));
        CloseOutput();
        return done;
    } catch (const UsageError& error) {
        return Fail(wrongUse, error.what(), "; clarivex --help shows the use");
    } catch (const Interruption& interruption) {
        return Fail(128 + interruption.Signal(), interruption.what());
    } catch (const std::bad_alloc&) {
        return Fail(runFailed, "not enough memory for pictures of this size");
    } catch (const std::exception& error) {
        return Fail(runFailed, WithItsCause(error.what()).c_str());
    } catch (const char*) {  // what giving up on memory throws
        return Fail(runFailed, WithItsCause("the picture could not be made").c_str());
    }
}
