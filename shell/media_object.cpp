// The media object's making and end, and its smaller interfaces.
#include "shell/media_object.h"

#include "platform/resources.h"
#include "shell/class_ids.h"
#include "shell/process_objects.h"
#include "shell/size_limits.h"
#include "shell/start_up.h"

namespace clarivex {
namespace {

template <class Value>
HRESULT WriteIfAsked(Value* target, Value value) {
    if (target != nullptr) *target = value;
    return S_OK;
}

}  // namespace

std::span<const InterfaceEntry<CVXMediaObject>> CVXMediaObject::Interfaces() {
    static constexpr InterfaceEntry<CVXMediaObject> interfaces[] = {
        EntryFor<CVXMediaObject, ICVXSettings>(iidCvxSettings),
        EntryFor<CVXMediaObject, IMediaObject>(iidMediaObject),
        EntryFor<CVXMediaObject, IWMPPluginEnable>(iidWmpPluginEnable),
        EntryFor<CVXMediaObject, ISpecifyPropertyPages>(iidSpecifyPropertyPages),
        EntryFor<CVXMediaObject, IPropertyBag>(iidPropertyBag),
    };
    return interfaces;
}

CVXMediaObject::CVXMediaObject() : pipeline(MakeProcessPipeline()) {
    settings.liftSizeLimits = SizeLimitsLifted();
    CheckForUpdate();
}

CVXMediaObject::~CVXMediaObject() = default;

HRESULT CVXMediaObject::Complete() { return LoadStoredSettings(settings); }

HRESULT CVXMediaObject::Lock(LONG enter) {
    enter != 0 ? hostLock.Enter() : hostLock.Leave();
    return S_OK;
}

HRESULT CVXMediaObject::SetEnable(BOOL enable) {
    settings.enabled = enable;
    return S_OK;
}

HRESULT CVXMediaObject::GetEnable(BOOL* enable) {
    if (enable == nullptr) return E_POINTER;
    *enable = settings.enabled;
    return S_OK;
}

HRESULT CVXMediaObject::GetPages(CAUUID* pages) {
    if (pages == nullptr) return E_POINTER;
    pages->cElems = 0;
    pages->pElems = static_cast<GUID*>(CoTaskMemAlloc(sizeof(GUID)));
    if (pages->pElems == nullptr) return E_OUTOFMEMORY;
    pages->cElems = 1;
    *pages->pElems = clsidPropertyPage;
    return S_OK;
}

HRESULT CVXMediaObject::LoadIconStream(IStream** stream) {
    return clarivex::LoadIconStream(ThisModule().instance, stream);
}

HRESULT CVXMediaObject::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
    if (value == nullptr) return E_POINTER;
    if (name == nullptr || _wcsicmp(name, L"IconStreams") != 0) return S_OK;
    IStream* stream = nullptr;
    const HRESULT result = LoadIconStream(&stream);
    if (FAILED(result)) return result;
    value->vt = VT_UNKNOWN;
    value->punkVal = stream;
    return S_OK;
}

HRESULT CVXMediaObject::Write(LPCOLESTR, VARIANT*) { return S_OK; }

HRESULT CVXMediaObject::get_ScaleFactor(double* value) {
    return value != nullptr ? WriteIfAsked(value, settings.scaleFactor.load()) : E_POINTER;
}

HRESULT CVXMediaObject::put_ScaleFactor(double value) {
    settings.scaleFactor = value;
    return S_OK;
}

HRESULT CVXMediaObject::get_Sharpness(float* value) { return WriteIfAsked(value, settings.Sharpness()); }

HRESULT CVXMediaObject::put_Sharpness(float value) {
    settings.SetSharpness(value);
    return S_OK;
}

HRESULT CVXMediaObject::get_CVXMode(unsigned* value) { return WriteIfAsked(value, unsigned{settings.mode}); }

HRESULT CVXMediaObject::put_CVXMode(unsigned value) {
    settings.mode = value;
    return S_OK;
}

HRESULT CVXMediaObject::get_AllowHD(int* value) { return WriteIfAsked(value, int{settings.allowHd}); }

HRESULT CVXMediaObject::put_AllowHD(int value) {
    settings.allowHd = value != 0;
    return S_OK;
}

HRESULT CVXMediaObject::get_EnableLighting(int* value) { return WriteIfAsked(value, int{settings.enableLighting}); }

HRESULT CVXMediaObject::put_EnableLighting(int value) {
    settings.enableLighting = value != 0;
    return S_OK;
}

HRESULT CVXMediaObject::get_ScalingActive(int* value) {
    const CriticalSectionGuard guard(stateLock);
    return WriteIfAsked(value, int{negotiated.plan.scalingOn});
}

}  // namespace clarivex
