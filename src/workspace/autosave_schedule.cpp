#include "workspace/autosave_schedule.h"

namespace trensil {

void autosave_schedule::edited(clock::time_point now) {
    if (!first_unwritten_) first_unwritten_ = now;
    last_edit_ = now;
}

bool autosave_schedule::due(clock::time_point now) const {
    if (!first_unwritten_ || now < not_before_) return false;
    return now - last_edit_ >= quiet || now - *first_unwritten_ >= longest_wait;
}

void autosave_schedule::taken() {
    first_unwritten_.reset();
}

void autosave_schedule::failed(clock::time_point now) {
    if (!first_unwritten_) first_unwritten_ = now;
    not_before_ = now + retry_after;
}

void autosave_schedule::clean() {
    first_unwritten_.reset();
    not_before_ = {};
}

}  // namespace trensil
