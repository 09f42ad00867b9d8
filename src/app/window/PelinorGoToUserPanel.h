#pragma once

#include <QDialog>
#include <QStringList>

class QComboBox;

/// The sheet that asks whose page to go to. What is typed is completed from the people one knows. Main
/// thread.
class PelinorGoToUserPanel : public QDialog {
    Q_OBJECT

public:
    explicit PelinorGoToUserPanel(QWidget* parent);
    ~PelinorGoToUserPanel() override;

    /// Opens the sheet empty, with these names to choose from.
    void goToUser(const QStringList& usernames);
    QComboBox& comboBox() { return *m_comboBox; }

    /// Ends the sheet and says who was asked for; nothing without a name.
    void goToUserAction();
    void goToUserCancel();

Q_SIGNALS:
    void userChosen(const QString& username);

private:
    QComboBox* m_comboBox = nullptr;
};
