#pragma once

#include "app/lists/PelinorStatusCellGeometry.h"
#include "foundation/KRNotificationCenter.h"
#include "model/records/TwitterStatus.h"
#include "text/render/KRActiveTextRenderer.h"
#include "text/render/KRActiveTextStyle.h"
#include "toolkit/KRActiveTextTracker.h"
#include "toolkit/KRTableViewCell.h"

class KRTextHeightCache;
struct PelinorCellColors;
struct PelinorDisplayPreferences;

/// What a cell needs to know beside the status to lay it out.
struct PelinorStatusCellLayout {
    /// Posted by the account the list belongs to.
    bool isMine = false;
    KRStatusTextSize textSize = KRStatusTextSize::Normal;
};

/// Hears what the user does in a cell. Main thread.
class PelinorCellDelegate {
public:
    virtual ~PelinorCellDelegate() = default;
    /// The type is that of KRAdditions::activeStringType(); a user name comes without its "@".
    virtual void pelinorCellClickedLink(KRTableViewCell& cell, const QString& link, qint64 row, int type) = 0;
};

/// A post in a list: picture, name, how long ago, text. It draws itself; there are no widgets inside.
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
    /// Reads the clock again for how long ago the status is.
    void updateDate();

    void selectedStateDidChange() override { update(); }
    [[nodiscard]] std::optional<FocusedPart> focusedPart() const override;
    bool focusPart(const FocusedPart& part) override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    enum class Tone { Normal, Selected, Dimmed };

    Tone _tone() const;
    void _setTextInTone(Tone tone);
    QColor _inTone(const QColor& color) const;
    PelinorStatusCellGeometry _geometry() const;
    const PelinorCellColors& _colors() const;
    void _layOutText();
    void _describeForAccessibility();
    void _drawBackground(QPainter& painter) const;
    void _drawName(QPainter& painter) const;
    void _drawDate(QPainter& painter) const;

    KRNotificationCenter& m_notifications;
    KRObservation m_userObservation;
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
};
