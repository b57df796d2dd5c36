// The graph area of the modelling window: the magnetic and gravity frames with their two graphs
// each, the section with the inversion limit strip above it, the plan in the section's place, and
// the splitters between them. The window's logic lays the area out (workspace/graph_layout.h) and
// places each part through the window's set_geometry; this widget only forwards the pointer,
// the bars and the Delete key to the logic.
#pragma once

#include <QWidget>
#include <array>

#include "graph_widget.h"
#include "workspace/modelling_workspace.h"

class QFrame;

namespace trensil {

class graph_area : public QWidget {
    Q_OBJECT
public:
    graph_area(modelling_workspace& ws, QWidget* parent = nullptr);

    graph_widget* graph(int index) const { return graphs_[static_cast<std::size_t>(index)]; }
    graph_widget* plan() const { return plan_; }
    // Places a part named by the logic, `rect` in pixels within its container. A graph is
    // placed with its zoom and pan bars beside it; the limit strip leaves room for half a
    // marker at each end. False for a name that is not a part of the area.
    bool place(const QString& name, const QRect& rect);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* graph_row(int index, QWidget* parent);
    QFrame* frame(const QString& name);
    // Half a marker's width in pixels.
    int half_marker() const;

    modelling_workspace& ws_;
    std::array<graph_widget*, graph_count> graphs_{};
    graph_widget* plan_ = nullptr;
};

}  // namespace trensil
