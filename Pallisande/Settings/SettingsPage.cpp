#include "Pallisande/Settings/SettingsPage.h"

#include "Pallisande/Model/BusinessProfile.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/FieldLock.h"
#include "Pallisande/Widgets/Label.h"

namespace Pallisande {

SettingsPage::SettingsPage(AppModel& model, QWidget* parent)
    : QScrollArea(parent)
    , m_model(model)
    , m_column(new QVBoxLayout)
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus); // What it holds has it.
    auto* page = new QWidget;
    auto* box = new QVBoxLayout(page);
    box->setContentsMargins(Space::group, Space::large, Space::group, Space::group);
    m_column->setSpacing(Space::large);
    box->addLayout(m_column);
    box->addStretch();
    setWidget(page);
    connect(&model, &AppModel::settingsChanged, this, &SettingsPage::refresh);
    connect(&model, &AppModel::stateChanged, this, &SettingsPage::refresh);
    connect(&model, &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (changes.profile || changes.everything)
            refresh();
    });
}

void SettingsPage::refresh()
{
    auto profile = m_model.library().profile;
    for (const auto& text : m_texts)
        text(profile);
    setLocked(*this, !m_model.canEdit(), qt(m_model.readOnlyText()));
    show(profile);
}

Card* SettingsPage::addCard(const QString& heading, const QString& caption)
{
    auto* card = new Card(heading, this);
    if (!caption.isEmpty())
        card->content()->addWidget(makeSentence(caption, card, TextStyle::small, Ink::muted));
    m_column->addWidget(card);
    return card;
}

bool SettingsPage::edit(const QWidget* field, const std::function<void(Profile&)>& change)
{
    if (std::exchange(m_lastField, field) != field || !field)
        m_model.endMerging();
    const bool isDone = m_model.profile().edit("Change Settings", change);
    if (!isDone)
        refresh(); // What was chosen goes back to what is.
    return isDone;
}

TextField* SettingsPage::addText(FormLayout& form, const QString& label, Text text)
{
    auto* field = new TextField(&form);
    form.addRow(label, field, FormLayout::Width::stretching);
    m_texts.push_back([field, text](Profile& profile) { field->setValue(qt(text(profile))); });
    connect(field, &LineField::committed, this, [this, field, text] {
        edit(field, [&](Profile& profile) { text(profile) = plain(field->value()); });
    });
    return field;
}

TextArea* SettingsPage::addArea(FormLayout& form, const QString& label, Text text)
{
    auto* area = new TextArea(&form);
    form.addRow(label, area, FormLayout::Width::stretching);
    m_texts.push_back([area, text](Profile& profile) { area->setValue(qt(text(profile))); });
    connect(area, &TextArea::committed, this,
        [this, area, text] { edit(area, [&](Profile& profile) { text(profile) = plain(area->value()); }); });
    return area;
}

QString takeProblem(AppModel& model)
{
    if (!model.problem())
        return {};
    const auto text = qt(model.problem()->text);
    model.dismissProblem();
    return text;
}

} // namespace Pallisande
