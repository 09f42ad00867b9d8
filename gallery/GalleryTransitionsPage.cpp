#include "GalleryTransitionsPage.h"

#include "GalleryLook.h"
#include "toolkit/images/KRGradient.h"

#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

#include <utility>

namespace {

const QString Names[] = { QStringLiteral("Fade"),
    QStringLiteral("Fly in"),
    QStringLiteral("Fly out"),
    QStringLiteral("Slide down"),
    QStringLiteral("Slide up"),
    QStringLiteral("Slide left"),
    QStringLiteral("Slide right"),
    QStringLiteral("Fancy") };
constexpr int Columns = 8;

class SceneView final : public QWidget {
public:
    SceneView(const QString& title, const KRGradient& sky, const QColor& ground)
        : m_title(title)
        , m_sky(sky)
        , m_ground(ground)
    {
        setAccessibleName(title);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        m_sky.drawInRect(painter, rect(), KRGradient::Direction::Down);
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_ground);
        painter.drawEllipse(QPointF(width() * 0.28, height() * 1.25), width() * 0.62, height() * 0.62);
        painter.setBrush(m_ground.darker(115));
        painter.drawEllipse(QPointF(width() * 0.86, height() * 1.3), width() * 0.55, height() * 0.6);
        painter.setPen(Qt::white);
        painter.setFont(GalleryLook::font(26, true));
        painter.drawText(rect().adjusted(0, 0, 0, -height() / 4), Qt::AlignCenter, m_title);
    }

private:
    QString m_title;
    KRGradient m_sky;
    QColor m_ground;
};

class Scene final : public KRViewController {
public:
    explicit Scene(bool isDay)
        : m_isDay(isDay)
    {
    }

    void loadView() override
    {
        if (m_isDay) {
            setView(std::make_unique<SceneView>(QStringLiteral("Day"),
                KRGradient(KRColor::rgba(0.2F, 0.5F, 0.8F, 1), KRColor::rgba(0.55F, 0.75F, 0.92F, 1)),
                QColor(0x4C, 0x8C, 0x58)));
        } else {
            setView(std::make_unique<SceneView>(QStringLiteral("Night"),
                KRGradient(KRColor::rgba(0.07F, 0.08F, 0.2F, 1), KRColor::rgba(0.28F, 0.22F, 0.42F, 1)),
                QColor(0x24, 0x36, 0x44)));
        }
    }

private:
    bool m_isDay;
};

} // namespace

void GalleryTransitionsPage::loadView()
{
    auto view = std::make_unique<QWidget>();
    view->setAutoFillBackground(true);
    auto* const layout = new QGridLayout(view.get());
    layout->setContentsMargins(20, 16, 20, 20);
    layout->setSpacing(8);
    const struct {
        QString title;
        int bits;
    } speeds[] = { { QStringLiteral("0.35 s"), 0 }, { QStringLiteral("0.18 s"), KRTransitionShort } };
    int line = 0;
    for (const auto& [title, bits] : speeds) {
        auto* const label = new QLabel(title);
        label->setFont(GalleryLook::font(9, true));
        layout->addWidget(label, line, 0);
        for (int kind = KRTransitionFade; kind <= KRTransitionFancy; ++kind) {
            auto* const button = new QPushButton(Names[kind - 1]);
            button->setAccessibleName(Names[kind - 1] + u' ' + title);
            button->setMinimumHeight(30);
            connect(button, &QPushButton::clicked, this, [this, code = kind | bits] { play(code); });
            layout->addWidget(button, line, kind);
            layout->setColumnStretch(kind, 1);
        }
        ++line;
    }
    auto* const stage = new QWidget;
    layout->addWidget(stage, line, 0, 1, Columns + 1);
    layout->setRowStretch(line, 1);
    layout->setRowMinimumHeight(line, 120);

    m_switcher.setTargetView(stage);
    m_switcher.setTargetFrame(stage->rect());
    m_switcher.switchToViewController(std::make_shared<Scene>(true), KRTransitionNone);
    m_next = std::make_shared<Scene>(false);
    setView(std::move(view));
}

void GalleryTransitionsPage::play(int code)
{
    view();
    m_switcher.setTargetFrame(m_switcher.targetView()->rect());
    const KRViewControllerPtr shown = m_switcher.currentViewController();
    m_switcher.switchToViewController(std::exchange(m_next, shown), code);
}
