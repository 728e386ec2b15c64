#include "Pallisande/Screens/Jobs/CountingBar.h"

#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QHBoxLayout>
#include <QProgressBar>

#include <algorithm>

namespace Pallisande {

CountingBar::CountingBar(AppModel& model, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_text(new ElidedLabel(this))
    , m_bar(new QProgressBar(this))
    , m_cancel(makeButton(QStringLiteral("Cancel"), ButtonKind::plain, this))
{
    setObjectName(QStringLiteral("countingBar"));
    setAccessibleName(QStringLiteral("Counting documents"));
    m_cancel->setObjectName(QStringLiteral("cancelCounting"));
    m_cancel->setAccessibleName(QStringLiteral("Cancel Counting"));
    m_bar->setTextVisible(false);
    m_bar->setAccessibleName(QStringLiteral("Documents counted"));
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(Space::large, Space::tiny, Space::large, Space::tiny);
    box->setSpacing(Space::medium);
    box->addWidget(m_text, 3);
    box->addWidget(m_bar, 2);
    box->addWidget(m_cancel);
    connect(m_cancel, &QPushButton::clicked, this, [this] { m_model.counts().cancel(); });
    connect(&model, &AppModel::countingChanged, this, &CountingBar::refresh);
    refresh();
}

void CountingBar::refresh()
{
    const auto& progress = m_model.counts().progress();
    setVisible(progress.has_value());
    if (!progress) {
        m_announced = -1;
        return;
    }
    const int done = static_cast<int>(progress->done), all = std::max(1, static_cast<int>(progress->all));
    const auto text = progress->all == 0 ? QStringLiteral("Looking for documents…")
                                         : QStringLiteral("Counting %1 of %2: %3")
                                               .arg(std::min(done + 1, all))
                                               .arg(all)
                                               .arg(qt(progress->file));
    m_text->setText(text);
    m_bar->setRange(0, progress->all == 0 ? 0 : all);
    m_bar->setValue(done);
    if (const int quarter = done * 4 / all; quarter != m_announced) {
        m_announced = quarter;
        announce(m_text, text);
    }
}

void CountingBar::paintEvent(QPaintEvent*)
{
    const auto& colours = Theme::of(this).colours;
    QPainter painter(this);
    painter.fillRect(rect(), colours.inset);
    painter.fillRect(QRectF(0, 0, width(), hairline(painter)), colours.border);
}

} // namespace Pallisande
