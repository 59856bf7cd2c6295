#pragma once
// A table whose first columns stay in view while it scrolls sideways. A second view lies over
// the left edge and shows those columns of the same model and selection; it scrolls up and down
// with the table, and clicks on it reach the table's own signals.

#include <QTableView>

namespace spread {

class FrozenTableView : public QTableView
{
public:
    explicit FrozenTableView(int frozenColumns, QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;

    // Hides or shows a row in both views.
    void SetRowHidden(int row, bool hidden);
    // Copies the widths and hidden states of the frozen columns after the table's changed.
    void SyncFrozenColumns();

    QTableView& FrozenView() { return *frozen_; }
    // The width the frozen columns take at the left of the viewport, pixels.
    int FrozenWidth() const;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void updateGeometries() override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;

private:
    void PlaceFrozenView();

    int frozenColumns_;
    QTableView* frozen_;
    bool following_ = false; // the frozen view is being moved to the table's row
};

} // namespace spread
