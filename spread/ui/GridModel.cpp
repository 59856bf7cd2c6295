#include "spread/ui/GridModel.h"

namespace spread {

namespace {

constexpr int kObjectIdCol = 4;
constexpr int kPlanCol = 1;

Qt::Alignment AlignmentOf(HAlign align)
{
    switch (align) {
    case HAlign::Left:
        return Qt::AlignLeft | Qt::AlignVCenter;
    case HAlign::Center:
        return Qt::AlignHCenter | Qt::AlignVCenter;
    case HAlign::Right:
        return Qt::AlignRight | Qt::AlignVCenter;
    case HAlign::General:
        break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

} // namespace

QColor ColourFromSetting(long value)
{
    return QColor(static_cast<int>(value & 0xFF), static_cast<int>((value >> 8) & 0xFF),
                  static_cast<int>((value >> 16) & 0xFF));
}

void GridModel::SetGrid(const Grid* grid)
{
    beginResetModel();
    grid_ = grid;
    endResetModel();
}

void GridModel::Reset()
{
    beginResetModel();
    endResetModel();
}

void GridModel::RowChanged(int row)
{
    if (row < 1 || row > rowCount())
        return;
    emit dataChanged(index(row - 1, 0), index(row - 1, columnCount() - 1));
}

void GridModel::SetColours(const GridColours& colours)
{
    colours_ = colours;
    if (rowCount() > 0)
        emit dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
}

int GridModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() || !grid_ ? 0 : grid_->MaxRows();
}

int GridModel::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : kGridCols;
}

QVariant GridModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid())
        return {};
    const int row = index.row() + 1;
    const int col = index.column() + 1;
    switch (role) {
    case Qt::DisplayRole:
        return grid_ ? QString::fromUtf8(grid_->Text(row, col)) : QString();
    case Qt::TextAlignmentRole:
        return grid_ ? QVariant(AlignmentOf(grid_->TypeHAlign(col))) : QVariant();
    case Qt::BackgroundRole:
        if (colours_.night)
            return NightGridBack;
        if (grid_ && grid_->HighlightCol() == col)
            return colours_.target;
        return col == kObjectIdCol ? colours_.objectBack : colours_.back;
    case Qt::ForegroundRole:
        if (colours_.night)
            return NightGridFore;
        if (grid_ && grid_->CellSuppressed(row, col))
            return col == kObjectIdCol ? colours_.objectBack : colours_.back;
        if (grid_ && col == kPlanCol && grid_->ZeroSuppression() != 0 &&
            grid_->Text(row, col) == "X*")
            return QColor(255, 0, 0);
        return colours_.fore;
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    if (orientation == Qt::Horizontal)
        return grid_ ? QString::fromStdString(grid_->Header(section + 1)) : QString();
    return section + 1;
}

} // namespace spread
