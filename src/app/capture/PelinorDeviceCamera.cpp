// The computer's camera. A library of its own, which the program loads when a camera is wanted.

#include "app/capture/PelinorCamera.h"

#include <QAudioDevice>
#include <QAudioInput>
#include <QCamera>
#include <QMediaCaptureSession>
#include <QMediaDevices>
#include <QMediaFormat>
#include <QMediaRecorder>
#include <QMimeType>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>

namespace {

// What a post's movie needs; cameras can do more, and uploads would take that much longer.
constexpr QSize LargestPicture(1280, 720);

QCameraFormat formatOf(const QCameraDevice& device)
{
    QCameraFormat chosen;
    for (const QCameraFormat& format : device.videoFormats()) {
        const QSize size = format.resolution();
        const bool fits = size.boundedTo(LargestPicture) == size;
        if (fits && size.width() * size.height() > chosen.resolution().width() * chosen.resolution().height())
            chosen = format;
    }
    return chosen;
}

class DeviceCamera final : public PelinorCamera {
public:
    explicit DeviceCamera(const QCameraDevice& device)
        : m_camera(device)
    {
        if (const QCameraFormat format = formatOf(device); !format.isNull())
            m_camera.setCameraFormat(format);
        m_session.setCamera(&m_camera);
        m_session.setVideoSink(&m_sink);
        m_session.setRecorder(&m_recorder);
        // A movie without sound is better than none.
        if (!QMediaDevices::defaultAudioInput().isNull()) {
            m_microphone.setDevice(QMediaDevices::defaultAudioInput());
            m_session.setAudioInput(&m_microphone);
        }
        QMediaFormat format(QMediaFormat::MPEG4);
        format.resolveForEncoding(QMediaFormat::RequiresVideo);
        m_recorder.setMediaFormat(format);
        m_recorder.setQuality(QMediaRecorder::NormalQuality);
    }

    void start(PelinorCameraListener& listener) override
    {
        QObject::connect(&m_sink,
            &QVideoSink::videoFrameChanged,
            &m_sink,
            [&listener](const QVideoFrame& frame) {
                if (const QImage picture = frame.toImage(); !picture.isNull())
                    listener.cameraDidShow(picture);
            });
        const auto fail = [&listener](const QString& reason) { listener.cameraDidFail(reason); };
        QObject::connect(
            &m_camera,
            &QCamera::errorOccurred,
            &m_camera,
            [fail](QCamera::Error, const QString& reason) { fail(reason); },
            Qt::QueuedConnection);
        QObject::connect(
            &m_recorder,
            &QMediaRecorder::errorOccurred,
            &m_recorder,
            [fail](QMediaRecorder::Error, const QString& reason) { fail(reason); },
            Qt::QueuedConnection);
        QObject::connect(
            &m_recorder,
            &QMediaRecorder::recorderStateChanged,
            &m_recorder,
            [this, &listener](QMediaRecorder::RecorderState state) {
                if (state == QMediaRecorder::StoppedState && m_recorder.error() == QMediaRecorder::NoError)
                    listener.cameraDidRecord();
            },
            Qt::QueuedConnection);
        m_camera.start();
    }

    QString movieSuffix() const override
    {
        const QString suffix = m_recorder.mediaFormat().mimeType().preferredSuffix();
        return suffix.isEmpty() ? QStringLiteral("mp4") : suffix;
    }

    void beginRecording(const QString& path) override
    {
        m_recorder.setOutputLocation(QUrl::fromLocalFile(path));
        m_recorder.record();
    }

    void endRecording() override { m_recorder.stop(); }

private:
    QCamera m_camera;
    QVideoSink m_sink;
    QAudioInput m_microphone;
    QMediaRecorder m_recorder;
    QMediaCaptureSession m_session;
};

} // namespace

extern "C" Q_DECL_EXPORT PelinorCamera* PelinorMakeCamera()
{
    const QCameraDevice device = QMediaDevices::defaultVideoInput();
    return device.isNull() ? nullptr : new DeviceCamera(device);
}
