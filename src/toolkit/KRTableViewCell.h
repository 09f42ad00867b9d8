#pragma once

#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <optional>

class KRTableView;

/// One row of a table on screen. The table owns it, places it, and hands it out again for another row when
/// its own has scrolled away. Main thread.
class KRTableViewCell : public QWidget {
    Q_OBJECT

public:
    /// The identifier names the pool the cell waits in while it is idle.
    explicit KRTableViewCell(QString reusableIdentifier);
    ~KRTableViewCell() override;

    const QString& reusableIdentifier() const { return m_reusableIdentifier; }

    KRTableView* tableView() const;
    void setTableView(KRTableView* tableView);
    qint64 row() const { return m_row; }
    void setRow(qint64 row) { m_row = row; }

    /// Whether its row is the table's selected one.
    [[nodiscard]] bool selected() const;
    /// Does what Return, Space and a screen reader's press mean on the row. False when they mean nothing, and
    /// Space turns the page.
    virtual bool activate() { return false; }

    /// What else can be done with the row, by the names assistive technology offers it under.
    [[nodiscard]] virtual QStringList actionNames() const { return {}; }
    virtual void performAction(const QString& /*name*/) { }

    /// A part of a row that has the keyboard's focus: what the row shows, and which part of that.
    struct FocusedPart {
        QString content;
        qsizetype number = 0;
    };
    [[nodiscard]] virtual std::optional<FocusedPart> focusedPart() const { return std::nullopt; }
    /// Gives the focus to the part. False when the cell does not show it.
    virtual bool focusPart(const FocusedPart& /*part*/) { return false; }

    /// Called when the cell has gained or lost the selection, for subclasses to redraw.
    virtual void selectedStateDidChange() { }

protected:
    /// Selects the cell's row once the subclass has had the press. Whatever the selection sets off may have
    /// destroyed the cell by the time this returns.
    void mousePressEvent(QMouseEvent* event) override;
    /// Tab leaves the whole table, whose only stop the selected row is.
    bool focusNextPrevChild(bool next) override;

private:
    const QString m_reusableIdentifier;
    QPointer<KRTableView> m_tableView;
    qint64 m_row = 0;
};
