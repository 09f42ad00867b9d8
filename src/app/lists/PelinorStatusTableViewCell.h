#pragma once

#include "app/lists/PelinorStatusCellGeometry.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterStatus.h"
#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/KRActiveTextTracker.h"
#include "toolkit/KRTableViewCell.h"

#include <memory>
#include <optional>
#include <vector>

class KRTextHeightCache;
struct PelinorCellColors;
struct PelinorDisplayPreferences;

/// What a cell needs to know beside the status to lay it out.
struct PelinorStatusCellLayout {
    /// Posted by the account the list belongs to.
    bool isMine = false;
    KRStatusTextSize textSize = KRStatusTextSize::Normal;
};

class PelinorStatusTableViewCell;
class QMenu;

/// Hears what the user does in a cell. Main thread.
class PelinorCellDelegate {
public:
    PelinorCellDelegate() = default;
    PelinorCellDelegate(const PelinorCellDelegate&) = delete;
    PelinorCellDelegate& operator=(const PelinorCellDelegate&) = delete;
    virtual ~PelinorCellDelegate() = default;

    // With the status that was shown when the user began: a cell may show another one before a menu is closed.
    virtual void pelinorStatusCellReplyToStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellRepostStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellPostLinkToStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellDirectMessageUser(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellToggleFavoriteForStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellDestroyStatus(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorStatusCellViewOnTwitter(PelinorStatusTableViewCell& cell,
        const TwitterStatusPtr& status)
        = 0;
    virtual void pelinorCellStatusDetails(KRTableViewCell& cell, qint64 row) = 0;
    virtual void pelinorCellFromUserDetailsForRow(KRTableViewCell& cell, qint64 row) = 0;
    /// The type is that of KRAdditions::activeStringType(); a user name comes without its "@".
    virtual void pelinorCellClickedLink(KRTableViewCell& cell, const QString& link, qint64 row, int type) = 0;
};

/// A post in a list: picture, name, how long ago, text, and two buttons while the pointer is over it or it is
/// selected. It draws itself; there are no widgets inside.
class PelinorStatusTableViewCell : public KRTableViewCell {
    Q_OBJECT

public:
    explicit PelinorStatusTableViewCell(KRNotificationCenter& notifications);
    ~PelinorStatusTableViewCell() override;

    static QString identifier();

    /// The height of the status's row in a table of that width.
    static int heightForStatus(const TwitterStatus& status,
        int tableWidth,
        PelinorStatusCellLayout layout,
        const PelinorDisplayPreferences& preferences,
        KRTextHeightCache& heights);

    /// What a screen reader says of a status: who, what, and how long ago.
    static QString accessibleNameForStatus(const TwitterStatus& status);

    /// Not owned; it outlives the table.
    void setDelegate(PelinorCellDelegate* delegate) { m_delegate = delegate; }
    const TwitterStatusPtr& status() const { return m_status; }
    /// Shows the status. It draws the preferences as they are now.
    void setStatus(const TwitterStatusPtr& status,
        PelinorStatusCellLayout layout,
        const PelinorDisplayPreferences& preferences);
    /// Whether a star says that it is a favourite.
    [[nodiscard]] bool isFavorite() const { return m_isFavorite; }
    void setIsFavorite(bool isFavorite);
    /// Whether it stands out from the posts around it.
    void setIsHighlighted(bool isHighlighted);
    /// Where a window that answers the post grows from, on the screen.
    [[nodiscard]] QPoint replyPoint() const;
    /// What can be done with the post. The caller owns it.
    [[nodiscard]] std::unique_ptr<QMenu> menuForAction();
    /// Reads the clock again for how long ago the status is.
    void updateDate();

    void selectedStateDidChange() override { update(); }
    [[nodiscard]] std::optional<FocusedPart> focusedPart() const override;
    bool focusPart(const FocusedPart& part) override;
    [[nodiscard]] QStringList actionNames() const override;
    void performAction(const QString& name) override;

protected:
    bool event(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    enum class Tone { Normal, Selected, Dimmed };
    enum class Part { None, ReplyButton, ActionButton, Picture };
    using Action = void (PelinorCellDelegate::*)(PelinorStatusTableViewCell&, const TwitterStatusPtr&);
    struct MenuItem;
    std::vector<MenuItem> _menuItems() const;

    Tone _tone() const;
    void _setTextInTone(Tone tone);
    QColor _inTone(const QColor& color) const;
    PelinorStatusCellGeometry _geometry() const;
    const PelinorCellColors& _colors() const;
    void _layOutText();
    struct Author {
        QString username;
        QString fullName;
        TwitterProfileImagePtr picture;

        bool operator==(const Author& other) const = default;
    };
    Author _author() const;
    void _authorDidUpdate();
    void _describeForAccessibility();
    void _drawBackground(QPainter& painter) const;
    void _drawName(QPainter& painter) const;
    void _drawDate(QPainter& painter) const;
    void _drawButtons(QPainter& painter) const;
    [[nodiscard]] Part _partAt(QPoint position) const;
    [[nodiscard]] QRect _rectOf(Part part) const;
    void _setHovered(bool isHovered, Part part);
    void _click(Part part);
    void _popUpMenu(QPoint position);

    KRNotificationCenter& m_notifications;
    KRObservation m_userObservation;
    // What was drawn of the author; nothing before the first painting, which asks for the picture.
    std::optional<Author> m_drawnAuthor;
    TwitterStatusPtr m_status;
    PelinorStatusCellLayout m_layout;
    int m_fontSizePreference = 0;
    bool m_showsUserName = false;
    bool m_dimsReadStatuses = false;
    QString m_date;
    KRActiveTextRenderer m_text;
    Tone m_textTone = Tone::Normal;
    KRActiveTextTracker* m_tracker;
    PelinorCellDelegate* m_delegate = nullptr;
    bool m_isFavorite = false;
    bool m_isHighlighted = false;
    bool m_isHovered = false;
    Part m_hoveredPart = Part::None;
    Part m_pressedPart = Part::None;
};
