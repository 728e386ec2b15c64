#include "Pallisande/Shell/ComparisonPane.h"

#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Card.h"
#include "Pallisande/Widgets/Label.h"

#include <QGridLayout>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace Pallisande {

ComparisonPane::ComparisonPane(QWidget* parent)
    : QScrollArea(parent)
    , m_card(new Card(QStringLiteral("What Restoring Would Change"), this))
    , m_sentence(makeSentence({}, m_card, TextStyle::body, Ink::muted))
{
    setObjectName(QStringLiteral("comparison"));
    setAccessibleName(QStringLiteral("What restoring would change"));
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::StrongFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_sentence->setObjectName(QStringLiteral("comparisonSentence"));
    m_card->content()->addWidget(m_sentence);
    m_card->content()->addStretch();
    setWidget(m_card);
}

void ComparisonPane::clear()
{
    delete std::exchange(m_table, nullptr);
    verticalScrollBar()->setValue(0);
}

void ComparisonPane::showSentence(const QString& sentence)
{
    clear();
    m_sentence->setText(sentence);
    m_sentence->show();
    setAccessibleDescription(sentence);
}

void ComparisonPane::show(const LibraryCopies::Comparison& comparison)
{
    if (!comparison.failure.empty())
        return showSentence(qt(comparison.failure));
    if (comparison.isSame)
        return showSentence(QStringLiteral("Nothing: this copy holds what your library holds now."));
    clear();
    m_sentence->hide();
    m_table = new QWidget(m_card);
    auto* grid = new QGridLayout(m_table);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(Space::large);
    grid->setVerticalSpacing(Space::medium);
    grid->setColumnStretch(1, 1);
    QStringList spoken;
    for (const auto& [about, lines] : comparison.differences) {
        const int row = grid->rowCount();
        grid->addWidget(
            new Label(qt(about), m_table, TextStyle::body, Ink::muted), row, 0, Qt::AlignTop | Qt::AlignLeft);
        auto* cell = new QVBoxLayout;
        cell->setSpacing(Space::tiny);
        for (const auto& line : lines)
            cell->addWidget(makeSentence(qt(line), m_table));
        grid->addLayout(cell, row, 1);
        spoken += qt(about);
        for (const auto& line : lines)
            spoken += qt(line);
    }
    m_card->content()->insertWidget(0, m_table);
    setAccessibleDescription(spoken.join(QStringLiteral(". ")));
}

} // namespace Pallisande
