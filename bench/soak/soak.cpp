// Plays films for a long time, on several threads at once, with streams and objects that come and go, and fails when the
// process grows: in memory, open files or threads.
//
//     clarivex_soak FRAMES [THREADS]
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <stdexcept>
#include <thread>
#include <vector>

#include "shell/caption.h"
#include "shell/class_factory.h"
#include "tests/support/host_stream.h"

namespace clarivex {
namespace {

constexpr int framesARound = 2000;  // of each thread; every round plays the same
constexpr int warmUpRounds = 3;
constexpr int64_t spareBytes = int64_t{4} << 20;  // what the allocator may keep beyond the warm-up's most

struct Figures {
    int64_t bytes = 0;
    int64_t files = 0;
    int64_t threads = 0;
};

int64_t CountIn(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}

Figures ReadFigures() {
    int64_t pages = 0, residentPages = 0;
    std::ifstream("/proc/self/statm") >> pages >> residentPages;
    return {residentPages * 4096, CountIn("/proc/self/fd"), CountIn("/proc/self/task")};
}

/// One thread's films: another stream every few frames, another object now and then.
class Projector {
public:
    explicit Projector(uint32_t seed) : random(seed) {}

    void PlayRound() {
        for (int frame = 0; frame < framesARound; ++frame) {
            if (frame % 480 == 0) {
                object = std::make_unique<TestObject>(
                    TestObject::OfClass(frame % 960 == 0 ? clsidMediaObject : clsidVideoEffect));
            }
            if (frame % 40 == 0) StartStream();
            if (frame % 7 == 0) ChangeSettings();
            FakeBuffer from{std::span(in)}, to{std::span(out)};
            if (PlayFrame(*object, from, to) != S_OK) throw std::runtime_error("a frame failed");
        }
        object->media->Flush();
        object.reset();
    }

private:
    uint32_t Below(uint32_t bound) { return static_cast<uint32_t>(random() % bound); }

    void StartStream() {
        static constexpr GUID subtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2, mediaSubtypeNv12};
        static constexpr HostSize sizes[] = {{64, 48}, {352, 288}, {48, 32}, {320, 41}, {161, 121}};
        const bool isEffect = object->player == nullptr;  // which takes NV12, and no odd rows
        const GUID& subtype = subtypes[Below(isEffect ? 4 : 3)];
        const HostSize& size = sizes[Below(isEffect ? 4 : 5)];
        object->media->Flush();
        Negotiate(*object, subtype, size, Below(2) == 0 ? neverEnlarged : alwaysEnlarged);
        in.assign(static_cast<size_t>(size.width * size.height * 2 + 4 * size.height), 90);
        for (uint8_t& byte : in) byte = static_cast<uint8_t>(random());
        out.resize(static_cast<size_t>(size.EnlargedWidth() * (size.height * 3 / 2 + 2) * 2 + 65536));
    }

    void ChangeSettings() {
        object->settings->put_Sharpness(static_cast<float>(Below(5)) / 2);
        object->settings->put_EnableLighting(static_cast<int>(Below(2)));
        if (object->player != nullptr) object->player->SetEnable(Below(9) != 0);
        ShowCaption(Below(3) != 0);
    }

    std::mt19937 random;
    std::unique_ptr<TestObject> object;
    std::vector<uint8_t> in, out;
};

void PlayRound(int threadCount) {
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i)
        threads.emplace_back([i] { Projector(static_cast<uint32_t>(i + 1)).PlayRound(); });
    for (std::thread& thread : threads) thread.join();
}

bool HasGrown(const Figures& from, const Figures& to) {
    return to.bytes > from.bytes + spareBytes || to.files > from.files || to.threads > from.threads;
}

void Print(const char* when, const Figures& figures) {
    std::printf("%s: %.1f MiB resident, %d open files, %d threads\n", when,
                static_cast<double>(figures.bytes) / (1 << 20), static_cast<int>(figures.files),
                static_cast<int>(figures.threads));
}

int Run(int frames, int threadCount) {
    const int rounds = std::max(frames / (framesARound * threadCount), 1);
    Figures most;
    for (int round = 0; round < warmUpRounds; ++round) {
        PlayRound(threadCount);
        const Figures now = ReadFigures();
        most = {std::max(most.bytes, now.bytes), std::max(most.files, now.files), std::max(most.threads, now.threads)};
    }
    Print("after the warm-up", most);
    for (int round = 0; round < rounds; ++round) PlayRound(threadCount);
    const Figures end = ReadFigures();
    std::printf("%d frames on %d threads\n", rounds * framesARound * threadCount, threadCount);
    Print("at the end", end);
    if (HasGrown(most, end) || CanUnloadNow() != S_OK) {
        std::printf("the process has grown, or objects are left\n");
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace clarivex

int main(int argumentCount, char** arguments) {
    const int frames = argumentCount > 1 ? std::atoi(arguments[1]) : 0;
    const int threads = argumentCount > 2 ? std::atoi(arguments[2]) : 2;
    if (frames < 1 || threads < 1) {
        std::fprintf(stderr, "usage: clarivex_soak FRAMES [THREADS]\n");
        return 2;
    }
    return clarivex::Run(frames, threads);
}
