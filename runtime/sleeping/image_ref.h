// Counted holders of a picture and of a correction, for what more than one record of a frame refers to.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <utility>

#include "runtime/planes.h"

namespace clarivex {

/// A picture and the number of its holders. Made all empty with a count of 1.
struct ImageBody {
    ImagePlanes planes;
    std::atomic<int32_t> refCount = 1;

    void AddRef() { refCount.fetch_add(1); }

    /// Gives up one holder's share; the last one frees the samples (`planes.owner`) and the body.
    void Release();
};

/// The values of a correction that leaves every sample as it is.
constexpr std::array<float, 8> neutralCorrection = {0, 1, 0, 0, 1, 0, 1, 0};

/// A correction that may be kept for later frames, and the number of its holders.
struct CorrectionBody {
    std::array<float, 8> values = neutralCorrection;
    bool valid = false;
    std::atomic<int32_t> refCount = 1;

    void AddRef() { refCount.fetch_add(1); }
    void Release();
};

class RefHolder {
public:
    virtual ~RefHolder() = default;
};

/// Holds one body, or none. A holder belongs to one thread at a time; bodies may be shared between threads.
template <class Body>
class BodyRef : public RefHolder {
public:
    BodyRef() = default;
    BodyRef(const BodyRef& other) : body(other.body) { Share(); }
    BodyRef& operator=(const BodyRef& other) {
        BodyRef copy(other);
        std::swap(body, copy.body);
        return *this;
    }
    ~BodyRef() override { Clear(); }

    /// Makes the body this holder's own. A missing or shared body is replaced by an empty one: the content is
    /// discarded, not copied, and other holders keep theirs.
    void Detach();

    Body* Get() const { return body; }
    Body* operator->() const { return body; }

private:
    void Share() {
        if (body != nullptr) body->AddRef();
    }
    void Clear() {
        if (body != nullptr) {
            body->Release();
            body = nullptr;
        }
    }

    Body* body = nullptr;
};

extern template class BodyRef<ImageBody>;
extern template class BodyRef<CorrectionBody>;

using ImageRef = BodyRef<ImageBody>;
using CorrectionRef = BodyRef<CorrectionBody>;

}  // namespace clarivex
