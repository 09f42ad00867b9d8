#include "GalleryNavigationPage.h"

#include "GalleryLook.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbItemView.h"
#include "toolkit/navigation/KRNavigationBarBreadcrumbView.h"
#include "toolkit/navigation/KRNavigationItem.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int ColumnWidth = 360;

QString titleOfLevel(size_t level)
{
    static const QString titles[] = { QStringLiteral("Library"),
        QStringLiteral("Coast and sea"),
        QStringLiteral("Tide tables"),
        QStringLiteral("A title that is much too long"),
        QStringLiteral("ميناء"),
        QStringLiteral("潮汐") };
    return titles[level % std::size(titles)];
}

class Screen final : public KRViewController {
public:
    explicit Screen(size_t level)
        : m_level(level)
    {
    }

    void loadView() override
    {
        auto view = std::make_unique<QWidget>();
        view->setAutoFillBackground(true);
        auto* const column = new QVBoxLayout;
        column->setSpacing(10);
        auto* const title = new QLabel(titleOfLevel(m_level));
        title->setTextFormat(Qt::PlainText);
        title->setFont(GalleryLook::font(20, true));
        title->setWordWrap(true);
        column->addWidget(title);
        auto* const hint = new QLabel(QStringLiteral(
            "Go back with a crumb, Escape, the left arrow, the mouse's back button or a swipe."));
        hint->setWordWrap(true);
        hint->setFont(GalleryLook::font(10));
        column->addWidget(hint);
        column->addSpacing(8);
        QPushButton* const first = _addButton(*column, QStringLiteral("Push a screen"), [this] { _push(); });
        _addButton(*column, QStringLiteral("Pop this screen"), [this] {
            navigationController()->popViewControllerAnimated(KRAnimated::Yes);
        });
        _addButton(*column, QStringLiteral("Pop to the first screen"), [this] {
            navigationController()->popToRootViewControllerAnimated(KRAnimated::Yes);
        });

        auto* const centered = new QWidget;
        centered->setFixedWidth(ColumnWidth);
        centered->setLayout(column);
        auto* const row = new QHBoxLayout;
        row->addStretch();
        row->addWidget(centered);
        row->addStretch();
        auto* const layout = new QVBoxLayout(view.get());
        layout->addStretch(2);
        layout->addLayout(row);
        layout->addStretch(3);
        view->setFocusProxy(first);
        setView(std::move(view));
    }

    void viewDidLoad() override
    {
        navigationItem()->setTitle(titleOfLevel(m_level));
        if (m_level % 2 == 1) {
            auto view = std::make_unique<QWidget>();
            auto* const field = new QLineEdit;
            field->setPlaceholderText(QStringLiteral("Search"));
            field->setAccessibleName(QStringLiteral("Search"));
            field->setFont(GalleryLook::font(9));
            auto* const layout = new QHBoxLayout(view.get());
            layout->setContentsMargins(0, 2, 8, 3);
            layout->addWidget(field);
            navigationItem()->setRightBarButtonItem(std::make_unique<KRBarButtonItem>(std::move(view)));
        }
    }

private:
    template <class Clicked>
    QPushButton* _addButton(QVBoxLayout& column, const QString& text, Clicked clicked)
    {
        auto* const button = new QPushButton(text);
        button->setAutoDefault(true);
        button->setMinimumHeight(32);
        connect(button, &QPushButton::clicked, this, clicked);
        column.addWidget(button);
        return button;
    }

    void _push()
    {
        navigationController()->pushViewController(std::make_shared<Screen>(m_level + 1), KRAnimated::Yes);
    }

    size_t m_level;
};

} // namespace

GalleryNavigationPage::GalleryNavigationPage()
{
    pushScreens(1);
}

void GalleryNavigationPage::focusCrumb(int index)
{
    navigationBar()->breadcrumbs()->breadcrumbs().at(size_t(index))->setFocus();
}

void GalleryNavigationPage::pushScreens(int count)
{
    for (int number = 0; number < count; ++number)
        pushViewController(std::make_shared<Screen>(viewControllers().size()), KRAnimated::No);
}
