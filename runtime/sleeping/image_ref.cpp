#include "runtime/sleeping/image_ref.h"

#include "runtime/memory.h"

namespace clarivex {
namespace {

/// True when the share given up was the last one.
bool DropShare(std::atomic<int32_t>& refCount) { return refCount.fetch_sub(1) < 2; }

}  // namespace

void ImageBody::Release() {
    if (DropShare(refCount)) {
        const SampleBlock samples(static_cast<uint8_t*>(planes.owner));
        delete this;
    }
}

void CorrectionBody::Release() {
    if (DropShare(refCount)) delete this;
}

template <class Body>
void BodyRef<Body>::Detach() {
    if (body != nullptr && body->refCount.load() < 2) return;
    Body* fresh = WaitForMemory([] { return new Body(); });
    Clear();
    body = fresh;
}

template class BodyRef<ImageBody>;
template class BodyRef<CorrectionBody>;

}  // namespace clarivex
