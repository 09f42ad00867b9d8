#pragma once

#include <QWidget>

#include <functional>

class KRActiveTextView;
class PelinorUserDetails;
class QPushButton;
struct PelinorScreenEnvironment;

/// Who a person is, and what an account can do with them. Shows what the details know so far; what the person
/// wrote is plain text, its links aside. Main thread.
class PelinorUserHeaderView : public QWidget {
    Q_OBJECT

public:
    explicit PelinorUserHeaderView(QWidget* parent = nullptr);
    ~PelinorUserHeaderView() override;

    void showDetails(const PelinorUserDetails& details, int fontSizePreference);
    void setLinkHandler(std::function<void(const QString& text, int type)> handler);

Q_SIGNALS:
    void retryClicked();
    void followClicked();
    void mentionClicked();
    void directMessageClicked();
    void homePageClicked();

protected:
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    class Line;
    class Picture;

    void _showFollowing(const PelinorUserDetails& details);
    void _updateColors();

    Picture* m_picture = nullptr;
    Line* m_fullName = nullptr;
    Line* m_username = nullptr;
    Line* m_counts = nullptr;
    KRActiveTextView* m_bio = nullptr;
    QPushButton* m_homePage = nullptr;
    Line* m_state = nullptr;
    QPushButton* m_retryButton = nullptr;
    QPushButton* m_followButton = nullptr;
    QPushButton* m_mentionButton = nullptr;
    QPushButton* m_messageButton = nullptr;
};
