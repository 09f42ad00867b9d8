#include "GalleryWindow.h"

#include "GalleryImagesPage.h"
#include "GalleryNavigationPage.h"
#include "GallerySidebar.h"
#include "GalleryTablePage.h"
#include "GalleryTextPage.h"
#include "GalleryTransitionsPage.h"
#include "toolkit/KRLiveResize.h"

#include <QStyle>

namespace {

constexpr QSize InitialSize(1000, 700);

const QStringList Titles { QStringLiteral("Table"),
    QStringLiteral("Navigation"),
    QStringLiteral("Transitions"),
    QStringLiteral("Images"),
    QStringLiteral("Text") };

} // namespace

GalleryWindow::GalleryWindow()
    : m_sidebar(new GallerySidebar(Titles, this))
    , m_stage(new QWidget(this))
{
    setWindowTitle(QStringLiteral("Toolkit gallery"));
    setMinimumSize(700, 420);
    new KRLiveResize(*this);
    m_pages = { std::make_shared<GalleryTablePage>(),
        std::make_shared<GalleryNavigationPage>(),
        std::make_shared<GalleryTransitionsPage>(),
        std::make_shared<GalleryImagesPage>(),
        std::make_shared<GalleryTextPage>() };
    resize(InitialSize);
    m_switcher.setTargetView(m_stage);
    connect(m_sidebar, &GallerySidebar::pageChosen, this, &GalleryWindow::_showPage);
    _showPage(0);
}

GalleryWindow::~GalleryWindow() = default;

QStringList GalleryWindow::pageNames()
{
    QStringList names;
    for (const QString& title : Titles)
        names.append(title.toLower());
    return names;
}

void GalleryWindow::showPage(const QString& name)
{
    m_sidebar->setCurrentPage(int(pageNames().indexOf(name)));
}

void GalleryWindow::_showPage(int page)
{
    const int code = page > m_shownPage ? KRTransitionSlideUp : KRTransitionSlideDown;
    m_shownPage = page;
    m_switcher.setTargetFrame(m_stage->rect());
    m_switcher.switchToViewController(m_pages.at(size_t(page)), code | KRTransitionShort);
}

void GalleryWindow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const QRect sidebar(0, 0, GallerySidebar::Width, height());
    m_sidebar->setGeometry(QStyle::visualRect(layoutDirection(), rect(), sidebar));
    m_stage->setGeometry(
        QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(GallerySidebar::Width, 0, 0, 0)));
}
