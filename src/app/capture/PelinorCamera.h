#pragma once

#include <QImage>
#include <QString>

#include <functional>
#include <memory>

/// Hears what a camera sees. Main thread.
class PelinorCameraListener {
public:
    PelinorCameraListener() = default;
    PelinorCameraListener(const PelinorCameraListener&) = delete;
    PelinorCameraListener& operator=(const PelinorCameraListener&) = delete;
    virtual ~PelinorCameraListener() = default;

    /// The next of the moving pictures.
    virtual void cameraDidShow(const QImage& picture) = 0;
    /// The movie is whole.
    virtual void cameraDidRecord() = 0;
    /// Nothing more comes.
    virtual void cameraDidFail(const QString& reason) = 0;
};

/// Something that sees. Only the listener is called, and never within one of these calls. Main thread.
class PelinorCamera {
public:
    PelinorCamera() = default;
    PelinorCamera(const PelinorCamera&) = delete;
    PelinorCamera& operator=(const PelinorCamera&) = delete;
    virtual ~PelinorCamera() = default;

    /// Shows what it sees until it is destroyed. The listener outlives it.
    virtual void start(PelinorCameraListener& listener) = 0;
    /// What the names of its movies end in, as "mp4".
    [[nodiscard]] virtual QString movieSuffix() const = 0;
    /// Begins a movie in a new file.
    virtual void beginRecording(const QString& path) = 0;
    /// Ends it; the listener hears when all of it is in the file.
    virtual void endRecording() = 0;
};

/// Makes the camera; null where there is none.
using PelinorCameraMaker = std::function<std::unique_ptr<PelinorCamera>()>;

/// Makes that of the computer. What it needs is loaded when it is first asked for: few people film what they
/// post, and all would wait for it at every start.
[[nodiscard]] std::unique_ptr<PelinorCamera> PelinorMakeDeviceCamera();
