// RenderOptions: the one plain value that carries every knob of a frame into the pipeline. 97 fields are
// stored as JSON under the snake_case form of their names (option_table.h tells each once: key, type, range,
// texts, meaning); 11 are worked out during a render and never stored.
#pragma once

#include "core/profiles/formats/option_enums.h"
#include "core/profiles/formats/profile_values.h"
#include "core/profiles/options/crop.h"

namespace tamlo {

using SeedVariants = std::map<std::string, std::int64_t>;

struct RenderOptions {
    // Source and exposure.
    double ev = 0;                    ///< stops
    std::string srcExposure = "auto"; ///< "auto", "as_shot", "highlights", "shadows"
    double srcLights = 0;        ///< how much of its clipped lights a display picture is given back, 0...1
    std::string wbMode = "film"; ///< "film", "asshot", "custom"
    double wbTemp = 0;           ///< mired
    double wbTint = 0;
    double sourceGain = 1; ///< not stored: worked out from the source's statistics

    // Lens and filters.
    double stop = 0; ///< 0 is the lens's own default
    OptText filter;  ///< the old single slot, read when neither slot below is set
    double filterAmount = 1;
    OptText filterCut;
    double filterCutAmount = 1;
    OptText filterDiffusion;
    double filterDiffusionAmount = 1;
    OptText filterRays;
    double raysAngle = 0; ///< degrees
    OptText filterGrad;
    double gradPos = 0;
    double gradAngle = 0; ///< degrees
    double glowMult = 1;
    double glowRadiusMult = 1;
    bool distortion = true;

    // Film and format.
    std::optional<FilmFormat> format = FilmFormat::f135; ///< absent means the film's format_default
    double format120Cm = 6;                              ///< legacy form of the frame size
    OptText frameSize;
    double formatLongUm = 0;       ///< not stored: long side of the film; 0 means worked out
    std::string cropGate = "full"; ///< what a crop takes from the film: "full" or "none"
    bool masterCap = true;
    double push = 0; ///< stops
    Development dev = Development::standard;
    double devTempC = 21;
    double devMottle = 1;
    double devUneven = 0;
    double c41TempC = 30;
    bool redscale = false;
    double expiredYears = 0;
    double plateShift = 1;
    double platePour = 1;
    double intensify = 0;
    double grainMult = 1;
    double grainSizeMult = 1;
    bool interlayer = false;
    bool grainRms = false;
    GrainEngine grainEngine = GrainEngine::growth;
    Grain::GrowthZone grainZone = Grain::GrowthZone::automatic; ///< not stored
    double halationMult = 1;
    std::int64_t seed = 20260821;
    std::optional<SeedVariants> seedVariants; ///< re-rolls by stream name

    // Printing.
    double printEv = 0;
    double grade = 2;
    double printBlack = 0;
    double printWhite = 0;
    double border = 0; ///< fraction of the picture's long side
    bool borderBlack = false;
    OptText paperBase;
    double printCm = 30; ///< long side of the print
    OptNumber sheetCm;   ///< long side of the sheet; when set, the print is worked out from it
    double printTexture = 1;
    double inkjetBanding = 1;
    std::string inkjetFeed = "long"; ///< "long" or "short"
    std::string reproRaster = "auto";
    double crtZoom = 1;
    OptNumber crtSizeIn; ///< old diagonal knob
    OptText crtPhosphor;
    OptNumber inkRoller;
    OptText coat;
    OptNumber coatRough, pickup, relief;
    OptBool plateMark;

    // Rebate, card, geometry.
    double frame = 0; ///< rebate width; 0 takes the style's own
    double frameRough = 1;
    FrameStyle frameStyle = FrameStyle::none;
    bool framePrint = false;      ///< perforations, word and number on a wide rebate
    std::string framePrintText;   ///< the word; empty is the film's plain name
    std::int64_t frameNumber = 0; ///< 0 is none
    bool instantFrame = true;
    std::string peelSize = "3x4";
    OptList cardOutside;     ///< colour around the card
    std::int64_t rotate = 0; ///< degrees clockwise
    bool mirror = false;
    std::optional<Crop> crop;

    // Mounting.
    OptText table;
    double tableWidthCm = 3;
    OptText mat;
    double matWidthCm = 6;
    double matBottomWeight = 1.12;
    OptText matColor, matCore;
    double matBevelMm = 1.6;
    double matRevealMm = 6;
    OptText matRevealColor;
    double matGripMm = 4;
    OptText embossLine;
    OptBool blindStamp;
    OptText stampText;
    std::string stampSize = "m";
    std::int64_t socialPx = 1080;
    std::string socialBy = "width"; ///< "width" or "long"
    bool socialCrop45 = false;

    // Set during a render, not stored; pixels.
    double borderPx = 0;
    double borderPxBottom = 0;
    double plateInsetPx = 0;
    OptList frameWhitePx, matGripsPx, picInsetPx;
    bool blackProbe = false; ///< this render only measures the print's black
    double printPxUm = 60;   ///< micrometres of print per pixel

    bool operator==(const RenderOptions&) const = default;
};

} // namespace tamlo
