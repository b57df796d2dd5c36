// Frame_body: the current body on the Bodies tab. HScroll_body picks the body, Grid_body shows it
// as a table with its overlaid edit box and type list, the fields below hold its name, colour
// (a double click opens the colour chooser), rock type and description, and Frame_cylinder the
// mesh of a cylinder (shown for a cylinder only). Every event goes to the workspace's handlers.
//
//   auto* frame = new body_frame(ws);
//   connect(frame, &body_frame::type_chosen, ...);   // the body type picked on the table
#pragma once

#include <QGroupBox>

namespace trensil {

struct modelling_workspace;
class body_table_widget;

class body_frame : public QGroupBox {
    Q_OBJECT
public:
    explicit body_frame(modelling_workspace& ws, QWidget* parent = nullptr);
    body_table_widget* table() const { return table_; }

signals:
    // Combo_model_type chose body type `type` (1, 2 or 16) for the current body.
    void type_chosen(int type);

private:
    body_table_widget* table_;
};

}  // namespace trensil
