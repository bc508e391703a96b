#pragma once

#include <QObject>

#include <array>
#include <vector>

class QAbstractScrollArea;
class QPlainTextEdit;
class QWidget;

namespace corvane {

/// The recipient boxes and the attachment list: one row high in the header, and on a double click as high as several
/// rows, lying over the rows below. Heights are told in twips at the normal font; a row follows the font.
class GrowingBoxes : public QObject {
    Q_OBJECT

public:
    static constexpr int OneRow = 300;
    static constexpr int LargeBox = 1500;
    static constexpr int LargeList = 2100;

    /// @p header holds the boxes in its layout; @p ground is an ancestor of it that a box may cover.
    GrowingBoxes(const std::array<QPlainTextEdit *, 3> &boxes, QAbstractScrollArea *list, QWidget *header,
                 QWidget *ground);

    /// What a double click on that box does.
    void toggle(QWidget *box);
    /// The height that a box has been given, in twips.
    [[nodiscard]] int height(const QWidget *box) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Box {
        QAbstractScrollArea *box;
        QWidget *place; ///< keeps the box's row in the layout
        int large;
        int twips = OneRow;
    };

    void add(QAbstractScrollArea *box, int large);
    void setHeight(Box &box, int twips);
    /// A box of one row is the header's, where its label is; a higher one lies on the ground, over all else.
    void moveTo(const Box &box, QWidget *parent) const;
    void measure();
    void arrange(const Box &box) const;
    [[nodiscard]] Box *find(const QWidget *box);

    std::vector<Box> m_boxes; ///< the list is the last one
    QWidget *m_header;
    QWidget *m_ground;
    int m_row = 20;
};

} // namespace corvane
