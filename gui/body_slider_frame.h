// Frame_move_body: the bar pairs that nudge the current body, each under its caption, the
// coarse bar (item 0) beside the fine bar (item 1), and "Use small step". A bar rests at 0; an
// arrow click moves it to +1 or -1, which the workspace turns into one step and resets.
//
//   auto* sliders = new body_slider_frame(ws);
#pragma once

#include <QGroupBox>

namespace trensil {

struct modelling_workspace;

class body_slider_frame : public QGroupBox {
    Q_OBJECT
public:
    explicit body_slider_frame(modelling_workspace& ws, QWidget* parent = nullptr);
};

}  // namespace trensil
