// The field tables of the profile formats: which structures have one. The rows stand in film_tables.cpp,
// instant_tables.cpp, plate_tables.cpp, lens_tables.cpp, paper_tables.cpp and repro_tables.cpp.
#pragma once

#include "core/profiles/formats/field_table.h"
#include "core/profiles/formats/film_profile.h"
#include "core/profiles/formats/filter_profile.h"
#include "core/profiles/formats/lens_profile.h"
#include "core/profiles/formats/paper_profile.h"

namespace tamlo {

#define TAMLO_FIELD_TABLE(T)                                                                                 \
    template <>                                                                                              \
    struct FieldTable<T> {                                                                                   \
        static std::span<const Field<T>> rows();                                                             \
    }

TAMLO_FIELD_TABLE(FilmProfile);
TAMLO_FIELD_TABLE(ColorLayers);
TAMLO_FIELD_TABLE(Couplers);
TAMLO_FIELD_TABLE(DyeParams);
TAMLO_FIELD_TABLE(FilmBalance);
TAMLO_FIELD_TABLE(HalationParams);
TAMLO_FIELD_TABLE(GrainParams);
TAMLO_FIELD_TABLE(LookParams);
TAMLO_FIELD_TABLE(FilmMTF);
TAMLO_FIELD_TABLE(FilmAdjacency);
TAMLO_FIELD_TABLE(IRProxy);
TAMLO_FIELD_TABLE(ChatterColor);
TAMLO_FIELD_TABLE(ChatterParams);
TAMLO_FIELD_TABLE(SilkLatticeParams);
TAMLO_FIELD_TABLE(TextureParams);
TAMLO_FIELD_TABLE(ToneMottleParams);
TAMLO_FIELD_TABLE(WindowLine);
TAMLO_FIELD_TABLE(CornerLeaf);
TAMLO_FIELD_TABLE(NegativeLayer);
TAMLO_FIELD_TABLE(DryPlateParams);
TAMLO_FIELD_TABLE(CollodionParams);
TAMLO_FIELD_TABLE(TricolorRegistration);
TAMLO_FIELD_TABLE(TricolorParams);
TAMLO_FIELD_TABLE(ApertureResponse);
TAMLO_FIELD_TABLE(OpticsParams);
TAMLO_FIELD_TABLE(SieveDisc);
TAMLO_FIELD_TABLE(LensProfile);
TAMLO_FIELD_TABLE(FilterProfile);
TAMLO_FIELD_TABLE(PaperPigment);
TAMLO_FIELD_TABLE(PaperTexture);
TAMLO_FIELD_TABLE(PaperTransfer);
TAMLO_FIELD_TABLE(PaperLayer);
TAMLO_FIELD_TABLE(PaperCoat);
TAMLO_FIELD_TABLE(PaperPlate);
TAMLO_FIELD_TABLE(PaperRelief);
TAMLO_FIELD_TABLE(PaperFamily);
TAMLO_FIELD_TABLE(PlateViewParams);
TAMLO_FIELD_TABLE(SurfaceParams);
TAMLO_FIELD_TABLE(PaperProfile);
TAMLO_FIELD_TABLE(ScanParams);
TAMLO_FIELD_TABLE(InkjetParams);
TAMLO_FIELD_TABLE(OffsetParams);
TAMLO_FIELD_TABLE(CRTBezelParams);
TAMLO_FIELD_TABLE(CRTParams);

#undef TAMLO_FIELD_TABLE

/// Keeps apart a corner key that is null (a square corner) from one that is left out.
template <>
struct FieldTable<CornerSpec> {
    static std::span<const Field<CornerSpec>> rows();
    static void afterRead(CornerSpec& to, const Json& from);
    static void afterWrite(const CornerSpec& from, Json& to);
};

/// Keeps the presence of `corner`, also when it is null.
template <>
struct FieldTable<InstantFrameParams> {
    static std::span<const Field<InstantFrameParams>> rows();
    static void afterRead(InstantFrameParams& to, const Json& from);
    static void afterWrite(const InstantFrameParams& from, Json& to);
};

} // namespace tamlo
