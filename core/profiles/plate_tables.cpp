#include "core/profiles/profile_tables.h"

namespace tamlo {

std::span<const Field<NegativeLayer>> FieldTable<NegativeLayer>::rows()
{
    using T = NegativeLayer;
    static constexpr Field<T> kRows[] = {
        requiredField<&T::dmin>(
            "dmin", "density",
            "base and fog: density where no light fell; drops out of a print from a negative, but larger "
            "veils and, where the layers differ, tints slides and instant film; 0.05 to 0.98 in use"),
        requiredField<&T::dmax>("dmax", "density",
                                "density that the shoulder nears, above dmin; larger separates the "
                                "highlights of a negative longer and deepens the black of a slide; 1.55 to "
                                "2.3 on instant film, 2 to 3.1 on negatives, 3.2 to 3.8 on slides in use"),
        requiredField<&T::gamma>("gamma", "density per log exposure",
                                 "slope at middle grey, above 0; larger is more contrast; 0.5 to 0.8 on most "
                                 "negatives, 1 to 1.6 on slides and instant film in use"),
        field<&T::toe>("toe", "",
                       "shape of the curve, above 0; larger bends the shadows sooner and more softly and "
                       "keeps the highlights straight longer; 0.35 to 1.9 in use, absent 1.6 on silver, 1.5 "
                       "on colour negatives, 1.2 on slides"),
        field<&T::midDensity>(
            "mid_density", "density",
            "density of a grey card above dmin, above 0 and below dmax - dmin; larger puts grey further from "
            "the foot: more room for shadows, less for highlights; 0.84 to 0.95 in use, absent 0.95 on "
            "silver, 0.85 on colour negatives, 0.745 on slides"),
        field<&T::dmaxIntensified>("dmax_intensified", "density",
                                   "dmax of wet collodion at the option intensify 1; larger lets intensified "
                                   "light parts grow denser; 4.2 in use"),
    };
    return kRows;
}

std::span<const Field<DryPlateParams>> FieldTable<DryPlateParams>::rows()
{
    using T = DryPlateParams;
    static constexpr Field<T> kRows[] = {
        field<&T::edgeMm>("edge_mm", "mm",
                          "width of the thick rim of the coating; larger is a wider rim; 3 in use"),
        field<&T::edgeGain>("edge_gain", "share",
                            "extra thickness of the rim, which takes more light; larger is a darker rim on "
                            "the negative; 0.35 in use, absent 0.12"),
        field<&T::edgeFog>("edge_fog", "density",
                           "fog for each unit of extra thickness; larger veils the rim more; 0.35 in use"),
        field<&T::frillMm>(
            "frill_mm", "mm",
            "depth of the frilling where gelatine lifted; larger reaches further in; 1.2 in use"),
        field<&T::frill>(
            "frill", "",
            "strength of the frilling; larger ripples more of that depth, 0 is none; 0.5 in use"),
        field<&T::waveMm>("wave_mm", "mm",
                          "scale on which the rim's width wanders; larger is a calmer edge; 6 in use"),
    };
    return kRows;
}

std::span<const Field<CollodionParams>> FieldTable<CollodionParams>::rows()
{
    using T = CollodionParams;
    static constexpr Field<T> kRows[] = {
        field<&T::slope>("slope", "share",
                         "how much thicker the film of collodion is at the pouring corner; larger darkens "
                         "the negative towards it; 0.1 in use"),
        field<&T::crescent>(
            "crescent", "share",
            "thickness of the crescent that pouring leaves; larger draws it more clearly; 0.1 in use"),
        field<&T::wander>(
            "wander", "share",
            "waves in the thickness along the pour; larger is more uneven; 0.028 in use, absent 0.035"),
        field<&T::edgeMm>("edge_mm", "mm",
                          "how far the coating falls short of the plate's edge; larger bares more glass; 0.9 "
                          "in use, absent 1.6"),
        field<&T::holdMm>("hold_mm", "mm",
                          "radius of the bare corner where fingers held the plate; larger bares more; 1.6 in "
                          "use, absent 5"),
        field<&T::veil>("veil", "density",
                        "fog of the chemistry, gathering towards the edge; larger is a hazier plate; 0.022 "
                        "in use, absent 0.06"),
        field<&T::crystal>("crystal", "",
                           "how readily crystals grow in a pushed plate; larger sprinkles more; 0.5 in use"),
        field<&T::edgeRough>("edge_rough", "",
                             "raggedness of the held corner; larger is more ragged; 0.6 in use"),
    };
    return kRows;
}

std::span<const Field<TricolorRegistration>> FieldTable<TricolorRegistration>::rows()
{
    using T = TricolorRegistration;
    static constexpr Field<T> kRows[] = {
        field<&T::shiftMm>("shift_mm", "mm",
                           "spread of a plate's shift; larger is wider colour fringes; 0.25 in use"),
        field<&T::rotateDeg>(
            "rotate_deg", "degrees",
            "spread of a plate's turn; larger grows the fringes towards the edges; 0.12 in use, absent 0.15"),
        field<&T::scale>(
            "scale", "share",
            "spread of a plate's size; larger grows the fringes towards the edges; 0.003 in use"),
        field<&T::warpMm>(
            "warp_mm", "mm",
            "warp of the gelatine; larger makes the fringes wander more; 0.12 in use, absent 0.15"),
        field<&T::warpCellMm>("warp_cell_mm", "mm", "scale of that warp; larger is slower waves; 15 in use"),
        field<&T::margin>("margin", "fraction of the side",
                          "widest strip at each edge where a plate has no picture; larger is broader "
                          "coloured bands; 0.015 in use"),
    };
    return kRows;
}

std::span<const Field<TricolorParams>> FieldTable<TricolorParams>::rows()
{
    using T = TricolorParams;
    static constexpr Field<T> kRows[] = {
        field<&T::filters>("filters", "",
                           "what each plate sees through its filter: r, g, b to shares of R, G, B; larger "
                           "off a plate's own colour is paler colour; 0.8 to 0.86 of its own in use"),
        field<&T::plateEv>("plate_ev", "stops",
                           "exposure of each plate by r, g, b; larger lightens that colour in the picture; "
                           "-0.45 to 0.1 in use"),
        field<&T::evJitter>("ev_jitter", "stops",
                            "spread of the error of that exposure; larger gives stronger casts from frame to "
                            "frame; 0.12 in use"),
        field<&T::positive>("positive", "", "curve of the diapositives"),
        field<&T::registration>("registration", "", "how badly the three plates cover each other"),
        field<&T::projection>("projection", "",
                              "light of the three projectors, 3 x 3 (rows R, G, B of the picture); larger "
                              "off the diagonal is paler colour; diagonal 0.9 to 0.92 in use, absent: pure"),
    };
    return kRows;
}

} // namespace tamlo
