// A clumsy player: it calls the methods of a media object in any order, with arguments good and bad, as a source of
// numbers tells it to.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <string>
#include <utility>

#include "tests/support/fake_buffers.h"
#include "tests/support/test_object.h"
#include "tests/support/video_types.h"

namespace clarivex {

/// Gives numbers below `bound`, which is at least 1.
using NumberSource = std::function<uint32_t(uint32_t bound)>;

namespace walking {

template <class Values>
auto Pick(const NumberSource& numbers, const Values& values) {
    return values[numbers(static_cast<uint32_t>(std::size(values)))];
}

inline std::string Check(bool good, const char* complaint) { return good ? "" : complaint; }

/// What the object may answer at any time.
inline std::string CheckKnown(HRESULT result) {
    constexpr HRESULT known[] = {S_OK,
                                 S_FALSE,
                                 E_POINTER,
                                 E_INVALIDARG,
                                 E_NOTIMPL,
                                 E_UNEXPECTED,
                                 E_FAIL,
                                 DMO_E_INVALIDSTREAMINDEX,
                                 DMO_E_TYPE_NOT_SET,
                                 DMO_E_NOTACCEPTING,
                                 DMO_E_TYPE_NOT_ACCEPTED,
                                 DMO_E_NO_MORE_ITEMS};
    return Check(std::ranges::find(known, result) != std::end(known), "an unknown result");
}

}  // namespace walking

/// Plays with one object and the buffers it was given. Pictures stay small enough for thousands of steps.
class NegotiationWalk {
public:
    explicit NegotiationWalk(NumberSource source, const GUID& classId = clsidMediaObject)
        : numbers(std::move(source)),
          isEffect(IsEqualGUID(classId, clsidVideoEffect)),
          object(TestObject::OfClass(classId)) {}
    ~NegotiationWalk() { object.media->Flush(); }

    /// Makes one call. The text says what was wrong with what came back, and is empty when all is well.
    std::string Step() {
        // clang-format off
        static constexpr std::array steps = {
            &NegotiationWalk::SetType, &NegotiationWalk::StartStream, &NegotiationWalk::AskForOutput,
            &NegotiationWalk::ChangeSettings, &NegotiationWalk::FlushOrClear,
            &NegotiationWalk::GiveInput, &NegotiationWalk::GiveInput, &NegotiationWalk::GiveInput,
            &NegotiationWalk::TakeOutput, &NegotiationWalk::TakeOutput, &NegotiationWalk::TakeOutput};
        // clang-format on
        return (this->*walking::Pick(numbers, steps))();
    }

    /// Lets go of what is held; says what is left behind.
    std::string Finish() {
        object.media->Flush();
        return walking::Check(in == nullptr || in->references == 1, "flushed input is still kept");
    }

    /// Frames that changed their output buffer.
    int FramesMade() const { return framesMade; }

private:
    static constexpr size_t mostBytes = 60000;
    static constexpr int32_t smallest = std::numeric_limits<int32_t>::min();
    static constexpr int32_t largest = std::numeric_limits<int32_t>::max();
    static constexpr std::array oddSides = {0, 1, -1, -16, smallest, largest, 65535, 65537, 46341, 0x10000000};
    static constexpr std::array subtypes = {mediaSubtypeYv12, mediaSubtypeYuy2, mediaSubtypeIyuv, mediaSubtypeNv12};

    /// The player's object has no NV12.
    GUID AnySubtype() { return subtypes[numbers(isEffect ? 4 : 3)]; }

    bool OneIn(uint32_t count) { return numbers(count) == 0; }

    int32_t AnySide() {
        return OneIn(12) ? walking::Pick(numbers, oddSides) : static_cast<int32_t>(numbers(OneIn(2) ? 40 : 140));
    }

    int32_t AnyCoordinate(int32_t side) {
        if (OneIn(4)) return walking::Pick(numbers, oddSides);
        return OneIn(3) ? static_cast<int32_t>(numbers(150)) : side;
    }

