// Settings of any bits: they are kept and told as they were put, and frames come out whatever they are.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz/support/demand.h"
#include "fuzz/support/input_numbers.h"
#include "tests/support/host_stream.h"

namespace clarivex {
namespace {

/// Puts a setting and reads it back.
template <class Value>
void Put(ICVXSettings& settings, HRESULT (STDMETHODCALLTYPE ICVXSettings::*put)(Value),
         HRESULT (STDMETHODCALLTYPE ICVXSettings::*get)(Value*), Value value, bool isFlag = false) {
    const Value expected = isFlag ? static_cast<Value>(value != Value{}) : value;
    Value told{};
    (settings.*put)(value);
    (settings.*get)(&told);
    Demand(std::memcmp(&told, &expected, sizeof told) == 0, "a setting is not what was put");
}

/// The settings that may change in a stream.
void PutAny(ICVXSettings& settings, InputNumbers& numbers) {
    Put(settings, &ICVXSettings::put_Sharpness, &ICVXSettings::get_Sharpness, numbers.Any<float>());
    Put(settings, &ICVXSettings::put_AllowHD, &ICVXSettings::get_AllowHD, numbers.Any<int>(), true);
    Put(settings, &ICVXSettings::put_EnableLighting, &ICVXSettings::get_EnableLighting, numbers.Any<int>(), true);
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
        PutAny(*object.settings, numbers);
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
    Put(*object.settings, &ICVXSettings::put_ScaleFactor, &ICVXSettings::get_ScaleFactor, numbers.Any<double>());
    Put(*object.settings, &ICVXSettings::put_CVXMode, &ICVXSettings::get_CVXMode, numbers.Any<unsigned>());
    PutAny(*object.settings, numbers);
    Play(object, numbers);
    return 0;
}
