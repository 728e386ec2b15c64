#include "Pallisande/Screens/DetailPage.h"

#include "Pallisande/Widgets/Theme.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

namespace Pallisande {

DetailPage::DetailPage(QWidget* parent)
    : QScrollArea(parent)
    , m_column(new QVBoxLayout)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus); // What it holds has it.
    auto* page = new QWidget;
    auto* middle = new QWidget(page);
    middle->setMaximumWidth(mostWidth);
    m_column->setContentsMargins(0, 0, 0, 0);
    m_column->setSpacing(Space::large);
    auto* column = new QVBoxLayout(middle);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(m_column);
    column->addStretch();
    auto* box = new QHBoxLayout(page);
    box->setContentsMargins(Space::page, Space::group, Space::page, Space::page);
    box->addWidget(middle, mostWidth);
    box->addStretch(1); // Wider than the cards: they stay at the left, near their list.
    setWidget(page);

    connect(qApp, &QApplication::focusChanged, this, [this](QWidget*, QWidget* now) {
        // Under the pointer nothing moves away.
        if (now && widget()->isAncestorOf(now) && QApplication::mouseButtons() == Qt::NoButton)
            ensureWidgetVisible(now, 0, Space::page);
    });
}

bool DetailPage::focusNextPrevChild(bool next)
{
    return QWidget::focusNextPrevChild(next); // Scrolled by what gets the focus, with some room around it.
}

void DetailPage::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape)
        emit listWanted();
    else
        QScrollArea::keyPressEvent(event);
}

} // namespace Pallisande