    template <class Type>
    HRESULT SetAnyType(Type type) {
        BITMAPINFOHEADER& bitmap = type.Bitmap();
        bitmap.biBitCount = OneIn(6) ? static_cast<WORD>(numbers(0x10000)) : bitmap.biBitCount;
        bitmap.biSize = OneIn(20) ? numbers(200) : bitmap.biSize;
        bitmap.biXPelsPerMeter = OneIn(3) ? 1 : 0;
        type.header.dwBitRate = numbers(2);
        if (OneIn(2)) {
            const bool corner = OneIn(2);
            type.Target() = {corner ? AnyCoordinate(0) : 0, corner ? AnyCoordinate(0) : 0,
                             AnyCoordinate(bitmap.biWidth), AnyCoordinate(bitmap.biHeight)};
        }
        if constexpr (requires { type.header.dwPictAspectRatioX; })
            type.header.dwPictAspectRatioX = numbers(0xFFFFFFFFU), type.header.dwPictAspectRatioY = numbers(3),
            type.header.dwControlFlags = numbers(0xFFFFFFFFU);
        if (OneIn(4)) type.header.rcSource = {AnyCoordinate(0), AnyCoordinate(0), AnyCoordinate(40), AnyCoordinate(40)};
        type.hasFormat = !OneIn(20);
        type.formatBytes = OneIn(15) ? numbers(130) : type.formatBytes;
        type.majorType.Data1 ^= OneIn(30) ? 1 : 0;
        const DWORD flags = OneIn(6) ? numbers(5) : 0, index = OneIn(30) ? 1 : 0;
        const DMO_MEDIA_TYPE* given = OneIn(30) ? nullptr : type.Type();
        return OneIn(2) ? object.media->SetInputType(index, given, flags)
                        : object.media->SetOutputType(index, given, flags);
    }

    std::string SetType() {
        const GUID subtype = AnySubtype();
        const int32_t width = AnySide();
        const int32_t height = OneIn(4) ? static_cast<int32_t>(0U - static_cast<uint32_t>(AnySide())) : AnySide();
        const HRESULT result = OneIn(2) ? SetAnyType(VideoInfoType(width, height, subtype))
                                        : SetAnyType(VideoInfo2Type(width, height, subtype));
        return walking::CheckKnown(result);
    }

    // What a sensible player does, so that frames run through; the rectangle selects among the layouts of a buffer.
    std::string StartStream() {
        const auto width = static_cast<int32_t>(16 + numbers(120)) & (isEffect ? ~1 : ~0);
        const auto height = static_cast<int32_t>(16 + numbers(80));
        VideoInfo2Type type(width, OneIn(4) ? -height : height, AnySubtype());
        type.Bitmap().biXPelsPerMeter = static_cast<int32_t>(numbers(2));
        type.header.dwBitRate = numbers(2);
        if (OneIn(2))
            type.Target() = {0, 0, OneIn(2) ? width : std::max(width - static_cast<int32_t>(numbers(16)), 16), height};
        object.settings->put_CVXMode(OneIn(3) ? 0 : 2);
        const bool taken = object.media->SetInputType(0, type.Type(), 0) == S_OK;
        return taken ? AskForOutput() : "a good type was refused";
    }

    // Takes the offer as the output type most of the time, so that frames run through.
    std::string AskForOutput() {
        ReceivedType type;
        const HRESULT result = object.media->GetOutputType(0, numbers(4), type.Out());
        if (result != S_OK && type.Get().pbFormat != nullptr) return "a refused offer came with a type";
        if (result != S_OK || OneIn(8)) return walking::CheckKnown(result);
        const HRESULT taken = object.media->SetOutputType(0, &type.Get(), 0);
        // A target rectangle that began to the right of the corner may now reach beyond the picture.
        return walking::Check(taken == S_OK || taken == DMO_E_TYPE_NOT_ACCEPTED, "the offered type made trouble");
    }

