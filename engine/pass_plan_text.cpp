// A plan in words.
#include <cstdarg>
#include <cstdio>

#include "engine/pass_plan.h"

namespace clarivex {
namespace {

const char* NameOf(AxisScale scale) {
    switch (scale) {
        case AxisScale::threeHalves: return "3/2";
        case AxisScale::twofold: return "2";
        default: return "1";
    }
}

const char* NameOf(PassKind kind) {
    switch (kind) {
        case PassKind::empty: return "no samples";
        case PassKind::bypass: return "too large";
        case PassKind::untouched: return "untouched";
        case PassKind::keptSize: return "kept size";
        case PassKind::rowsOnly: return "rows only";
        case PassKind::rowsFirst: return "rows first";
        case PassKind::columnsFirst: return "columns first";
        default: return "doubled";
    }
}

const char* NameOf(PreKernel kernel) {
    switch (kernel) {
        case PreKernel::narrow: return "narrow";
        case PreKernel::knee: return "knee";
        default: return "none";
    }
}

/// Lines that grow by what a stage says of itself.
class Words {
public:
    [[gnu::format(printf, 2, 3)]] void Line(const char* format, ...) {
        char line[128];
        va_list values;
        va_start(values, format);
        std::vsnprintf(line, sizeof line, format, values);
        va_end(values);
        text += line;
        text += '\n';
    }

    void Size(const char* name, const FrameSize& size) { Line("%s %d x %d", name, size.width, size.height); }

    void Stage(const char* name, bool on, const char* what) {
        if (on) Line("  %s: %s", name, what);
    }

    std::string text;
};

/// "gated", "narrow", "gated, knee".
std::string KernelsOf(bool gated, PreKernel kernel) {
    if (!gated) return NameOf(kernel);
    return kernel == PreKernel::none ? "gated" : std::string("gated, ") + NameOf(kernel);
}

void TellSource(const PassPlan& plan, Words& words) {
    words.Line("strength %.4g, level %d", plan.strength.value + 0.0, plan.strength.level);
    words.Stage("copy", plan.copiesSource, "the source");
    words.Stage("smooth chroma", plan.smoothsChroma, "narrow");
    words.Stage("smooth columns", plan.wholeColumns.IsOn(),
                KernelsOf(plan.wholeColumns.gated, plan.wholeColumns.kernel).c_str());
    words.Stage("smooth rows", plan.wholeRows.IsOn(), KernelsOf(plan.wholeRows.gated, plan.wholeRows.kernel).c_str());
    if (plan.lighting.analysed) words.Line("lighting over %.4g s", static_cast<double>(plan.lighting.elapsed) / 1e7);
}

const char* EdgesOf(const RowStages& rows) { return rows.edgeStage == EdgeStage::simple ? "simple" : "full"; }

const char* FilterOf(const DetailTaps& taps) {
    switch (ChooseDetailFirForm(taps)) {
        case DetailFirForm::symmetric16: return "16 taps, even";
        case DetailFirForm::symmetric12: return "12 taps, even";
        case DetailFirForm::symmetric8: return "8 taps, even";
        default: return "odd";
    }
}

void TellRows(const RowStages& rows, Words& words) {
    words.Line("rows by %s", NameOf(rows.scale));
    words.Stage("smooth in strips", rows.sleeping.preStage.IsOn(),
                KernelsOf(rows.sleeping.preStage.gated, rows.sleeping.preStage.kernel).c_str());
    words.Stage("limit edges", rows.edgeStage != EdgeStage::none, EdgesOf(rows));
    words.Stage("detail", rows.sleeping.detailOn, "knee");
    words.Stage("post filter", rows.postFilterOn, FilterOf(rows.postTaps));
    words.Stage("booster", rows.sleeping.boosterOn, "on");
    words.Stage("cross", rows.crossOn, "down the columns");
    words.Stage("rank", rows.sleeping.rankStage != RankStage::none,
                rows.sleeping.rankStage == RankStage::smaller ? "smaller" : "larger");
}

void TellColumns(const PassPlan& plan, Words& words) {
    words.Line("columns by %s", NameOf(plan.modes.vertical));
    const PreStage& preStage = plan.columns.sleeping.preStage;
    words.Stage("smooth in strips", preStage.IsOn(), KernelsOf(preStage.gated, preStage.kernel).c_str());
}

void TellDoubled(const PassPlan& plan, Words& words) {
    words.Line("rows and columns by 2");
    words.Stage("limit edges", plan.wide.limitEdges, "full");
    words.Stage("post filter", plan.wide.postFilterOn, FilterOf(plan.wide.rowTaps));
}

void TellScaler(const PassPlan& plan, Words& words) {
    switch (plan.kind) {
        case PassKind::keptSize:
            words.Stage("sharpen columns", IsSharpenActive(plan.unscaledColumns), "narrow");
            words.Stage("post filter", plan.postFilter.on, FilterOf(plan.postFilter.taps));
            break;
        case PassKind::rowsOnly: TellRows(plan.rows, words); break;
        case PassKind::rowsFirst:
            TellRows(plan.rows, words);
            words.Size("  between", plan.between);
            TellColumns(plan, words);
            break;
        case PassKind::columnsFirst:
            TellColumns(plan, words);
            words.Size("  between", plan.between);
            TellRows(plan.rows, words);
            break;
        default: TellDoubled(plan, words); break;
    }
}

std::string PlanesOf(uint32_t planes) {
    std::string names;
    if ((planes & lumaPlane) != 0) names += " luma";
    if ((planes & secondPlane) != 0) names += " second";
    if ((planes & thirdPlane) != 0) names += " third";
    return names.empty() ? " nothing" : names;
}

void TellResult(const PassPlan& plan, Words& words) {
    if (plan.modes.horizontal != AxisScale::none)
        words.Line("chroma %s", plan.postFilter.chromaOdd ? "shifted" : "centred");
    words.Size("target", plan.target);
    words.Line("writes%s, %d x %d", PlanesOf(plan.planes).c_str(), plan.written.width, plan.written.height);
    words.Line("aspect %.4g, noise %.4g", plan.aspect, plan.noiseAmplitude);
}

}  // namespace

std::string TellPlan(const PassPlan& plan) {
    Words words;
    words.Line("%d x %d: %s", plan.source.width, plan.source.height, NameOf(plan.kind));
    if (plan.kind == PassKind::empty) return words.text;
    TellSource(plan, words);
    if (plan.splitView) words.Line("right part only");
    if (!plan.Writes()) return words.text;
    TellScaler(plan, words);
    TellResult(plan, words);
    return words.text;
}

}  // namespace clarivex
