#include "workspace/autosave_slot.h"

namespace trensil {

void autosave_slot::start(recovery_session& session, recovery_kind kind) {
    if (!session.usable() || writer_) return;
    session_ = &session;
    kind_ = kind;
    window_ = session.next_window();
    copy_path_ = session.copy_path(kind_, original_, window_);
    writer_ = std::make_unique<recovery_writer>();
}

void autosave_slot::set_original(const std::string& path) {
    const std::string key = recovery_key_path(path);
    if (key == original_ && !copy_path_.empty()) return;
    original_ = key;
    if (!active()) return;
    if (copy_written_) writer_->remove(copy_path_);
    copy_written_ = false;
    copy_path_ = session_->copy_path(kind_, original_, window_);
}

void autosave_slot::write(std::string text) {
    if (!active()) return;
    writer_->write(copy_path_, std::move(text));
    copy_written_ = true;
    schedule_.taken();
}

void autosave_slot::poll(time_point now) {
    if (!active()) return;
    const auto result = writer_->take_result();
    if (!result) return;
    if (!result->ok) {
        last_error_ = result->error;
        schedule_.failed(now);
        return;
    }
    last_error_.clear();
    if (!adopted_.empty() && adopted_ != copy_path_) writer_->remove(adopted_);
    adopted_.clear();
}

void autosave_slot::discard() {
    schedule_.clean();
    if (!active()) return;
    if (copy_written_) writer_->remove(copy_path_);
    if (!adopted_.empty()) writer_->remove(adopted_);
    copy_written_ = false;
    adopted_.clear();
}

void autosave_slot::finish() {
    if (writer_) writer_->wait_idle();
}

std::optional<found_copy> autosave_slot::offer_copy(platform& ui, const std::string& path) const {
    if (!session_) return std::nullopt;
    for (const found_copy& copy : copies_to_offer(*session_, kind_, path))
        if (offer_recovery(ui, *session_, copy) == recovery_choice::recover) return copy;
    return std::nullopt;
}

}  // namespace trensil
