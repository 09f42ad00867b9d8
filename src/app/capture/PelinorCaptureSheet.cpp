#include "app/capture/PelinorCaptureSheet.h"

#include "app/look/PelinorDraftColors.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize ViewSize(480, 360);
// Where there is nothing but a sentence to see.
constexpr QSize SmallViewSize(360, 140);

} // namespace

/// The moving picture, as in a mirror: people look at themselves.
class PelinorCaptureSheet::View final : public QWidget {
public:
    explicit View(QWidget* parent)
        : QWidget(parent)
    {
        setMinimumSize(ViewSize);
        setAccessibleName(PelinorCaptureSheet::tr("What the camera sees"));
    }

    void setPicture(const QImage& picture)
    {
        m_picture = picture;
        update();
    }
    /// As the camera sees it.
    const QImage& picture() const { return m_picture; }
    void setSentence(const QString& sentence)
    {
        m_sentence = sentence;
        setAccessibleDescription(sentence);
        update();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        const PelinorDraftColors& colors = PelinorDraftColors::forPalette(palette());
        QPainter painter(this);
        painter.fillRect(rect(), colors.camera);
        if (!m_picture.isNull()) {
            const QSize size = m_picture.size().scaled(rect().size(), Qt::KeepAspectRatio);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.translate(width(), 0);
            painter.scale(-1, 1);
            painter.drawImage(
                QRect(QPoint((width() - size.width()) / 2, (height() - size.height()) / 2), size),
                m_picture);
            painter.resetTransform();
        }
        if (!m_sentence.isEmpty()) {
            painter.setPen(colors.cameraText);
            painter.drawText(rect().adjusted(40, 0, -40, 0), Qt::AlignCenter | Qt::TextWordWrap, m_sentence);
        }
    }

private:
    QImage m_picture;
    QString m_sentence;
};

PelinorCaptureSheet::PelinorCaptureSheet(Kind kind,
    std::unique_ptr<PelinorCamera> camera,
    NewPath newPath,
    QWidget* parent)
    : QDialog(parent)
    , m_kind(kind)
    , m_newPath(std::move(newPath))
    , m_camera(std::move(camera))
    , m_view(new View(this))
    , m_sentence(new QLabel(this))
    , m_buttons(new QDialogButtonBox(QDialogButtonBox::Cancel, this))
    , m_captureButton(new QPushButton(this))
{
    setObjectName(u"captureSheet"_s);
    setWindowTitle(kind == Kind::Photo ? tr("Take a Photo") : tr("Record a Movie"));
    setWindowModality(Qt::WindowModal);
    setAttribute(Qt::WA_DeleteOnClose);
    m_sentence->setObjectName(u"captureSentence"_s);
    m_sentence->setTextFormat(Qt::PlainText);
    m_captureButton->setObjectName(u"captureButton"_s);
    m_captureButton->setDefault(true);
    m_buttons->addButton(m_captureButton, QDialogButtonBox::ActionRole);
    connect(m_captureButton, &QPushButton::clicked, this, [this] { _capture(); });
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(m_view, 1);
    layout->addWidget(m_sentence);
    layout->addWidget(m_buttons);
    _setState(State::Starting);
    if (m_camera)
        m_camera->start(*this);
    else
        cameraDidFail(tr("No camera was found. Connect one, and open this again."));
}

PelinorCaptureSheet::~PelinorCaptureSheet()
{
    // It tells of nothing any more, and what it was in the middle of is not wanted.
    m_camera.reset();
    if (!m_path.isEmpty())
        QFile::remove(m_path);
}

void PelinorCaptureSheet::_setState(State state)
{
    m_state = state;
    m_captureButton->setText(m_kind == Kind::Photo ? tr("Take Photo")
            : state == State::Recording            ? tr("Stop")
                                                   : tr("Record"));
    m_captureButton->setEnabled(state == State::Seeing || state == State::Recording);
    m_captureButton->setVisible(state != State::Failed);
    m_buttons->button(QDialogButtonBox::Cancel)->setText(state == State::Failed ? tr("Close") : tr("Cancel"));
    m_view->setSentence(state == State::Starting ? tr("The camera is starting...") : QString());
    m_sentence->setText(state == State::Saving ? tr("The movie is being saved...")
            : m_kind == Kind::Movie            ? tr("The movie is attached to what you write.")
                                               : tr("The photo goes to your pictures."));
    m_sentence->setVisible(state != State::Failed);
}

void PelinorCaptureSheet::cameraDidShow(const QImage& picture)
{
    m_view->setPicture(picture);
    if (m_state == State::Starting)
        _setState(State::Seeing);
    if (m_state != State::Recording)
        return;
    const qint64 seconds = m_recordingTime.elapsed() / 1000;
    m_sentence->setText(tr("Recording, %1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0')));
}

void PelinorCaptureSheet::cameraDidFail(const QString& reason)
{
    m_view->setPicture({});
    m_view->setMinimumSize(SmallViewSize);
    _setState(State::Failed);
    m_view->setSentence(reason);
}

void PelinorCaptureSheet::_capture()
{
    if (m_state == State::Recording) {
        _setState(State::Saving);
        m_camera->endRecording();
    } else if (m_kind == Kind::Photo) {
        _takePhoto();
    } else {
        m_path = m_newPath(m_camera->movieSuffix());
        m_recordingTime.start();
        _setState(State::Recording);
        m_camera->beginRecording(m_path);
    }
}

void PelinorCaptureSheet::_takePhoto()
{
    m_path = m_newPath(u"jpg"_s);
    if (m_view->picture().save(m_path, "JPEG"))
        _finish();
    else
        cameraDidFail(tr("The photo could not be stored as %1").arg(m_path));
}

void PelinorCaptureSheet::cameraDidRecord()
{
    if (m_state == State::Saving)
        _finish();
}

void PelinorCaptureSheet::_finish()
{
    const QString path = std::exchange(m_path, QString());
    accept();
    Q_EMIT captured(path);
}
