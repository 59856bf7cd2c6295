#include "spread/ui/FrozenTableView.h"

#include <QHeaderView>
#include <QScrollBar>

namespace spread {

FrozenTableView::FrozenTableView(int frozenColumns, QWidget* parent)
    : QTableView(parent), frozenColumns_(frozenColumns), frozen_(new QTableView(this))
{
    frozen_->setObjectName("frozenColumns");
    frozen_->setFocusPolicy(Qt::NoFocus);
    frozen_->setFrameShape(QFrame::NoFrame);
    frozen_->verticalHeader()->hide();
    frozen_->horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    frozen_->horizontalHeader()->setHighlightSections(false);
    frozen_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    frozen_->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    frozen_->setSelectionBehavior(SelectRows);
    frozen_->setEditTriggers(NoEditTriggers);
    frozen_->setContextMenuPolicy(Qt::CustomContextMenu);
    // Both views scroll a row at a time, so their vertical scroll bars count the same rows;
    // sideways the table scrolls by pixels, so that a column slides under the frozen ones.
    setHorizontalScrollMode(ScrollPerPixel);
    viewport()->stackUnder(frozen_);

    connect(horizontalHeader(), &QHeaderView::sectionResized, this,
            [this](int column, int, int size) {
                if (column < frozenColumns_) {
                    frozen_->setColumnWidth(column, size);
                    PlaceFrozenView();
                }
            });
    connect(verticalHeader(), &QHeaderView::sectionResized, frozen_,
            [this](int row, int, int size) { frozen_->setRowHeight(row, size); });
    // The table leads: its row is copied to the frozen view, also when the frozen view's range
    // catches up after a reset, while the frozen view's own scrolling (the wheel over it) moves
    // the table, never a value the frozen view's range clamped.
    const auto follow = [this] {
        following_ = true;
        frozen_->verticalScrollBar()->setValue(verticalScrollBar()->value());
        following_ = false;
    };
    connect(verticalScrollBar(), &QAbstractSlider::valueChanged, this, follow);
    connect(frozen_->verticalScrollBar(), &QAbstractSlider::rangeChanged, this, follow);
    connect(frozen_->verticalScrollBar(), &QAbstractSlider::valueChanged, this, [this](int row) {
        if (!following_)
            verticalScrollBar()->setValue(row);
    });
    connect(frozen_, &QTableView::clicked, this, &QTableView::clicked);
    connect(frozen_, &QTableView::doubleClicked, this, &QTableView::doubleClicked);
    connect(frozen_, &QWidget::customContextMenuRequested, this, [this](const QPoint& pos) {
        emit customContextMenuRequested(
            viewport()->mapFromGlobal(frozen_->viewport()->mapToGlobal(pos)));
    });
}

void FrozenTableView::setModel(QAbstractItemModel* model)
{
    QTableView::setModel(model);
    frozen_->setModel(model);
    frozen_->setSelectionModel(selectionModel());
    if (model)
        connect(model, &QAbstractItemModel::modelReset, this, [this] { SyncFrozenColumns(); });
    SyncFrozenColumns();
}

void FrozenTableView::SetRowHidden(int row, bool hidden)
{
    setRowHidden(row, hidden);
    frozen_->setRowHidden(row, hidden);
}

void FrozenTableView::SyncFrozenColumns()
{
    frozen_->verticalHeader()->setDefaultSectionSize(verticalHeader()->defaultSectionSize());
    const int columns = model() ? model()->columnCount() : 0;
    for (int column = 0; column < columns; ++column) {
        const bool kept = column < frozenColumns_;
        frozen_->setColumnHidden(column, !kept || isColumnHidden(column));
        if (kept)
            frozen_->setColumnWidth(column, columnWidth(column));
    }
    PlaceFrozenView();
}

int FrozenTableView::FrozenWidth() const
{
    int width = 0;
    const int columns = model() ? std::min(frozenColumns_, model()->columnCount()) : 0;
    for (int column = 0; column < columns; ++column)
        if (!isColumnHidden(column))
            width += columnWidth(column);
    return width;
}

void FrozenTableView::resizeEvent(QResizeEvent* event)
{
    QTableView::resizeEvent(event);
    PlaceFrozenView();
}

void FrozenTableView::updateGeometries()
{
    QTableView::updateGeometries();
    PlaceFrozenView();
}

void FrozenTableView::scrollTo(const QModelIndex& index, ScrollHint hint)
{
    if (!index.isValid())
        return;
    // A frozen cell is always in view sideways: only the rows move.
    // A layout still waiting (after a reload) would leave the scroll range behind the rows.
    executeDelayedItemsLayout();
    const int across = horizontalScrollBar()->value();
    QTableView::scrollTo(index, hint);
    if (index.column() < frozenColumns_) {
        horizontalScrollBar()->setValue(across);
        return;
    }
    // A cell that lies under the frozen columns is brought out beside them.
    const int hiddenBy = FrozenWidth() - visualRect(index).left();
    if (hiddenBy > 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - hiddenBy);
}

void FrozenTableView::PlaceFrozenView()
{
    frozen_->horizontalHeader()->setFixedHeight(horizontalHeader()->height());
    frozen_->setGeometry(verticalHeader()->width() + frameWidth(), frameWidth(), FrozenWidth(),
                         viewport()->height() + horizontalHeader()->height());
}

} // namespace spread