    // Of any bits; a number is told as it was put.
    std::string ChangeSettings() {
        const auto any = [this] { return numbers(0xFFFFFFFFU); };
        const float sharpness = OneIn(2) ? std::bit_cast<float>(any()) : static_cast<float>(numbers(5)) / 2 - 0.5F;
        float told = 0;
        object.settings->put_CVXMode(OneIn(3) ? OneIn(2) ? any() : numbers(9) : 2);
        object.settings->put_Sharpness(sharpness);
        object.settings->put_EnableLighting(static_cast<int>(OneIn(2) ? any() : numbers(2)));
        object.settings->put_AllowHD(static_cast<int>(numbers(2)));
        if (object.player != nullptr) object.player->SetEnable(OneIn(4) ? FALSE : TRUE);
        object.settings->get_Sharpness(&told);
        return walking::Check(std::bit_cast<uint32_t>(told) == std::bit_cast<uint32_t>(sharpness),
                              "a setting is not what was put");
    }

    // A buffer around the size that the types ask for, below and above.
    std::unique_ptr<FakeBuffer> AnyBuffer() {
        DWORD wanted = 0;
        DWORD alignment = 0;
        object.media->GetOutputSizeInfo(0, &wanted, &alignment);
        size_t capacity = std::min<size_t>(wanted, mostBytes);
        switch (numbers(6)) {
            case 0: capacity = numbers(static_cast<uint32_t>(mostBytes)); break;
            case 1: capacity -= std::min<size_t>(capacity, numbers(300)); break;
            default: break;
        }
        auto buffer = std::make_unique<FakeBuffer>(capacity, static_cast<uint8_t>(numbers(256)));
        buffer->capacityResult = OneIn(8) && capacity >= wanted ? E_NOTIMPL : S_OK;
        buffer->contentResult = OneIn(20) ? E_FAIL : S_OK;
        buffer->givesNull = OneIn(30);
        return buffer;
    }

    std::string GiveInput() {
        DWORD accepts = 0;
        object.media->GetInputStatus(0, &accepts);
        auto fresh = AnyBuffer();
        const HRESULT result = object.media->ProcessInput(0, fresh.get(), numbers(8), numbers(99), numbers(99));
        if (result == S_OK) {
            in = std::move(fresh);
            return walking::Check(accepts == 1 && in->references == 2, "input was taken without being kept");
        }
        return fresh->references == 1 ? walking::CheckKnown(result) : "refused input was kept";
    }

    std::string TakeOutput() {
        const auto out = AnyBuffer();
        const uint8_t fill = out->Bytes().empty() ? 0 : out->Bytes()[0];
        DMO_OUTPUT_DATA_BUFFER output = {OneIn(15) ? nullptr : out.get(), 0, 0, 0};
        DWORD status = 0;
        const HRESULT result = object.media->ProcessOutput(0, OneIn(20) ? 2 : 1, &output, OneIn(3) ? nullptr : &status);
        DWORD accepts = 0;
        object.media->GetInputStatus(0, &accepts);
        framesMade += result == S_OK && !out->HoldsOnly(fill) ? 1 : 0;
        if (result == S_OK && accepts != 1) return "a finished frame left its input behind";
        return out->references == 1 ? walking::CheckKnown(result) : "the output buffer was kept";
    }

    std::string FlushOrClear() {
        if (OneIn(3)) return walking::CheckKnown(object.media->SetInputType(0, nullptr, DMO_SET_TYPEF_CLEAR));
        if (OneIn(2)) return walking::CheckKnown(object.media->SetOutputType(0, nullptr, DMO_SET_TYPEF_CLEAR));
        return Finish();
    }

    NumberSource numbers;
    const bool isEffect;
    TestObject object;
    std::unique_ptr<FakeBuffer> in;  // what the object may hold
    int framesMade = 0;
};

}  // namespace clarivex
