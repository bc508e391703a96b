#pragma once

#include <QApplication>
#include <QFont>

/// Doubles the application's font while it lives.
class DoubleFont {
public:
    DoubleFont() : m_before(QApplication::font())
    {
        QFont font = m_before;
        font.setPointSizeF(font.pointSizeF() * 2);
        QApplication::setFont(font);
    }
    ~DoubleFont() { QApplication::setFont(m_before); }
    DoubleFont(const DoubleFont &) = delete;
    DoubleFont &operator=(const DoubleFont &) = delete;

private:
    QFont m_before;
};
