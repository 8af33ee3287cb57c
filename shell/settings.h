// ICVXSettings: the user's settings of a running media object.
#pragma once

#include "platform/win32.h"

namespace clarivex {

// NOLINTBEGIN(readability-identifier-naming): properties are named the way COM names them.
/// Read and written from any thread; the next frame or negotiation sees the new value. Operations give S_OK. A null
/// pointer writes nothing and gives S_OK too, but for get_ScaleFactor, which gives E_POINTER: kept for the hosts that
/// know it so. Slots stand in this order.
struct ICVXSettings : public IUnknown {
    /// Kept for callers and used for nothing.
    virtual HRESULT STDMETHODCALLTYPE get_ScaleFactor(double* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ScaleFactor(double value) = 0;

    /// Edge crispness, 0 … 2.
    virtual HRESULT STDMETHODCALLTYPE get_Sharpness(float* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_Sharpness(float value) = 0;

    /// When streams are enlarged: 0 never, 2 always, anything else when the processor is fast enough.
    virtual HRESULT STDMETHODCALLTYPE get_CVXMode(unsigned* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_CVXMode(unsigned value) = 0;

    /// 0 leaves out streams of 1024 × 576 pixels and more: the player's object refuses them, the video effect passes their
    /// frames on as they are. Read as 0 or 1.
    virtual HRESULT STDMETHODCALLTYPE get_AllowHD(int* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_AllowHD(int value) = 0;

    /// Automatic lighting control; read as 0 or 1.
    virtual HRESULT STDMETHODCALLTYPE get_EnableLighting(int* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_EnableLighting(int value) = 0;

    /// 1 when the stream negotiated last is enlarged.
    virtual HRESULT STDMETHODCALLTYPE get_ScalingActive(int* value) = 0;
};
// NOLINTEND(readability-identifier-naming)

inline constexpr GUID iidCvxSettings{0x2C7E41D0, 0x96B3, 0x4A58, {0xB1, 0xF6, 0x83, 0xD0, 0x5A, 0x7E, 0x19, 0xC4}};

}  // namespace clarivex
