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
    /// Shows the item's title as it is now.
    explicit KRNavigationBarBreadcrumbItemView(std::shared_ptr<KRNavigationItem> item);
    ~KRNavigationBarBreadcrumbItemView() override;

    /// What a click calls. The target outlives the crumb.
    template <class Target>
    void setTarget(Target* target, void (Target::*action)(const KRNavigationBarBreadcrumbItemView& crumb))
    {
        m_action
            = [target, action](const KRNavigationBarBreadcrumbItemView& crumb) { (target->*action)(crumb); };
    }

    const std::shared_ptr<KRNavigationItem>& navigationItem() const { return m_navigationItem; }
    /// Leaves the text as it is.
    void setNavigationItem(std::shared_ptr<KRNavigationItem> item) { m_navigationItem = std::move(item); }
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
    std::function<void(const KRNavigationBarBreadcrumbItemView& crumb)> m_action;
    struct {
        bool selected : 1;
    } m_flags {};
};
