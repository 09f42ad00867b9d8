#pragma once

#include <QColor>
#include <QFont>
#include <QWidget>

#include <functional>
#include <memory>

class KRNavigationItem;

/// One crumb: the title of a screen, cut to its first 15 characters, and a divider after it. A click, or
/// Space or Return while it has the focus, acts. Main thread.
class KRNavigationBarBreadcrumbItemView : public QWidget {
    Q_OBJECT

public:
    using Action = std::function<void(const KRNavigationBarBreadcrumbItemView& crumb)>;

    /// Shows the item's title as it is now.
    KRNavigationBarBreadcrumbItemView(std::shared_ptr<KRNavigationItem> item, Action action);
    ~KRNavigationBarBreadcrumbItemView() override;

    const std::shared_ptr<KRNavigationItem>& navigationItem() const { return m_navigationItem; }
    /// The whole title.
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    /// What is drawn of a title: at most 15 UTF-16 units, never half a character or one without its marks.
    [[nodiscard]] static QString shownTitle(const QString& title);
    [[nodiscard]] static int widthForTitle(const QString& title);

    struct Attributes {
        QFont font;
        QColor color;
    };
    /// The embossed ones are those of the light shadow below the text.
    enum class Embossed { No, Yes };
    static Attributes attributesEmbossed(Embossed embossed, bool selected);

    /// Whether the mouse is held down on it.
    [[nodiscard]] bool isSelected() const { return m_flags.selected; }
    /// Does what a click does.
    void click();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void _setSelected(bool selected);
    void _drawTitle(QPainter& painter, Embossed embossed, int top) const;

    std::shared_ptr<KRNavigationItem> m_navigationItem;
    QString m_text;
    Action m_action;
    struct {
        bool selected : 1;
    } m_flags {};
};
