#include "core/body_record.h"

namespace trensil {

parameter& body_definition::property(int index) {
    parameter* const all[body_property_count] = {
        &distance, &top,    &strike, &dip,   &plunge, &slope, &width,  &depth_extent,
        &length,   &offset, &susc,   &rem_q, &rem_d,  &rem_i, &density};
    return *all[index];
}

const parameter& body_definition::property(int index) const {
    return const_cast<body_definition*>(this)->property(index);
}

}  // namespace trensil
