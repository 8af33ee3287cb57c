#include "host/windows/piped_film_writer.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

#include "host/errors.h"
#include "host/windows/ffmpeg_program.h"
#include "host/words.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

constexpr Ratio assumedRate{25, 1};

/// Whether a run that gives the code of success could not keep what it wrote: older ones only say so.
bool LostItsEnd(const std::string& errors) {
    return errors.find("Error writing trailer") != std::string::npos ||
           errors.find("Error closing file") != std::string::npos;
}

bool MayBeCopied(const FilmStream& stream) {
    return stream.kind != FilmStream::Kind::pictures && stream.kind != FilmStream::Kind::other;
}

/// How an encoder is told of quality, in the words of its help.
std::string QualityOptionIn(const std::string& help) {
    for (const char* scale : {"crf", "qp"})
        if (help.find(std::string("\n  -") + scale + " ") != std::string::npos) return scale;
    return "q";
}

}  // namespace

PipedFilmWriter::PartFile::~PartFile() {
    std::error_code ignored;
    if (isThere) files::remove(PathOf(path), ignored);
}

PipedFilmWriter::PipedFilmWriter(const FilmTarget& target, Report& report)
    : path(target.path), part{target.path + ".part"}, size(target.info.size) {
    encoding.muxer = MuxerOf(path);
    ClaimPath(target.overwrite);
    ChooseEncoder(target.options);
    if (target.info.origin) ChooseCopies(*target.info.origin, report);
    Start(target);
    if (const PictureSize given = target.info.size; encoding.encoder != "ffv1") {
        size = {given.width & ~1, target.fullHeightChroma ? given.height : given.height & ~1};
        if (size != given)
            report.Note("of pictures of " + SizeText(given) + " " + SizeText(size) +
                        " are written, which the encoder takes; --lossless keeps the rest too");
    }
}

/// Makes the unfinished file: of two runs at once only one can.
void PipedFilmWriter::ClaimPath(bool overwrite) {
    std::error_code error;
    if (files::is_directory(PathOf(path), error)) throw RunError("is a folder; name a file");
    if (!overwrite && files::exists(PathOf(path), error)) throw RunError("is there already; --overwrite replaces it");
    if (overwrite) files::remove(PathOf(part.path), error);
    const int made = _open(part.path.c_str(), _O_CREAT | _O_EXCL | _O_WRONLY, _S_IREAD | _S_IWRITE);
    if (made < 0 && errno == EEXIST)
        throw RunError(PrintablePath(part.path) +
                       ", left by an earlier run or in the work of another, is in its way; --overwrite replaces it");
    if (made < 0)
        throw RunError(std::string("cannot be opened for writing: ") + std::strerror(errno) +
                       "; check the path and its rights");
    _close(made);
    part.isThere = true;
}

/// An encoder that the person did not name need not be there: then ffmpeg.exe chooses.
void PipedFilmWriter::ChooseEncoder(const FilmOptions& options) {
    encoding.encoder = options.encoder.empty() ? UsualEncoderOf(options, encoding.muxer) : options.encoder;
    encoding.quality = "q";
    if (encoding.encoder.empty()) return;
    const std::string help = RunFfmpeg({"-hide_banner", "-h", "encoder=" + encoding.encoder}).output;
    encoding.quality = QualityOptionIn(help);
    if (help.find("Encoder " + encoding.encoder) != std::string::npos) return;
    if (!options.encoder.empty())
        throw RunError("ffmpeg.exe has no video encoder " + Printable(encoding.encoder) +
                       "; ffmpeg -encoders lists those that are there");
    encoding.encoder.clear();
}

/// All that the container takes; notes name the rest.
void PipedFilmWriter::ChooseCopies(const FilmOrigin& origin, Report& report) {
    const auto leaveOut = [&](const FilmStream& stream, const std::string& reason) {
        report.Note(NameOf(stream) + " is left out: " + reason);
    };
    for (const FilmStream& stream : origin.streams)
        if (MayBeCopied(stream))
            copied.push_back(stream);
        else if (stream.index != origin.pictures && stream.codec != "bin_data")  // how a container's chapters show
            leaveOut(stream, "only sound, subtitles, covers and attachments are copied");
    if (copied.empty() || Takes(origin, copied)) return;
    for (const FilmStream& stream : std::exchange(copied, {}))
        if (Takes(origin, {stream}))
            copied.push_back(stream);
        else
            leaveOut(stream, encoding.muxer + " files do not take it");
}

bool PipedFilmWriter::Takes(const FilmOrigin& origin, const std::vector<FilmStream>& streams) const {
    return RunFfmpeg(TrialArguments(origin, streams, encoding, part.path)).code == 0;
}

void PipedFilmWriter::Start(const FilmTarget& target) {
    const VideoInfo& info = target.info;
    child = StartFfmpeg(WriteArguments(target, copied, encoding, part.path), ChildProcess::Pipe::toItsInput);
    pipe = std::make_unique<FileSink>(OwnedFile(child->TakeStream()));
    try {
        const Y4mFormat format{info.size, info.frameRate.Known() ? info.frameRate : assumedRate, info.sampleAspect,
                               info.colour.chromaSite, target.fullHeightChroma};
        stream.emplace(*pipe, Y4mHeaderLine(format));
    } catch (const RunError&) {
        EndPipe();
        CheckEnd();
        throw;
    }
}

void PipedFilmWriter::Write(const VideoFrame& frame, const PicturePlanes& planes) {
    if (!frame.hasPicture) return;
    try {
        stream->WriteFrame({}, planes);
        hasPictures = true;
    } catch (const RunError&) {  // ffmpeg.exe takes no more: why, it knows best
        EndPipe();
        CheckEnd();
        throw;
    }
}

void PipedFilmWriter::EndPipe() {
    stream.reset();
    pipe.reset();  // what was written went through: each picture is flushed
}

/// Waits for the end of ffmpeg.exe, which has got all. Throws RunError when it failed.
void PipedFilmWriter::CheckEnd() {
    const uint32_t code = child->Wait(INFINITE).value_or(1);
    const std::string errors = child->ErrorText();
    if (code != 0 || LostItsEnd(errors)) throw RunError(FailureText(code, errors));
}

void PipedFilmWriter::Finish() {
    EndPipe();
    CheckEnd();
    std::error_code error;
    files::rename(PathOf(part.path), PathOf(path), error);
    if (error) throw RunError("cannot be put in its place: " + error.message());
    part.isThere = false;
}

std::string PipedFilmWriter::Abandon() {
    if (!part.isThere || !hasPictures) return {};
    try {
        EndPipe();
        CheckEnd();
    } catch (const std::exception&) {  // what cannot be kept is told already
        return {};
    }
    part.isThere = false;
    return part.path;
}

std::string PipedFilmWriter::Description() const {
    std::string counts;
    for (const auto& [kind, name] :
         {std::pair(FilmStream::Kind::sound, " audio"), std::pair(FilmStream::Kind::subtitle, " subtitle")}) {
        const auto count = std::ranges::count(copied, kind, &FilmStream::kind);
        if (count > 0) counts += (counts.empty() ? ", " : " and ") + std::to_string(count) + name;
    }
    return (encoding.encoder.empty() ? "" : encoding.encoder + " of ") + "ffmpeg.exe" + counts +
           (counts.empty() ? "" : " copied");
}

}  // namespace clarivex
