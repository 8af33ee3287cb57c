// Settings, pages and the lock of a media object.
#include "shell/video_object.h"

#include "shell/start_up.h"

namespace clarivex {
namespace {

template <class Value>
HRESULT WriteIfAsked(Value* target, Value value) {
    if (target != nullptr) *target = value;
    return S_OK;
}

}  // namespace

CVXVideoObject::~CVXVideoObject() = default;

HRESULT CVXVideoObject::Complete() { return LoadStoredSettings(kind.settings, settings); }

HRESULT CVXVideoObject::Lock(LONG enter) {
    enter != 0 ? hostLock.Enter() : hostLock.Leave();
    return S_OK;
}

HRESULT CVXVideoObject::GetPages(CAUUID* pages) {
    if (pages == nullptr) return E_POINTER;
    pages->cElems = 0;
    pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    if (pages->pElems == nullptr) return E_OUTOFMEMORY;
    pages->cElems = 1;
    *pages->pElems = kind.page;
    return S_OK;
}

HRESULT CVXVideoObject::get_ScaleFactor(double* value) {
    return value != nullptr ? WriteIfAsked(value, settings.scaleFactor.load()) : E_POINTER;
}

HRESULT CVXVideoObject::put_ScaleFactor(double value) {
    settings.scaleFactor = value;
    return S_OK;
}

HRESULT CVXVideoObject::get_Sharpness(float* value) { return WriteIfAsked(value, settings.Sharpness()); }

HRESULT CVXVideoObject::put_Sharpness(float value) {
    settings.SetSharpness(value);
    return S_OK;
}

HRESULT CVXVideoObject::get_CVXMode(unsigned* value) { return WriteIfAsked(value, unsigned{settings.mode}); }

HRESULT CVXVideoObject::put_CVXMode(unsigned value) {
    settings.mode = value;
    return S_OK;
}

HRESULT CVXVideoObject::get_AllowHD(int* value) { return WriteIfAsked(value, int{settings.allowHd}); }

HRESULT CVXVideoObject::put_AllowHD(int value) {
    settings.allowHd = value != 0;
    return S_OK;
}

HRESULT CVXVideoObject::get_EnableLighting(int* value) { return WriteIfAsked(value, int{settings.enableLighting}); }

HRESULT CVXVideoObject::put_EnableLighting(int value) {
    settings.enableLighting = value != 0;
    return S_OK;
}

HRESULT CVXVideoObject::get_ScalingActive(int* value) {
    const CriticalSectionGuard guard(stateLock);
    return WriteIfAsked(value, int{stream.negotiated.plan.scalingOn});
}

}  // namespace clarivex
