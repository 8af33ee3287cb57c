#include "host/tune.h"

#include <cstdarg>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <utility>

#include "host/bitmap.h"
#include "host/byte_stream.h"
#include "host/file_replacement.h"
#include "host/naming.h"
#include "host/progress.h"
#include "host/studio_colour.h"
#include "shell/tuning.h"

namespace clarivex {

namespace {

constexpr const char* reducedName = "in.bmp";
constexpr const char* enhancedName = "out.bmp";

[[gnu::format(printf, 1, 2)]] std::string Formatted(const char* format, ...) {
    char text[1024];
    va_list values;
    va_start(values, format);
    std::vsnprintf(text, sizeof text, format, values);
    va_end(values);
    return text;
}

void CheckTargetSurvives(const std::string& target) {
    for (const char* written : {reducedName, enhancedName})
        if (SameFile(target, written))
            throw RunError(InputName(target) + ": is the file that this command writes; run it in another folder");
}

TuningPicture ReadTarget(const std::string& path) {
    return Naming(InputName(path), [&] {
        FileSource source(path);
        const Bitmap bitmap = ReadBitmap(source);
        return TuningPicture{bitmap.size.width, bitmap.size.height, PlanarOf(bitmap)};
    });
}

/// That they cannot be written must not come as a surprise at the end of a search.
void CheckPicturesCanBeWritten() {
    for (const char* name : {reducedName, enhancedName}) FileReplacement probe(name);
}

/// What bears their names is replaced when both are whole.
void WritePictures(const PictureTuning& tuning) {
    const auto fill = [](FileReplacement& file, const TuningPicture& picture) {
        const Bitmap bitmap = BitmapOf({{picture.width, picture.height}, picture.samples});
        file.Fill([&](ByteSink& sink) { WriteBitmap(sink, bitmap); });
    };
    FileReplacement reduced(reducedName);
    FileReplacement enhanced(enhancedName);
    fill(reduced, tuning.reduced);
    fill(enhanced, tuning.enhanced);
    reduced.TakePlace();
    enhanced.TakePlace();
}

std::string SettingsTable(const std::vector<TunedSetting>& settings) {
    std::string table = Formatted("%-20s %10s %10s\n", "setting", "start", "best");
    for (const TunedSetting& setting : settings)
        table += Formatted("%-20s %10.6g %10.6g\n", setting.name, setting.start, setting.best);
    return table;
}

PictureTuning Tune(const TuneOptions& options, TuningPicture target, Report& report, Progress& progress) {
    const auto observe = [&](const TuningAttempt& attempt) {
        if (attempt.improves) {
            report.WipeProgress();
            PrintResult(Formatted("err : %.5f\n", attempt.error));
        }
        progress.OneDone();
    };
    try {
        return TunePicture(std::move(target), options.tuning, observe);
    } catch (const std::invalid_argument& error) {
        throw RunError(InputName(options.target) + ": " + error.what());
    }
}

std::string Summary(const PictureTuning& tuning, const Progress& progress) {
    const auto attempts = static_cast<unsigned long long>(progress.Count());
    return Formatted("%llu attempt%s, %dx%d to %dx%d, err %.5f to %.5f", attempts, attempts == 1 ? "" : "s",
                     tuning.reduced.width, tuning.reduced.height, tuning.enhanced.width, tuning.enhanced.height,
                     tuning.startError, tuning.bestError);
}

}  // namespace

void RunTune(const TuneOptions& options) {
    CheckTargetSurvives(options.target);
    TuningPicture target = ReadTarget(options.target);
    CheckPicturesCanBeWritten();
    Report report(options.quiet);
    Progress progress(report, static_cast<uint64_t>(options.tuning.attempts), std::nullopt, "attempt");
    const PictureTuning tuning = Tune(options, std::move(target), report, progress);
    report.WipeProgress();
    WritePictures(tuning);
    PrintResult(SettingsTable(tuning.settings));
    report.Tell(Summary(tuning, progress));
}

}  // namespace clarivex
