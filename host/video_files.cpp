#include "host/video_files.h"

#include <algorithm>
#include <filesystem>
#include <utility>

#include "host/film.h"
#include "host/naming.h"
#include "host/y4m_video.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

constexpr std::string_view y4mExtension = ".y4m";

std::string LowerExtension(const std::string& path) {
    std::string extension = TextOf(PathOf(path).extension());
    for (char& letter : extension)
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    return extension;
}

/// A film and the stream that it is read from.
class StreamedFilm final : public VideoReader {
public:
    StreamedFilm(std::unique_ptr<FileSource> stream, FilmRequest request, Report& report) : source(std::move(stream)) {
        request.stream = source.get();
        film = OpenFilm(request, report);
    }

    const VideoInfo& Info() const override { return film->Info(); }
    bool Read(VideoFrame& frame, const WritablePlanes& planes) override { return film->Read(frame, planes); }
    uint64_t DamagedPlaces() const override { return film->DamagedPlaces(); }

private:
    std::unique_ptr<FileSource> source;
    std::unique_ptr<VideoReader> film;
};

/// What breaks off before it can be told is best explained as a broken Y4M stream.
bool MayBeY4m(FileSource& source) {
    const std::span<const uint8_t> start = source.Peek(y4mMagic.size());
    return std::equal(start.begin(), start.end(), y4mMagic.begin());
}

std::unique_ptr<VideoReader> Open(const FilmRequest& request, Report& report) {
    auto source = std::make_unique<FileSource>(request.path);
    if (MayBeY4m(*source)) return std::make_unique<Y4mVideoReader>(std::move(source), request.part, report);
    if (!source->Size()) return std::make_unique<StreamedFilm>(std::move(source), request, report);
    source.reset();
    return OpenFilm(request, report);
}

}  // namespace

std::unique_ptr<VideoReader> OpenVideo(const std::string& path, const PartOptions& part, Deinterlacing deinterlacing,
                                       bool withCompanions, Report& report) {
    return Naming(InputName(path), [&] { return Open({path, nullptr, part, deinterlacing, withCompanions}, report); });
}

bool IsY4mOutput(const std::string& path) {
    std::error_code ignored;
    const files::file_status status = files::status(PathOf(path), ignored);
    const bool special = files::exists(status) && !files::is_regular_file(status) && !files::is_directory(status);
    return path == "-" || special || LowerExtension(path) == y4mExtension;
}

std::unique_ptr<VideoWriter> MakeVideo(const std::string& path, const std::string& input, const VideoInfo& video,
                                       bool fullHeightChroma, const EnhanceOptions& options, Report& report) {
    return Naming(OutputName(path), [&]() -> std::unique_ptr<VideoWriter> {
        if (SameFile(input, path)) throw RunError("is the input file too; name another output");
        if (IsY4mOutput(path)) return std::make_unique<Y4mVideoWriter>(path, video, fullHeightChroma, report);
        if (!video.frameRate.Known()) report.Note("no frame rate is stated: the film plays at 25 frames a second");
        return MakeFilm({path, video, fullHeightChroma, options.film, options.overwrite}, report);
    });
}

}  // namespace clarivex
