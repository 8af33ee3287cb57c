// Settings of any bits: they are kept and told as they were put, and frames come out whatever they are.
#include <bit>
#include <cstddef>
#include <cstdint>

#include "fuzz/support/demand.h"
#include "fuzz/support/input_numbers.h"
#include "tests/support/host_stream.h"

namespace clarivex {
namespace {

void PutSharpness(ICVXSettings& settings, uint32_t bits) {
    float told = 0;
    settings.put_Sharpness(std::bit_cast<float>(bits));
    settings.get_Sharpness(&told);
    Demand(std::bit_cast<uint32_t>(told) == bits, "the sharpness is not what was put");
}

void PutScaleFactor(ICVXSettings& settings, uint64_t bits) {
    double told = 0;
    settings.put_ScaleFactor(std::bit_cast<double>(bits));
    settings.get_ScaleFactor(&told);
    Demand(std::bit_cast<uint64_t>(told) == bits, "the scale factor is not what was put");
}

void PutFlags(ICVXSettings& settings, int allowHd, int enableLighting) {
    int told[2] = {-1, -1};
    settings.put_AllowHD(allowHd);
    settings.put_EnableLighting(enableLighting);
    settings.get_AllowHD(&told[0]);
    settings.get_EnableLighting(&told[1]);
    Demand(told[0] == (allowHd != 0) && told[1] == (enableLighting != 0), "a flag is not what was put");
}

void PutMode(ICVXSettings& settings, unsigned mode) {
    unsigned told = 0;
    settings.put_CVXMode(mode);
    settings.get_CVXMode(&told);
    Demand(told == mode, "the mode is not what was put");
}

/// A stream of two frames, with settings that change in between.
void Play(TestObject& object, InputNumbers& numbers) {
    constexpr GUID subtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2};
    const GUID& subtype = subtypes[numbers.Below(3)];
    const HostSize size{static_cast<int32_t>(32 + numbers.Below(17)), static_cast<int32_t>(16 + numbers.Below(5))};
    const BITMAPINFOHEADER offered = Negotiate(object, subtype, size, numbers.Any<uint32_t>());
    FakeBuffer in(HostPicture(subtype, size.typeWidth, size.typeHeight).BytesOf(size.width, size.height), 90);
    FakeBuffer out(HostPicture(subtype, offered.biWidth, offered.biHeight).BytesOf(offered.biWidth, offered.biHeight));
    for (int32_t frame = 0; frame < 2; ++frame) {
        Demand(PlayFrame(object, in, out) == S_OK, "a frame was refused");
        PutSharpness(*object.settings, numbers.Any<uint32_t>());
        PutFlags(*object.settings, numbers.Any<int>(), numbers.Any<int>());
        object.player->SetEnable(numbers.Below(8) == 7 ? FALSE : TRUE);
    }
    Demand(in.references == 1 && out.references == 1, "a buffer was kept");
}

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    TestObject object;
    PutSharpness(*object.settings, numbers.Any<uint32_t>());
    PutScaleFactor(*object.settings, numbers.Any<uint64_t>());
    PutMode(*object.settings, numbers.Any<uint32_t>());
    PutFlags(*object.settings, numbers.Any<int>(), numbers.Any<int>());
    Play(object, numbers);
    return 0;
}
