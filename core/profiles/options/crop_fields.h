// The field table of a crop, for documents that hold one.
#pragma once

#include "core/profiles/formats/field_table.h"
#include "core/profiles/options/crop.h"

namespace tamlo {

template <>
struct FieldTable<Crop> {
    static std::span<const Field<Crop>> rows();
};

} // namespace tamlo
