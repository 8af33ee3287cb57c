#include "host/windows/piped_film_reader.h"

#include <algorithm>

#include "host/errors.h"
#include "host/film_rules.h"
#include "host/windows/ffmpeg_arguments.h"
#include "host/words.h"
#include "platform/console.h"

namespace clarivex {

namespace {

constexpr DWORD endPatience = 30000;  // milliseconds between the end of the pictures and that of the program
constexpr size_t mostNotes = 10;      // of damage; what follows is only counted
constexpr const char* noPictureInPart = "holds no picture in the part that --start and --duration take";

bool IsPart(const PartOptions& part) { return part.start > 0 || part.duration != INT64_MAX; }

[[noreturn]] void RefuseWithoutPictures(const FilmFacts& facts, const FfmpegRun& run) {
    const bool hasCover =
        std::ranges::find(facts.streams, FilmStream::Kind::cover, &FilmStream::kind) != facts.streams.end();
    if (facts.streams.empty()) throw RunError("is no video that can be read; " + FailureText(run.code, run.errors));
    throw RunError(std::string("holds no video, only ") + (hasCover ? "a cover picture" : "other streams") +
                   "; name a file with moving pictures");
}

void TellConversion(const FilmFacts& facts, Deinterlacing deinterlacing, Report& report) {
    const FirstPicture& picture = *facts.picture;
    if (picture.isInterlaced && deinterlacing == Deinterlacing::automatic) report.Note(deinterlaceNote);
    const bool isUsual = picture.samples == "yuv420p" || picture.samples == "yuvj420p" || picture.samples == "nv12";
    if (!isUsual) report.Note(PrintablePath(picture.samples) + " samples are brought to 8-bit 4:2:0");
    if (picture.isFullRange && !IsRgb(picture)) report.Note("full range is brought to video range");
    if (facts.isTurned) report.Note("pictures are turned upright");
}

/// Y4M calls what is not known the site that is rare in films.
ChromaSite SiteOf(const Y4mHeader& header) {
    return header.chromaSite == ChromaSite::center ? ChromaSite::unknown : header.chromaSite;
}

std::optional<double> SecondsOf(const FilmFacts& facts, const PartOptions& part) {
    std::optional<double> seconds;
    if (facts.seconds) seconds = std::max(0.0, *facts.seconds - static_cast<double>(part.start) / 1e6);
    if (part.duration == INT64_MAX) return seconds;
    const double wanted = static_cast<double>(part.duration) / 1e6;
    return std::min(seconds.value_or(wanted), wanted);
}

/// The length that so many frames come to ends the part too.
int64_t DurationOf(const PartOptions& part, Ratio rate, double firstSeconds) {
    if (part.frames == UINT64_MAX || !rate.Known()) return part.duration;
    const double length = 1e6 * (firstSeconds + static_cast<double>(part.frames) * rate.denominator / rate.numerator);
    return length < static_cast<double>(part.duration) ? static_cast<int64_t>(length) : part.duration;
}

/// "dup_frames=3": how often a name was counted, at the end.
uint64_t LastCount(const std::string& progress, const std::string& name) {
    const size_t place = progress.rfind(name + "=");
    return place == std::string::npos ? 0 : std::strtoull(progress.c_str() + place + name.size() + 1, nullptr, 10);
}

}  // namespace

PipedFilmReader::PipedFilmReader(const FilmRequest& request, Report& report) : told(report) {
    if (request.stream)
        throw RunError("is no Y4M stream, and this program reads other films from files only; name the file");
    const FilmFacts facts = AskForFacts(request);
    TellConversion(facts, request.deinterlacing, told);
    child = StartFfmpeg(ReadArguments(facts, request), ChildProcess::Pipe::fromItsOutput);
    pipe = std::make_unique<FileSource>(OwnedFile(child->TakeStream()));
    Begin(facts, request);
}

FilmFacts PipedFilmReader::AskForFacts(const FilmRequest& request) {
    const FfmpegRun run = RunFfmpeg(FactsArguments(request.path, request.part.start));
    const FilmFacts facts = ReadFilmFacts(run.errors);
    if (!PicturesOf(facts)) RefuseWithoutPictures(facts, run);
    if (facts.seconds && request.part.start > 0 && static_cast<double>(request.part.start) / 1e6 >= *facts.seconds)
        throw RunError("ends at " + Fixed(*facts.seconds, 3) + " s, before the time to start at");
    if (!facts.picture) throw RunError(IsPart(request.part) ? noPictureInPart : "holds no picture that can be decoded");
    RefuseHighDynamicRange(facts.picture->colour.transfer, request.path, '"');
    CheckPictureSize(facts.picture->size);
    return facts;
}

void PipedFilmReader::Begin(const FilmFacts& facts, const FilmRequest& request) {
    const bool hasPicture = !pipe->Peek(1).empty() && stream.emplace(*pipe).ReadFrame(first);
    if (!hasPicture) {
        CheckEnd();
        throw RunError(IsPart(request.part) ? noPictureInPart : "holds no picture that can be decoded");
    }
    const Y4mHeader& header = stream->Header();
    info.size = header.size;
    info.frameRate = header.frameRate;
    info.sampleAspect = header.sampleAspect;
    if (header.frameRate.Known()) info.timeBase = {header.frameRate.denominator, header.frameRate.numerator};
    info.colour = WithAssumedColour(facts.picture->colour, facts.picture->codedLines);
    info.colour.chromaSite = SiteOf(header);
    info.seconds = SecondsOf(facts, request.part);
    if (request.part.frames != UINT64_MAX) info.frames = request.part.frames;
    const double firstSeconds = facts.picture->seconds;
    info.origin = std::make_shared<FilmOrigin>(FilmOrigin{request.path, facts.streams, PicturesOf(facts)->index,
                                                          firstSeconds, request.part.start,
                                                          DurationOf(request.part, header.frameRate, firstSeconds)});
}

bool PipedFilmReader::Read(VideoFrame& frame, const WritablePlanes& planes) {
    frame.hasPicture = !hasEnded && ReadPicture(planes);
    if (!frame.hasPicture) return false;
    frame.start = static_cast<int64_t>(framesGiven++);
    frame.length = 1;
    frame.parameters.clear();
    return true;
}

bool PipedFilmReader::ReadPicture(const WritablePlanes& planes) {
    if (!firstIsGiven) {
        const PicturePlanes held = PlanarPicture{info.size, first.samples}.Planes();
        for (size_t plane = 0; plane < planes.size(); ++plane) std::ranges::copy(held[plane], planes[plane].begin());
        firstIsGiven = true;
        return true;
    }
    try {
        if (stream->ReadFrame(first.parameters, planes)) return true;
    } catch (const RunError&) {  // a picture that is cut short: why, its maker knows best
        CheckEnd();
        throw;
    }
    CheckEnd();
    return false;
}

/// Behind the last picture: whether that was all. Throws RunError when ffmpeg.exe failed.
void PipedFilmReader::CheckEnd() {
    hasEnded = true;
    if (NotedSignal() != 0) return;
    const std::optional<uint32_t> code = child->Wait(endPatience);
    if (!code) throw RunError("ffmpeg.exe gave all pictures, but does not end");
    const std::string errors = child->ErrorText();
    if (*code != 0) throw RunError(FailureText(*code, errors));
    TellEnd(errors);
}

void PipedFilmReader::TellEnd(const std::string& errors) {
    const std::vector<std::string> damage = Complaints(errors);
    damagedPlaces = damage.size();
    for (size_t i = 0; i < std::min(damage.size(), mostNotes); ++i) told.Note(damage[i]);
    if (damage.size() > mostNotes) told.Note("further damage is only counted");
    const uint64_t repeated = LastCount(errors, "dup_frames");
    const uint64_t leftOut = LastCount(errors, "drop_frames");
    if (repeated + leftOut > 0)
        told.Note("the frame rate varies: " + CountText(repeated, "frame") + " repeated and " +
                  std::to_string(leftOut) + " left out, so that all last equally long and sound stays in step");
}

}  // namespace clarivex
