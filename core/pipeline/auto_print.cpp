#include "core/pipeline/auto_print.h"

#include "core/image/luminance.h"
#include "core/image/source_exposure.h"
#include "core/pipeline/crop_geometry.h"
#include "core/pipeline/film_dispatch.h"
#include "core/pipeline/idle_options.h"
#include "core/pipeline/pipeline.h"
#include "core/text/loc.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tamlo {
namespace {

using namespace Pipeline::AutoPrintRules;
using Pipeline::AutoPrint;
using Pipeline::PrintTones;

constexpr double kNearBlack = 2.0; // L* above the paper's black
constexpr double kFlat = 4.0;      // L* between both ends: one tone
constexpr double kClose = 0.4;     // L* that no eye tells
// What the black may give for the white, L*: more while the white is not one yet.
constexpr double kBlackRise = 5.0, kBlackRiseMost = 8.0;
constexpr double kIsWhite = 90.5;
constexpr double kMoreClipped = 0.002;
constexpr double kClipsAt = 0.9985; // of the paper's white
constexpr double kTryStops = 0.3, kTryGrade = 0.5;
constexpr int kSteps = 3;
constexpr double kPerStop = 100.0; // settings in a stop or a grade: what is written is what was looked at
constexpr double kFilmUm = 60.0; // scale at which the paper's black is probed: any will do for an even field

struct Setting {
    double printEv = 0.0, grade = 2.0;
};

double lightnessOf(double share)
{
    constexpr double kLinearTo = 216.0 / 24389.0, kSlope = 24389.0 / 27.0;
    return share > kLinearTo ? 116.0 * std::cbrt(share) - 16.0 : kSlope * std::max(share, 0.0);
}

double luma(const Vec3d& v)
{
    return 0.2126 * v[0] + 0.7152 * v[1] + 0.0722 * v[2];
}

double smooth(double from, double to, double v)
{
    const double t = std::clamp((v - from) / (to - from), 0.0, 1.0);
    return t * t * (3.0 - 2.0 * t);
}

/// The picture alone: no grain, no structure and nothing around it.
RenderOptions bare(RenderOptions options)
{
    options.grainMult = 0.0;
    options.printTexture = 0.0;
    options.border = 0.0;
    options.frameStyle = FrameStyle::none;
    options.instantFrame = false;
    options.plateMark = false;
    options.coat = "clean";
    options.reproRaster = "off";
    options.table.reset();
    options.mat.reset();
    options.embossLine.reset();
    options.blindStamp.reset();
    options.stampText.reset();
    return options;
}

/// What a crop leaves of the frame is looked at, as large as a whole one where the frame has so much.
std::int64_t lookedAtLong(Size frame, const RenderOptions& options)
{
    const Size picture = Pipeline::croppedSize(options.crop, frame);
    const double part = static_cast<double>(std::max(picture.width, picture.height)) /
                        static_cast<double>(std::max<std::int64_t>(std::max(frame.width, frame.height), 1));
    return std::llround(static_cast<double>(longPx) / std::clamp(part, 0.01, 1.0));
}

/// Prints a frame at several settings and looks at the result.
class Eye {
public:
    Eye(const RGBImage& frame, const RenderChoices& choices, const RenderHooks& hooks)
        : frame_(resized(frame, lookedAtLong(frame.size(), choices.options))), choices_(choices)
    {
        backend_.hooks.shouldCancel = hooks.shouldCancel;
        choices_.options = bare(choices.options);
        const Vec3f base = Pipeline::paperBase(choices_.paper, choices_.options);
        white_ = std::max(luma({base[0], base[1], base[2]}), 1e-3);
    }

    PrintTones look(const Setting& at) const
    {
        RenderChoices choices = choices_;
        choices.options.printEv = at.printEv;
        choices.options.grade = at.grade;
        return Pipeline::printTones(backend_.process(frame_, choices), white_);
    }

