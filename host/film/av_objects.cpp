#include "host/film/av_objects.h"

#include <new>

#include "host/errors.h"
#include "host/film/library_log.h"

namespace clarivex {

namespace {

template <class Object>
AvPointer<Object> Owned(Object* object) {
    if (!object) throw std::bad_alloc();
    return AvPointer<Object>(object);
}

}  // namespace

AvPointer<AVFrame> MakeAvFrame() { return Owned(av_frame_alloc()); }

AvPointer<AVPacket> MakeAvPacket() { return Owned(av_packet_alloc()); }

std::string AvErrorText(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

int CheckAv(int code, const std::string& what) {
    if (code >= 0) return code;
    if (code == AVERROR(ENOMEM)) throw std::bad_alloc();
    const std::string logged = TakeLastLibraryError();
    throw RunError(what + ": " + AvErrorText(code) + (logged.empty() ? "" : " (" + logged + ")"));
}

}  // namespace clarivex
