#include "core/profiles/formats/profile_tables.h"

namespace tamlo {

std::span<const Field<NegativeLayer>> FieldTable<NegativeLayer>::rows()
{
    using T = NegativeLayer;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::dmin>(
            "dmin", "density",
            "base and fog: density where no light fell; drops out of a print from a negative, but larger "
            "veils and, where the layers differ, tints slides and instant film"),
        requiredField<&T::dmax>("dmax", "density",
                                "density that the shoulder nears, above dmin; larger separates the "
                                "highlights of a negative longer and deepens the black of a slide"),
        requiredField<&T::gamma>("gamma", "density per log exposure",
                                 "slope at middle grey, above 0; larger is more contrast"),
        field<&T::toe>(
            "toe", "",
            "shape of the curve, above 0; larger bends the shadows sooner and more softly and keeps the "
            "highlights straight longer; absent 1.6 on silver, 1.5 on colour negatives, 1.2 on slides"),
        field<&T::midDensity>("mid_density", "density",
                              "density of a grey card above dmin, above 0 and below dmax - dmin; larger puts "
                              "grey further from the foot: more room for shadows, less for highlights; "
                              "absent 0.95 on silver, 0.85 on colour negatives, 0.745 on slides"),
        field<&T::dmaxIntensified>("dmax_intensified", "density",
                                   "dmax of wet collodion at the option intensify 1; larger lets intensified "
                                   "light parts grow denser"),
    };
    return kRows;
}

std::span<const Field<DryPlateParams>> FieldTable<DryPlateParams>::rows()
{
    using T = DryPlateParams;
    static constexpr Field<T> kRows[] = {
        field<&T::edgeMm>("edge_mm", "mm", "width of the thick rim of the coating; larger is a wider rim"),
        field<&T::edgeGain>("edge_gain", "share",
                            "extra thickness of the rim, which takes more light; larger is a darker rim on "
                            "the negative; absent 0.12"),
        field<&T::edgeFog>("edge_fog", "density",
                           "fog for each unit of extra thickness; larger veils the rim more"),
        field<&T::frillMm>("frill_mm", "mm",
                           "depth of the frilling where gelatine lifted; larger reaches further in"),
        field<&T::frill>("frill", "",
                         "strength of the frilling; larger ripples more of that depth, 0 is none"),
        field<&T::waveMm>("wave_mm", "mm", "scale on which the rim's width wanders; larger is a calmer edge"),
    };
    return kRows;
}

std::span<const Field<CollodionParams>> FieldTable<CollodionParams>::rows()
{
    using T = CollodionParams;
    static constexpr Field<T> kRows[] = {
        field<&T::slope>("slope", "share",
                         "how much thicker the film of collodion is at the pouring corner; larger darkens "
                         "the negative towards it"),
        field<&T::crescent>("crescent", "share",
                            "thickness of the crescent that pouring leaves; larger draws it more clearly"),
        field<&T::wander>("wander", "share",
                          "waves in the thickness along the pour; larger is more uneven; absent 0.035"),
        field<&T::edgeMm>(
            "edge_mm", "mm",
            "how far the coating falls short of the plate's edge; larger bares more glass; absent 1.6"),
        field<&T::holdMm>(
            "hold_mm", "mm",
            "radius of the bare corner where fingers held the plate; larger bares more; absent 5"),
        field<&T::veil>(
            "veil", "density",
            "fog of the chemistry, gathering towards the edge; larger is a hazier plate; absent 0.06"),
        field<&T::crystal>("crystal", "",
                           "how readily crystals grow in a pushed plate; larger sprinkles more"),
        field<&T::edgeRough>("edge_rough", "", "raggedness of the held corner; larger is more ragged"),
    };
    return kRows;
}

std::span<const Field<TricolorRegistration>> FieldTable<TricolorRegistration>::rows()
{
    using T = TricolorRegistration;
    static constexpr Field<T> kRows[] = {
        field<&T::shiftMm>("shift_mm", "mm", "spread of a plate's shift; larger is wider colour fringes"),
        field<&T::rotateDeg>(
            "rotate_deg", "degrees",
            "spread of a plate's turn; larger grows the fringes towards the edges; absent 0.15"),
        field<&T::scale>("scale", "share",
                         "spread of a plate's size; larger grows the fringes towards the edges"),
        field<&T::warpMm>("warp_mm", "mm",
                          "warp of the gelatine; larger makes the fringes wander more; absent 0.15"),
        field<&T::warpCellMm>("warp_cell_mm", "mm", "scale of that warp; larger is slower waves"),
        field<&T::margin>(
            "margin", "fraction of the side",
            "widest strip at each edge where a plate has no picture; larger is broader coloured bands"),
    };
    return kRows;
}

std::span<const Field<TricolorParams>> FieldTable<TricolorParams>::rows()
{
    using T = TricolorParams;
    static constexpr Field<T> kRows[] = {
        field<&T::filters>("filters", "",
                           "what each plate sees through its filter: r, g, b to shares of R, G, B; larger "
                           "off a plate's own colour is paler colour"),
        field<&T::plateEv>("plate_ev", "stops",
                           "exposure of each plate by r, g, b; larger lightens that colour in the picture"),
        field<&T::evJitter>(
            "ev_jitter", "stops",
            "spread of the error of that exposure; larger gives stronger casts from frame to frame"),
        field<&T::positive>("positive", "", "curve of the diapositives"),
        field<&T::registration>("registration", "", "how badly the three plates cover each other"),
        field<&T::projection>("projection", "",
                              "light of the three projectors, 3 x 3 (rows R, G, B of the picture); larger "
                              "off the diagonal is paler colour; absent: pure"),
    };
    return kRows;
}

} // namespace tamlo