    double paperBlack() const
    {
        const Vec3d black = Film::printBlackRGB(choices_.film, choices_.paper, choices_.options, kFilmUm);
        return lightnessOf(luma(black) / white_);
    }

private:
    RGBImage frame_;
    RenderChoices choices_;
    CPUBackend backend_;
    double white_ = 1.0;
};

/// Where the two ends of a frame should stand, from where they stand by themselves.
struct Aim {
    double white, black;
};

Aim aimOf(const PrintTones& now, double paperBlack)
{
    // Lights that are far from white belong to a night, darks that are far from black to fog.
    const double towardsWhite = smooth(35.0, 65.0, now.white);
    const double towardsBlack = 1.0 - smooth(20.0, 45.0, now.black);
    return {now.white + towardsWhite * (lightnessOf(whiteShare) - now.white),
            now.black + towardsBlack * (paperBlack + kNearBlack - now.black)};
}

double stepped(double v)
{
    return std::round(v * kPerStop) / kPerStop;
}

Setting held(const Setting& at, const Setting& neutral)
{
    return {stepped(std::clamp(at.printEv, neutral.printEv - reachStops, neutral.printEv + reachStops)),
            stepped(std::clamp(at.grade, std::max(neutral.grade - reachGrade, 0.0),
                               std::min(neutral.grade + reachGrade, 5.0)))};
}

/// Slopes of white and black with each of the two knobs.
struct Slopes {
    double whiteEv = 0.0, whiteGrade = 0.0, blackEv = 0.0, blackGrade = 0.0;
};

/// The exposure that brings the white home at a grade.
double exposureFor(const Slopes& s, const Aim& aim, const PrintTones& now, double gradeStep)
{
    return std::abs(s.whiteEv) > 1e-6 ? (aim.white - now.white - s.whiteGrade * gradeStep) / s.whiteEv : 0.0;
}

/// A Newton step of both knobs. The white has the first call on the exposure, so a grade that ends at its
/// limit leaves only the black where it is.
Setting step(const Slopes& s, const Aim& aim, const PrintTones& now, const Setting& at,
             const Setting& neutral)
{
    const double det = s.whiteEv * s.blackGrade - s.whiteGrade * s.blackEv;
    const double dw = aim.white - now.white, db = aim.black - now.black;
    const double gradeStep = std::abs(det) > 1e-3 ? (s.whiteEv * db - s.blackEv * dw) / det : 0.0;
    const Setting graded = held({at.printEv, at.grade + gradeStep}, neutral);
    return held({at.printEv + exposureFor(s, aim, now, graded.grade - at.grade), graded.grade}, neutral);
}

bool isAllowed(const PrintTones& before, const PrintTones& after)
{
    const double rise = after.white < kIsWhite ? kBlackRiseMost : kBlackRise;
    return std::abs(after.median - before.median) <= medianReach && after.black <= before.black + rise &&
           after.clipped <= before.clipped + kMoreClipped;
}

bool isClose(const Aim& aim, const PrintTones& now)
{
    return std::abs(aim.white - now.white) < kClose && std::abs(aim.black - now.black) < kClose;
}

/// Back towards the neutral print until nothing is lost and the frame is still the same frame: as far as it
/// takes with the exposure, which moves all tones, and only then with the grade. Returns the tones there.
PrintTones backOff(const Eye& eye, const PrintTones& before, const Setting& neutral, Setting& at)
{
    const Setting found = at;
    const double way = found.printEv - neutral.printEv;
    for (const double grades : {1.0, 0.5, 0.0}) {
        const auto setting = [&](long steps) {
            return held({neutral.printEv + std::copysign(static_cast<double>(steps) / kPerStop, way),
                         neutral.grade + grades * (found.grade - neutral.grade)},
                        neutral);
        };
        PrintTones kept = eye.look(setting(0));
        if (!isAllowed(before, kept)) continue;
        long low = 0, high = std::lround(std::abs(way) * kPerStop) + 1;
        while (high - low > 1) {
            const long steps = (low + high) / 2;
            const PrintTones seen = eye.look(setting(steps));
            (isAllowed(before, seen) ? low : high) = steps;
            if (low == steps) kept = seen;
        }
        at = setting(low);
        return kept;
    }
    at = neutral;
    return before;
}

} // namespace

