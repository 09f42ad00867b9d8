#pragma once

#include <QAbstractButton>

/// The column of the gallery's pages. One is chosen at a time, by a click or by the arrow keys.
class GallerySidebar : public QWidget {
    Q_OBJECT

public:
    static constexpr int Width = 172;

    GallerySidebar(const QStringList& titles, QWidget* parent);

    int currentPage() const { return m_currentPage; }
    void setCurrentPage(int page);

Q_SIGNALS:
    void pageChosen(int page);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<QAbstractButton*> m_buttons;
    int m_currentPage = 0;
};
