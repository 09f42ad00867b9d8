#pragma once

#include "app/capture/PelinorCamera.h"

#include <QDialog>
#include <QElapsedTimer>

class QDialogButtonBox;
class QLabel;
class QPushButton;

/// Shows what the camera sees, and takes a photo or a movie of it into a new file. Where there is no camera
/// it says so. Main thread.
class PelinorCaptureSheet final : public QDialog, private PelinorCameraListener {
    Q_OBJECT

public:
    enum class Kind { Photo, Movie };
    /// Names the new file, whose name ends as given.
    using NewPath = std::function<QString(const QString& suffix)>;

    PelinorCaptureSheet(Kind kind, std::unique_ptr<PelinorCamera> camera, NewPath newPath, QWidget* parent);
    ~PelinorCaptureSheet() override;

Q_SIGNALS:
    /// The file is whole. The sheet has closed.
    void captured(const QString& path);

private:
    class View;
    enum class State { Starting, Seeing, Recording, Saving, Failed };

    void cameraDidShow(const QImage& picture) override;
    void cameraDidRecord() override;
    void cameraDidFail(const QString& reason) override;
    void _capture();
    void _takePhoto();
    void _setState(State state);
    void _finish();

    const Kind m_kind;
    const NewPath m_newPath;
    std::unique_ptr<PelinorCamera> m_camera;
    State m_state = State::Starting;
    // Of the file that is being made.
    QString m_path;
    QElapsedTimer m_recordingTime;
    View* m_view;
    QLabel* m_sentence;
    QDialogButtonBox* m_buttons;
    QPushButton* m_captureButton;
};
