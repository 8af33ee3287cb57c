// Owners for what FFmpeg's libraries hand out, and their error codes as words.
#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavfilter/avfilter.h>
#include <libavformat/avformat.h>
}

#include <memory>
#include <string>

namespace clarivex {

struct AvDeleter {
    void operator()(AVCodecContext* codec) const { avcodec_free_context(&codec); }
    void operator()(AVFormatContext* input) const { avformat_close_input(&input); }
    void operator()(AVIOContext* io) const {
        av_freep(&io->buffer);
        avio_context_free(&io);
    }
    void operator()(AVFilterGraph* graph) const { avfilter_graph_free(&graph); }
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

template <class Object>
using AvPointer = std::unique_ptr<Object, AvDeleter>;

constexpr AVRational microseconds{1, AV_TIME_BASE};  ///< the clock of containers and of times that a person gives

AvPointer<AVFrame> MakeAvFrame();
AvPointer<AVPacket> MakeAvPacket();

/// What an error code says: "No space left on device".
std::string AvErrorText(int code);

/// Throws RunError for codes below 0: "`what`: …", followed by what the libraries logged about it, if they did.
int CheckAv(int code, const std::string& what);

/// What goes in front when an output fails in the middle.
constexpr const char* cannotWrite = "cannot be written any further; check the space, rights and limits there";

/// Options by name, as the libraries take them; they leave in it those that they do not know.
struct Dictionary {
    Dictionary() = default;
    ~Dictionary() { av_dict_free(&entries); }
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;

    void Set(const char* name, const std::string& value) { av_dict_set(&entries, name, value.c_str(), 0); }
    std::string FirstName() const {
        const AVDictionaryEntry* first = av_dict_get(entries, "", nullptr, AV_DICT_IGNORE_SUFFIX);
        return first ? first->key : "";
    }

    AVDictionary* entries = nullptr;
};

/// The path in the form that the libraries never take for the name of a protocol.
inline std::string FileUrl(const std::string& path) { return "file:" + path; }

}  // namespace clarivex