std::string Pipeline::whyNot(const AutoPrint& print, const RenderChoices& choices)
{
    if (!print.reasonKey) return {};
    const auto title = [](const auto& profile) {
        return Loc::pick(profile.name.value_or(""), profile.nameEn);
    };
    return T(*print.reasonKey, {{"film", title(choices.film)}, {"paper", title(choices.paper)}});
}

PrintTones Pipeline::printTones(const RGBImage& print, double white)
{
    std::vector<double> values;
    std::int64_t clipped = 0;
    const Plane luminance = lumaPlane(print);
    for (std::int64_t i = 0; i < print.pixelCount(); ++i) {
        const double y = luminance.data[static_cast<std::size_t>(i)];
        if (!std::isfinite(y)) continue;
        values.push_back(y / white);
        clipped += y >= kClipsAt * white ? 1 : 0;
    }
    PrintTones tones;
    if (values.empty()) return tones;
    tones.known = true;
    tones.clipped = static_cast<double>(clipped) / static_cast<double>(values.size());
    const auto at = [&](double percent) { return lightnessOf(SourceExposure::percentile(values, percent)); };
    tones.black = at(blackPercent);
    tones.median = at(50.0);
    tones.white = at(whitePercent);
    return tones;
}

AutoPrint Pipeline::autoPrint(const RGBImage& frame, const RenderChoices& choices,
                              const std::set<std::string>& heldKeys, const RenderHooks& hooks)
{
    const RenderOptions defaults;
    AutoPrint result{choices.options.printEv, choices.options.grade, {}, {}, {}};
    const Setting own{result.printEv, result.grade};

    RenderChoices moved = choices;
    moved.options.printEv = 1.0;
    moved.options.grade = defaults.grade + 1.0;
    bool exposes = !heldKeys.contains("print_ev"), grades = !heldKeys.contains("grade");
    for (const IdleOption& idle : idleOptions(moved, {"print_ev", "grade"})) {
        if (idle.key == "print_ev" && exposes) result.reasonKey = idle.reasonKey;
        (idle.key == "grade" ? grades : exposes) = false;
    }
    if (!exposes && !result.reasonKey) result.reasonKey = "autoprint.held";
    if (result.reasonKey) return result;

    const Eye eye(frame, choices, hooks);
    const Setting neutral{defaults.printEv, grades ? defaults.grade : own.grade};
    result.before = eye.look(neutral);
    if (!result.before.known || result.before.white - result.before.black < kFlat) {
        result.reasonKey = "autoprint.flat";
        return result;
    }
    const Aim aim = aimOf(result.before, eye.paperBlack());
    Slopes slopes;
    const PrintTones lighter = eye.look({neutral.printEv - kTryStops, neutral.grade});
    slopes.whiteEv = (result.before.white - lighter.white) / kTryStops;
    slopes.blackEv = (result.before.black - lighter.black) / kTryStops;
    if (grades) {
        const PrintTones harder = eye.look({neutral.printEv, neutral.grade + kTryGrade});
        slopes.whiteGrade = (harder.white - result.before.white) / kTryGrade;
        slopes.blackGrade = (harder.black - result.before.black) / kTryGrade;
    }
    Setting at = neutral;
    PrintTones now = result.before;
    for (int i = 0; i < kSteps && !isClose(aim, now); ++i) {
        const Setting next = step(slopes, aim, now, at, neutral);
        const PrintTones seen = eye.look(next);
        // The slope along the way that was gone: white bends towards the paper's, so the first one is too
        // steep.
        const double ev = next.printEv - at.printEv;
        if (std::abs(ev) > 0.05 && (seen.white - now.white) / ev * slopes.whiteEv > 0.0)
            slopes.whiteEv = (seen.white - now.white - slopes.whiteGrade * (next.grade - at.grade)) / ev;
        at = next;
        now = seen;
    }
    if (!isAllowed(result.before, now)) now = backOff(eye, result.before, neutral, at);
    result.printEv = at.printEv;
    result.grade = at.grade;
    result.after = now;
    return result;
}

} // namespace tamlo
