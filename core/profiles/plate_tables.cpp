#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<NegativeLayer>> FieldTable<NegativeLayer>::rows()
{
    using T = NegativeLayer;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::dmin>("dmin", "density", "base plus fog"),
        requiredField<&T::dmax>("dmax", "density", "density ceiling"),
        requiredField<&T::gamma>("gamma", "density per log exposure", "contrast of the straight line"),
        field<&T::toe>("toe", "", "softness of the foot; above zero"),
        field<&T::midDensity>("mid_density", "density",
                              "density of mid grey above dmin; above zero and below dmax - dmin"),
        field<&T::dmaxIntensified>("dmax_intensified", "density",
                                   "ceiling that silver intensification reaches"),
    };
    return kRows;
}

std::span<const Field<DryPlateParams>> FieldTable<DryPlateParams>::rows()
{
    using T = DryPlateParams;
    static constexpr Field<T> kRows[] = {
        field<&T::edgeMm>("edge_mm", "mm", "width of the coating edge"),
        field<&T::edgeGain>("edge_gain", "", "light lost or gained at the edge"),
        field<&T::edgeFog>("edge_fog", "", "fog at the edge"),
        field<&T::frillMm>("frill_mm", "mm", "width of the frilled edge"),
        field<&T::frill>("frill", "", "strength of the frilling"),
        field<&T::waveMm>("wave_mm", "mm", "wavelength of the edge"),
    };
    return kRows;
}

std::span<const Field<CollodionParams>> FieldTable<CollodionParams>::rows()
{
    using T = CollodionParams;
    static constexpr Field<T> kRows[] = {
        field<&T::slope>("slope", "", "fall of the coating across the plate"),
        field<&T::crescent>("crescent", "", "depth of the crescent at the pouring corner"),
        field<&T::wander>("wander", "", "wander of the pour"),
        field<&T::edgeMm>("edge_mm", "mm", "width of the coating edge"),
        field<&T::holdMm>("hold_mm", "mm", "bare corner where the plate was held"),
        field<&T::veil>("veil", "", "veil of the developer"),
        field<&T::crystal>("crystal", "", "crystals of silver nitrate"),
        field<&T::edgeRough>("edge_rough", "", "roughness of the edge"),
    };
    return kRows;
}

std::span<const Field<TricolorRegistration>> FieldTable<TricolorRegistration>::rows()
{
    using T = TricolorRegistration;
    static constexpr Field<T> kRows[] = {
        field<&T::shiftMm>("shift_mm", "mm", "shift of a plate"),
        field<&T::rotateDeg>("rotate_deg", "degrees", "turn of a plate"),
        field<&T::scale>("scale", "", "spread of the scale"),
        field<&T::warpMm>("warp_mm", "mm", "warp of the emulsion"),
        field<&T::warpCellMm>("warp_cell_mm", "mm", "cell of the warp"),
        field<&T::margin>("margin", "fraction", "margin cut off so that all plates cover the picture"),
    };
    return kRows;
}

std::span<const Field<TricolorParams>> FieldTable<TricolorParams>::rows()
{
    using T = TricolorParams;
    static constexpr Field<T> kRows[] = {
        field<&T::filters>("filters", "", "taking filters by r, g, b"),
        field<&T::plateEv>("plate_ev", "stops", "exposure of each plate by r, g, b"),
        field<&T::evJitter>("ev_jitter", "stops", "random spread of that exposure"),
        field<&T::positive>("positive", "", "curve of the diapositives"),
        field<&T::registration>("registration", "", "misregistration"),
        field<&T::projection>("projection", "", "additive projection primaries, 3 x 3"),
    };
    return kRows;
}

} // namespace tamlo
