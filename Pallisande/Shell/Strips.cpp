#include "Pallisande/Shell/Strips.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QHBoxLayout>

namespace Pallisande {

namespace {

Tone toneOf(Strip::Kind kind) { return kind == Strip::Kind::sample ? Tone::blue : Tone::amber; }

Icon iconOf(Strip::Kind kind)
{
    return kind == Strip::Kind::sample  ? Icon::info
        : kind == Strip::Kind::readOnly ? Icon::lock
                                        : Icon::folder;
}

} // namespace

Strip::Strip(Kind kind, QWidget* parent)
    : QWidget(parent)
    , m_kind(kind)
    , m_icon(new QWidget(this))
    , m_sentence(makeSentence({}, this))
{
    m_sentence->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(Space::large, Space::tiny, Space::large, Space::tiny);
    box->setSpacing(Space::medium);
    box->addWidget(m_icon);
    box->addWidget(m_sentence, 1);
    dress();
}

void Strip::setSentence(const QString& sentence)
{
    m_sentence->setText(sentence);
    setAccessibleName(sentence);
}

QPushButton* Strip::addButton(const QString& text)
{
    auto* button = makeButton(text, ButtonKind::plain, this);
    layout()->addWidget(button);
    return button;
}

void Strip::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& [ink, tint] = theme.colours.tone(toneOf(m_kind));
    QPainter painter(this);
    painter.fillRect(rect(), tint);
    drawLineBelow(painter, rect(), theme.colours.border);
    const int size = theme.scaled(18);
    QRectF area(0, 0, size, size);
    area.moveCenter(QRectF(m_icon->geometry()).center());
    drawIcon(painter, iconOf(m_kind), area, ink);
}

void Strip::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void Strip::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.tone(toneOf(m_kind)).tint));
    m_icon->setFixedWidth(theme.scaled(18));
    setMinimumHeight(theme.controlHeight() + 2 * Space::tiny);
}

Strips::Strips(AppModel& model, bool isSample, QWidget* parent)
    : QWidget(parent)
    , m_model(model)
    , m_sample(new Strip(Strip::Kind::sample, this))
    , m_notFound(new Strip(Strip::Kind::notFound, this))
    , m_readOnly(new Strip(Strip::Kind::readOnly, this))
{
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(0);
    for (auto* strip : { m_sample, m_notFound, m_readOnly })
        box->addWidget(strip);
    m_sample->setObjectName(QStringLiteral("sampleStrip"));
    m_notFound->setObjectName(QStringLiteral("notFoundStrip"));
    m_readOnly->setObjectName(QStringLiteral("readOnlyStrip"));

    m_sample->setSentence(QStringLiteral("This is sample data. Nothing here is saved to your library."));
    connect(m_sample->addButton(QStringLiteral("Use My Own Library")), &QPushButton::clicked, this,
        &Strips::ownLibraryWanted);
    m_sample->setVisible(isSample);
    connect(m_notFound->addButton(QStringLiteral("Choose Folder…")), &QPushButton::clicked, this,
        [this] { m_model.chooseLibraryFolder(); });
    connect(m_notFound->addButton(QStringLiteral("Keep This Folder")), &QPushButton::clicked, this,
        [this] { m_model.confirmFolder(); });
    m_openAgain = m_readOnly->addButton(QStringLiteral("Open Again"));
    m_openAgain->setObjectName(QStringLiteral("openAgain"));
    connect(m_openAgain, &QPushButton::clicked, this, [this] { m_model.moveLibrary(m_model.folder()); });
    connect(&model, &AppModel::stateChanged, this, &Strips::refresh);
    refresh();
}

void Strips::refresh()
{
    const bool isThere = m_model.hasLibrary() && !m_model.isOpening();
    m_notFound->setSentence(
        QStringLiteral("Your library folder couldn’t be found, so “%1” is in use. Nothing is issued "
                       "until you say that this is the right one.")
            .arg(qt(m_model.folder().string())));
    m_notFound->setVisible(isThere && m_model.folderWasNotFound());
    const auto reason = m_model.readOnly();
    m_readOnly->setSentence(qt(m_model.readOnlyText()));
    m_readOnly->setVisible(isThere && reason != ReadOnlyReason::none && reason != ReadOnlyReason::unreadable
        && reason != ReadOnlyReason::missingFile
        && reason != ReadOnlyReason::newerVersion); // Those have a page of their own.
    m_openAgain->setVisible(reason == ReadOnlyReason::changedElsewhere || reason == ReadOnlyReason::inUse);
}

} // namespace Pallisande
