#pragma once
// Shows one tab's grid store in a table view: the grid's row 1 is the view's row 0, its column 1
// the view's column 0; the grid's column 0 (the row header) becomes the view's vertical header.

#include "spread/Grid.h"

#include <QAbstractTableModel>
#include <QColor>

namespace spread {

// The colours a tab's grid is painted in. Day colours come from the tab's settings
// (cgridcolor, cgridobjcolor, cfontcolor, TargetColor); in night vision the background is dark
// red, the font colour fixed, and the row colours are not applied.
struct GridColours
{
    QColor back{255, 255, 128};     // cgridcolor "8454143"
    QColor objectBack{0, 255, 128}; // cgridobjcolor "8453888", behind the ObjectID column
    QColor fore{0, 0, 0};           // cfontcolor "0"
    QColor target{255, 127, 128};   // TargetColor "8421631"
    bool night = false;
};

// A colour kept in the settings as the platform's number: red in the low byte, then green,
// then blue.
QColor ColourFromSetting(long value);

inline const QColor NightGridBack{80, 0, 0};
inline const QColor NightGridFore{200, 40, 40};

class GridModel : public QAbstractTableModel
{
public:
    explicit GridModel(QObject* parent = nullptr) : QAbstractTableModel(parent) {}

    // The grid this model shows; nullptr shows an empty grid. The grid stays owned by the
    // caller and must outlive the model or be replaced first.
    void SetGrid(const Grid* grid);
    const Grid* GetGrid() const { return grid_; }
    // Tells the view that the grid's rows or texts changed (after a load, a sort, a Clip).
    void Reset();
    // Tells the view that the texts of one grid row (from 1) changed; rows and selection stay.
    void RowChanged(int row);

    void SetColours(const GridColours& colours);
    const GridColours& Colours() const { return colours_; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const Grid* grid_ = nullptr;
    GridColours colours_;
};

} // namespace spread
